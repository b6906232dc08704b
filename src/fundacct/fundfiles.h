#pragma once

#include "dataaccesscontrol.h"

#include <QString>

#include <memory>

// Opens one Kora-Fund file on a control, creating the control when there is
// none yet: BlankChar 0, DdfPath the installation root (gstrRootPath; the
// ddfPath argument only matters to programs sharing the procedure), FileName
// and Location as given, Open. Returns the control's Status.
long OpenFundFile(std::unique_ptr<DataAccessControl> &control, const QString &ddfPath, const QString &fileName,
                  const QString &location);

// The folder that holds a fiscal year's Kora-Fund data: the FUND folder from
// 2002 on; a folder per year under FUND\DATA before 2001; for 2001 that
// folder when it holds building.btr, else FUND. The per-year folder is named
// by gstrYear.
QString GetFundDataLocation(int year);

// The same rule for an installation other than the open one (a report's
// source): FUND and FUND\DATA below `root`, a per-year folder named by `year`.
QString fundDataLocationUnder(const QString &root, int year);
