#include "accountsummary.h"

namespace {

QString number(qint64 value)
{
    return QString::number(value);
}

void fillCode(const Recordset &row, clsAccountCode &code, bool withAmount)
{
    code.setID(row.number(QStringLiteral("ID")));
    code.setAccountCode(row.text(QStringLiteral("AccountCode")));
    code.setAccountName(row.text(QStringLiteral("AccountName")));
    code.setCatAFlag(row.text(QStringLiteral("CatAFlag")));
    code.setCatCFlag(row.text(QStringLiteral("CatCFlag")));
    code.setCatPFlag(row.text(QStringLiteral("CatPFlag")));
    code.setFundID(row.text(QStringLiteral("FundID")));
    code.setHistoricalCode(row.text(QStringLiteral("HistoricalCode")));
    code.setLedgerID(row.text(QStringLiteral("Ledger")));
    code.setParentID(row.number(QStringLiteral("ParentID")));
    code.setProgramID(row.number(QStringLiteral("ProgramID")));
    code.setBuildingID(row.number(QStringLiteral("BuildingID")));
    code.setStateCode(row.text(QStringLiteral("StateCode")));
    if (withAmount)
        code.setProjectedAmount(row.amount(QStringLiteral("ProjectedAmount")));
}

// An account code by ID, or, for one being added, by its code. The budgets
// are the new year's to write, not a window's.
AuditedRows auditedCodes(const QString &where)
{
    QStringList texts{QStringLiteral("Ledger"),      QStringLiteral("FundID"),    QStringLiteral("AccountCode"),
                      QStringLiteral("AccountName"), QStringLiteral("ParentID"),  QStringLiteral("ProgramID"),
                      QStringLiteral("BuildingID"),  QStringLiteral("StateCode"), QStringLiteral("HistoricalCode"),
                      QStringLiteral("CatAFlag"),    QStringLiteral("CatPFlag"),  QStringLiteral("CatCFlag")};
    std::vector<AuditColumn> columns;
    for (const QString &name : texts)
        columns.push_back({name});
    columns.push_back({QStringLiteral("ProjectedAmount"), AuditColumn::Kind::Amount});
    return {QStringLiteral("AccountCodes"),
            {QStringLiteral("ID")},
            std::move(columns),
            where,
            QStringLiteral("AccountCode")};
}

AuditedRows auditedCode(qint64 id)
{
    return auditedCodes(QStringLiteral("id = ") + number(id));
}

} // namespace

void clsAccountCode::setLedgerID(const QString &ledger)
{
    const QString value = ledger.trimmed().toUpper();
    if (value.isEmpty() || value == u"R" || value == u"E")
        ledgerId_ = value;
}

ClsAccountSummary::ClsAccountSummary() : StoreBase(QStringLiteral("ClsAccountSummary"))
{
}

QString ClsAccountSummary::fundLedgerCondition() const
{
    return QStringLiteral(" where Ledger = ") + sqlText(accountCode_.LedgerID()) + QStringLiteral(" and FundID = ") +
           sqlText(accountCode_.FundID());
}

bool ClsAccountSummary::Add()
{
    const clsAccountCode &a = accountCode_;
    const QStringList values{a.LedgerID(),           a.FundID(),           a.AccountCode(),
                             a.AccountName(),        number(a.ParentID()), number(a.ProgramID()),
                             number(a.BuildingID()), a.StateCode(),        a.HistoricalCode(),
                             a.CatAFlag(),           a.CatPFlag(),         a.CatCFlag()};
    QStringList quoted;
    for (const QString &value : values)
        quoted << sqlText(value);
    const QString sql = QStringLiteral("Insert into AccountCodes (Ledger, FundID, "
                                       "AccountCode, AccountName, ParentID, ProgramID, "
                                       "BuildingID , StateCode, HistoricalCode, CatAFlag, "
                                       "CatPFlag, CatCFlag )"
                                       "Values (") +
                        quoted.join(u',') + u')';
    return changeRows(sql, QStringLiteral("Account Codes"), Expect::ExactlyOne,
                      always(QStringLiteral("Invalid number of records added!")),
                      auditedCodes(QStringLiteral("AccountCode = ") + sqlText(a.AccountCode())));
}

QString ClsAccountSummary::updateStatement() const
{
    const clsAccountCode &a = accountCode_;
    // No blank between the amount and "Where": the connection separates them.
    return QStringLiteral("Update AccountCodes Set ") + QStringLiteral("Ledger = ") + sqlText(a.LedgerID()) + u',' +
           QStringLiteral("FundID = ") + sqlText(a.FundID()) + u',' + QStringLiteral("AccountCode = ") +
           sqlText(a.AccountCode()) + u',' + QStringLiteral("AccountName = ") + sqlText(a.AccountName()) + u',' +
           QStringLiteral("ParentID = ") + sqlText(number(a.ParentID())) + u',' + QStringLiteral("ProgramID = ") +
           sqlText(number(a.ProgramID())) + u',' + QStringLiteral("BuildingID = ") + sqlText(number(a.BuildingID())) +
           u',' + QStringLiteral("StateCode =") + sqlText(a.StateCode()) + u',' + QStringLiteral("HistoricalCode = ") +
           sqlText(a.HistoricalCode()) + u',' + QStringLiteral("CatAFlag = ") + sqlText(a.CatAFlag()) + u',' +
           QStringLiteral("CatPFlag = ") + sqlText(a.CatPFlag()) + u',' + QStringLiteral("CatCFlag = ") +
           sqlText(a.CatCFlag()) + u',' + QStringLiteral("ProjectedAmount = ") + a.ProjectedAmount().toSqlText() +
           QStringLiteral("Where id = ") + number(a.ID());
}

