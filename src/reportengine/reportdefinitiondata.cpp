#include "reportdefinitiondata.h"

int DefinitionFormula::lineOf(int position) const
{
    if (lines.empty())
        return 0;
    const int index = static_cast<int>(text.left(position).count(u'\n'));
    return lines[std::min<std::size_t>(index, lines.size() - 1)];
}

const DefinitionFormula *ReportDefinitionData::formula(const QString &name) const
{
    for (const DefinitionFormula &f : formulas) {
        if (f.name.compare(name, Qt::CaseInsensitive) == 0)
            return &f;
    }
    return nullptr;
}

const DefinitionTable *ReportDefinitionData::lookup(const QString &alias) const
{
    for (const DefinitionTable &table : lookups) {
        if (table.alias.compare(alias, Qt::CaseInsensitive) == 0)
            return &table;
    }
    return nullptr;
}

const QStringList &fundTableFields(FundRecord record)
{
    static const QStringList expenditure{QStringLiteral("AccountCode"),
                                         QStringLiteral("FundID"),
                                         QStringLiteral("Name"),
                                         QStringLiteral("OpeningEntry"),
                                         QStringLiteral("BudgetAdjustment"),
                                         QStringLiteral("RevisedBudget"),
                                         QStringLiteral("EncumPlaced"),
                                         QStringLiteral("EncumLiquidated"),
                                         QStringLiteral("Encumbrance"),
                                         QStringLiteral("PaymentExpense"),
                                         QStringLiteral("UnencumberedBalance")};
    static const QStringList revenue{
        QStringLiteral("AccountCode"),     QStringLiteral("FundID"),           QStringLiteral("Name"),
        QStringLiteral("OpeningEntry"),    QStringLiteral("BudgetAdjustment"), QStringLiteral("RevisedBudget"),
        QStringLiteral("RevenueReceived"), QStringLiteral("UnearnedBalance")};
    static const QStringList either = [] {
        QStringList all = expenditure;
        for (const QString &field : revenue) {
            if (!all.contains(field))
                all << field;
        }
        return all;
    }();
    switch (record) {
    case FundRecord::Expenditure:
        return expenditure;
    case FundRecord::Revenue:
        return revenue;
    case FundRecord::None:
        break;
    }
    return either;
}

std::pair<QString, FundRecord> splitFundTable(const QString &table)
{
    const qsizetype cut = table.lastIndexOf(u'_');
    if (cut <= 0)
        return {QString(), FundRecord::None};
    const QString record = table.mid(cut + 1).trimmed();
    const QString tableId = table.left(cut).trimmed();
    if (record.compare(QLatin1String("SummaryExpenditure"), Qt::CaseInsensitive) == 0)
        return {tableId, FundRecord::Expenditure};
    if (record.compare(QLatin1String("SummaryRevenue"), Qt::CaseInsensitive) == 0)
        return {tableId, FundRecord::Revenue};
    return {QString(), FundRecord::None};
}

const QStringList &treeFields()
{
    static const QStringList fields{QStringLiteral("ID"), QStringLiteral("Name"), QStringLiteral("TopID"),
                                    QStringLiteral("TopName"), QStringLiteral("Depth")};
    return fields;
}

const QStringList &levyFields()
{
    static const QStringList fields{QStringLiteral("Town"),
                                    QStringLiteral("EqualRate"),
                                    QStringLiteral("Assessment"),
                                    QStringLiteral("TaxableAssessment"),
                                    QStringLiteral("FullValue"),
                                    QStringLiteral("Share"),
                                    QStringLiteral("TaxRate"),
                                    QStringLiteral("PriorEqualRate"),
                                    QStringLiteral("PriorAssessment"),
                                    QStringLiteral("PriorTaxableAssessment"),
                                    QStringLiteral("PriorFullValue"),
                                    QStringLiteral("PriorShare"),
                                    QStringLiteral("PriorTaxRate"),
                                    QStringLiteral("Levy"),
                                    QStringLiteral("PriorLevy")};
    return fields;
}
