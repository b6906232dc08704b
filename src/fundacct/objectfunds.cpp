#include "objectfunds.h"

#include "patternmatch.h"

#include <array>

namespace {
const FundFileDef fundsFile{"Funds", "\\Funds.btr"};
const FundFileDef checkingFile{"Checking Accounts", "\\Checking.btr"};

const std::array<FieldBinding<FundFields>, 6> fundBindings{{
    {"ID", &FundFields::ID},
    {"Name", &FundFields::Name},
    {"Checking ID", &FundFields::CheckingID},
    {"GL Mask", &FundFields::GLMask},
    {"RL Mask", &FundFields::RLMask},
    {"EL Mask", &FundFields::ELMask},
}};
} // namespace

bool accountCodeFitsMask(const QString &accountCode, const QString &mask, const QString &usState)
{
    if (mask.trimmed().isEmpty())
        return false;
    QString code = accountCode.trimmed();
    if (usState.trimmed().compare(QLatin1String("NJ"), Qt::CaseInsensitive) == 0 &&
        (code.startsWith(QLatin1String("11")) || code.startsWith(QLatin1String("12")) ||
         code.startsWith(QLatin1String("13"))))
        code.replace(0, 2, QStringLiteral("10"));
    return matchesPattern(code, mask.trimmed());
}

classObjectFunds::classObjectFunds() : RecordObject(fundsFile, fundBindings, 0)
{
}

int classObjectFunds::openCompanions(const QString &ddfPath, const QString &dataFolder)
{
    if (!checking_)
        checking_ = std::make_shared<DataAccessControl>();
    const int status = bindFundFile(*checking_, ddfPath, dataFolder, checkingFile);
    if (status == 0)
        checking_->setJoin(&control(), QStringLiteral("Checking ID"));
    return status;
}

void classObjectFunds::completeRecord(FundFields &record)
{
    record.USState = USState;
    const bool joined = checking_ && checking_->Status() == 0 &&
                        checking_->FieldValue(QStringLiteral("Checking ID")).toString() == record.CheckingID;
    record.CheckingName = joined ? checking_->FieldValue(QStringLiteral("Name")).toString() : QString();
}

int classObjectFunds::RetrieveID(const QString &fundId)
{
    const QString state = USState;
    Clear();
    USState = state;
    ID = fundId;
    return Retrieve();
}

int classObjectFunds::GetFundFromAccountCode(const QString &accountCode, QString &fundId)
{
    std::vector<FundFields> funds;
    const int status = GetList(funds);
    if (status != 0)
        return status;
    for (const FundFields &fund : funds) {
        for (const QString *mask : {&fund.GLMask, &fund.RLMask, &fund.ELMask}) {
            if (accountCodeFitsMask(accountCode, *mask, USState)) {
                fundId = fund.ID;
                return 0;
            }
        }
    }
    return 4;
}

bool classObjectFunds::FundCheckingAccountCodeCheck(const QString &accountCode) const
{
    return accountCodeFitsMask(accountCode, GLMask, USState);
}

std::int64_t classObjectFunds::GetCount() const
{
    return DataBound() ? DataControl()->TotalRecords() : 0;
}