bool ClsAccountSummary::Update()
{
    return changeRows(updateStatement(), QStringLiteral("Update"), Expect::ExactlyOne,
                      always(QStringLiteral("No record found to be Update.")), auditedCode(accountCode_.ID()));
}

bool ClsAccountSummary::UpdateBatch()
{
    return Update();
}

bool ClsAccountSummary::Delete()
{
    return changeRows(QStringLiteral("Update AccountCodes Set HistoricalCode = 'H' Where id = ") +
                          number(accountCode_.ID()),
                      QStringLiteral("Delete"), Expect::AtLeastOne,
                      always(QStringLiteral("No record found to be delete.")), auditedCode(accountCode_.ID()));
}

bool ClsAccountSummary::readCodes(const QString &sql, const QString &sub, std::vector<clsAccountCode> &codes,
                                  bool withAmount)
{
    return readList<clsAccountCode>(
        sql, sub, codes, [withAmount](const Recordset &row, clsAccountCode &code) { fillCode(row, code, withAmount); });
}

bool ClsAccountSummary::GetList(std::vector<clsAccountCode> &codes)
{
    return readCodes(QStringLiteral("select * from AccountCodes") + fundLedgerCondition(), QStringLiteral("GetList"),
                     codes, false);
}

bool ClsAccountSummary::GetListWithSecurity(std::vector<clsAccountCode> &codes, const std::any &)
{
    return GetList(codes);
}

bool ClsAccountSummary::Retrieve(bool byCode)
{
    const QString sql =
        byCode ? QStringLiteral("Select * from AccountCodes where AccountCode = ") + sqlText(accountCode_.AccountCode())
               : QStringLiteral("Select * from AccountCodes where id = ") + number(accountCode_.ID());
    return retrieveFirst(sql, QStringLiteral("Retrieve"), QStringLiteral("Record not Found."),
                         [this](const Recordset &row) { fillCode(row, accountCode_, true); });
}

bool ClsAccountSummary::FindAccountCode(const QString &code, bool &found)
{
    Recordset rows;
    if (!query(QStringLiteral("Select Accountcode from AccountCodes where AccountCode = ") + sqlText(code),
               QStringLiteral("FindAccountCode"), rows))
        return false;
    found = !rows.atEnd();
    rows.Close();
    return true;
}

bool ClsAccountSummary::GetChildren(const QString &viewMode, std::vector<clsAccountCode> &codes)
{
    QString sql = QStringLiteral("select * from AccountCodes") + fundLedgerCondition();
    const QString mode = viewMode.toUpper();
    const auto under = [&sql](const QString &column, qint64 id) {
        sql += QStringLiteral(" And %1 = ").arg(column) + sqlText(number(id)) + QStringLiteral(" ") +
               QStringLiteral(" Order by AccountCode");
    };
    if (mode == u"T")
        under(QStringLiteral("ParentID"), accountCode_.ParentID());
    else if (mode == u"B")
        under(QStringLiteral("BuildingID"), accountCode_.BuildingID());
    else if (mode == u"P")
        under(QStringLiteral("ProgramID"), accountCode_.ProgramID());
    return readCodes(sql, QStringLiteral("GetChildren"), codes, true);
}

bool ClsAccountSummary::CountAccountCode(const QString &prefix, qint64 &count)
{
    // The asterisk stays as the statement has always been written.
    const QString sql = QStringLiteral("select count(*) As RecCount from AccountCodes") + fundLedgerCondition() +
                        QStringLiteral(" And ParentID = ") + sqlText(number(accountCode_.ParentID())) +
                        QStringLiteral(" AND AccountCode like ") + sqlText(prefix.trimmed() + u'*');
    Recordset rows;
    if (!query(sql, QStringLiteral("CountAccountCode"), rows))
        return false;
    count = rows.atEnd() ? 0 : rows.number(QStringLiteral("RecCount"));
    rows.Close();
    return true;
}

void ClsAccountSummary::ClearAccountCode()
{
    accountCode_ = clsAccountCode();
}

bool ClsAccountSummary::ValidateAccount(QString &code)
{
    Error().Clear();
    code = code.trimmed().toUpper();
    const QString fund = accountCode_.FundID();
    if (code.left(fund.size()).compare(fund, Qt::CaseInsensitive) != 0) {
        report(0, QStringLiteral("ValidateAccount"),
               QStringLiteral("Account code must start with the current viewing fund."));
        return false;
    }
    bool found = false;
    if (!FindAccountCode(code, found)) {
        Error().setErrorSub(QStringLiteral("ValidateAccount"));
        return false;
    }
    if (found) {
        report(0, QStringLiteral("ValidateAccount"), QStringLiteral("Account code already exists."));
        return false;
    }
    return true;
}
