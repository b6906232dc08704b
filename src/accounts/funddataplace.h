#pragma once

#include <QString>

// Where a window reads Kora-Fund's files: the dictionary folder (the
// installation root) and the data folder of the fiscal year.
struct FundDataPlace {
    QString ddfPath;
    QString dataFolder;
};

// The current fund-accounting year's place, from the application context.
FundDataPlace currentFundDataPlace();
