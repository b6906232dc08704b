#include "installationfunds.h"

#include "appglobals.h"
#include "objectfunds.h"

bool readInstallationFunds(std::vector<FundEntry> &funds, QString &why)
{
    classObjectFunds file;
    int status = file.Init(gstrRootPath, gstrFundPath);
    std::vector<FundFields> records;
    if (status == 0)
        status = file.GetList(records);
    if (status != 0) {
        why = QStringLiteral("%1 (%2: %3)").arg(status).arg(gstrFundPath, file.Message());
        return false;
    }
    for (const FundFields &record : records)
        funds.push_back({record.ID.trimmed(), record.Name.trimmed()});
    return true;
}
