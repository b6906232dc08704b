#include "equalization.h"

#include <QLocale>

namespace {

// Rates go into statements in the shortest text that reads back as the same double.
QString rateText(double rate)
{
    return QString::number(rate, 'g', QLocale::FloatingPointShortest);
}

void fillDistrict(const Recordset &row, clsEqualizationItem &item)
{
    item.ID = static_cast<std::int32_t>(row.number("ID"));
    item.DistrickName = row.text("TownShip");
    item.CurrentRate = row.real("CurrentEqualRate");
    item.CurrentTotalAssessment = row.amount("CurrentAssessment");
    item.CurrentTaxableAssessment = row.amount("CurrentTaxAssess");
    item.PriorRate = row.real("PrevEqualRate");
    item.PriorTotalAssessment = row.amount("PrevAssessment");
    item.PriorTaxableAssessment = row.amount("PrevTaxAssess");
}

// A district by its ID, or, for one being added, by its name.
AuditedRows auditedDistricts(const QString &where)
{
    using Kind = AuditColumn::Kind;
    return {QStringLiteral("TaxRate"),
            {QStringLiteral("ID")},
            {{QStringLiteral("TownShip")},
             {QStringLiteral("CurrentEqualRate"), Kind::Rate},
             {QStringLiteral("CurrentAssessment"), Kind::Amount},
             {QStringLiteral("CurrentTaxAssess"), Kind::Amount},
             {QStringLiteral("PrevEqualRate"), Kind::Rate},
             {QStringLiteral("PrevAssessment"), Kind::Amount},
             {QStringLiteral("PrevTaxAssess"), Kind::Amount}},
            where,
            {},
            // A save writes any of the few districts, new ones too: the whole table is its batch.
            {QString()}};
}

} // namespace

clsEqualization::clsEqualization() : CountedStore(QStringLiteral("clsEqualization"))
{
}

bool clsEqualization::DeleteBatch()
{
    return changeRows("Delete from TaxRate " + QStringLiteral(" where id = ") + QString::number(item_.ID),
                      QStringLiteral("Delete"), Expect::ExactlyOne, countThen(QStringLiteral(" records to be Delete")),
                      auditedDistricts("id = " + QString::number(item_.ID)));
}

bool clsEqualization::UpdateBatch()
{
    const QString sql = "Update TaxRate Set " + QStringLiteral(" TownShip = ") + sqlText(item_.DistrickName) +
                        ", CurrentEqualRate = " + rateText(item_.CurrentRate) +
                        ", CurrentAssessment = " + item_.CurrentTotalAssessment.toSqlText() +
                        ", CurrentTaxAssess = " + item_.CurrentTaxableAssessment.toSqlText() +
                        ", PrevEqualRate = " + rateText(item_.PriorRate) +
                        ", PrevAssessment = " + item_.PriorTotalAssessment.toSqlText() +
                        ", PrevTaxAssess = " + item_.PriorTaxableAssessment.toSqlText() +
                        " where id = " + QString::number(item_.ID);
    return changeRows(sql, QStringLiteral("Update"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be update")),
                      auditedDistricts("id = " + QString::number(item_.ID)));
}

bool clsEqualization::AddBatch()
{
    const QString sql = "Insert into TaxRate (TownShip, CurrentEqualRate, CurrentAssessment,CurrentTaxAssess," +
                        QStringLiteral("PrevEqualRate,PrevAssessment,PrevTaxAssess) values (") +
                        sqlText(item_.DistrickName) + "," + rateText(item_.CurrentRate) + "," +
                        item_.CurrentTotalAssessment.toSqlText() + "," + item_.CurrentTaxableAssessment.toSqlText() +
                        "," + rateText(item_.PriorRate) + "," + item_.PriorTaxableAssessment.toSqlText() + "," +
                        item_.PriorTotalAssessment.toSqlText() + ")";
    return changeRows(sql, QStringLiteral("Add"), Expect::ExactlyOne,
                      countThen(QStringLiteral(" records to be Added. ")),
                      auditedDistricts("TownShip = " + sqlText(item_.DistrickName)));
}

bool clsEqualization::GetList(std::vector<clsEqualizationItem> &items)
{
    return readList<clsEqualizationItem>(QStringLiteral("select * from TaxRate "), QStringLiteral("GetList"), items,
                                         fillDistrict);
}

bool clsEqualization::Retrieve(bool byName)
{
    const QString sql = byName ? "Select * from TaxRate where TownShip = " + sqlText(item_.DistrickName)
                               : "Select * from TaxRate where Id = " + QString::number(item_.ID);
    return retrieveFirst(sql, QStringLiteral("Retrieve Equalization"), QStringLiteral("Record not Found."),
                         [this](const Recordset &row) { fillDistrict(row, item_); });
}
