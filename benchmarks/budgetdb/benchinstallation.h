#pragma once

#include "sampleinstallation.h"

#include <QString>

// A Kora-Fund installation drawn from the SQLite bench district, written under
// a temporary folder on the first call and kept for the run; later calls give
// the same folder whatever their options.
const QString &benchInstallation(const SampleOptions &options);
