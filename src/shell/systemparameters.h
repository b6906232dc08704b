#pragma once

#include "objectsysparams.h"

#include <memory>

// The organisation record the Organization command opens. It stays open after
// its dialog closes, so later tasks find it bound.
extern std::unique_ptr<classObjectSysParams> systemParameters;

// Creates and binds systemParameters on the organisation file of the
// installation in the globals; shows the error dialog and returns false when
// the file cannot be opened.
bool openSystemParameters();
