#include "objectsummary.h"

#include "installationschema.h"
#include "objectparameters.h"

SummaryFileAccess::SummaryFileAccess(const QStringList &amountNames)
{
    for (const QString &amount : amountNames) {
        MonthlyTexts names;
        for (int month = 1; month <= 12; ++month)
            names[month - 1] = monthlyFieldName(month, amount);
        names_.push_back(names);
    }
}

void SummaryFileAccess::load(DataAccessControl &control, std::size_t amount, MonthlyTexts &into) const
{
    for (int month = 1; month <= 12; ++month)
        into[month - 1] = monthlyTextOf(control.FieldValue(fieldName(amount, month)));
}

int SummaryFileAccess::store(DataAccessControl &control, std::size_t amount, const MonthlyTexts &from,
                             QString &why) const
{
    for (int month = 1; month <= 12; ++month) {
        const QString &name = fieldName(amount, month);
        const auto value = ledgerAmountFromText(from[month - 1]);
        if (!value) {
            why = QStringLiteral("\"%1\" is not an amount: \"%2\"").arg(name, from[month - 1]);
            return statusBadLedgerInput;
        }
        if (!control.setFieldValue(name, QVariant::fromValue(*value))) {
            why = control.Message();
            return control.Status();
        }
    }
    return 0;
}

int SummaryFileAccess::zero(DataAccessControl &control) const
{
    for (std::size_t amount = 0; amount < names_.size(); ++amount) {
        for (const QString &name : names_[amount]) {
            if (!control.setFieldValue(name, QVariant::fromValue(Currency())))
                return control.Status();
        }
    }
    return 0;
}

QString SummaryFileAccess::extendedSelection() const
{
    QStringList fields{QStringLiteral("Account Code"), QStringLiteral("Fund ID"), QStringLiteral("Name")};
    for (const MonthlyTexts &names : names_) {
        for (const QString &name : names)
            fields << name;
    }
    return fields.join(QStringLiteral(", "));
}

QString monthlyTextOf(const QVariant &amount)
{
    const Currency value = amount.value<Currency>();
    return value.isZero() ? QString() : ledgerAmountText(value, true);
}

int readFirstFiscalMonth(const QString &ddfPath, const QString &dataFolder, int &month)
{
    classObjectParameters parameters;
    int status = parameters.Init(ddfPath, dataFolder);
    if (status == 0)
        status = parameters.Retrieve();
    if (status == 0)
        month = parameters.FirstFiscalMonth;
    return status;
}

int readFirstFiscalMonthBeside(const DataAccessControl &control, int &month)
{
    const QString file = control.Location().isEmpty() ? control.resolvedFilePath() : control.Location();
    const qsizetype cut = std::max(file.lastIndexOf(u'\\'), file.lastIndexOf(u'/'));
    return readFirstFiscalMonth(control.DdfPath(), cut < 0 ? QString() : file.left(cut), month);
}
