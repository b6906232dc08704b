#include "installationschema.h"

#include <QHash>

#include <stdexcept>

namespace {
using recman::DataType;

struct FieldSpec {
    const char *name;
    DataType type;
    int size;
};

FieldSpec text(const char *name, int size)
{
    return {name, DataType::String, size};
}
FieldSpec integer(const char *name, int size)
{
    return {name, DataType::Integer, size};
}

class TableBuilder {
public:
    TableBuilder(const char *name, const char *fileName)
    {
        spec_.table.name = name;
        spec_.fileName = QString::fromLatin1(fileName);
        spec_.table.location = std::string("FUND\\") + fileName;
    }

    TableBuilder &fields(std::initializer_list<FieldSpec> list)
    {
        for (const FieldSpec &field : list)
            add(field.name, field.type, field.size, 0);
        return *this;
    }

    TableBuilder &amount(const QString &name)
    {
        add(name.toStdString(), DataType::Currency, 8, 4);
        return *this;
    }

    TableBuilder &monthly(QChar ledger)
    {
        for (int month = 1; month <= 12; ++month) {
            for (const QString &amountName : monthlyAmountNames(ledger))
                amount(monthlyFieldName(month, amountName));
        }
        return *this;
    }

    // flags: 'd' duplicates, 'i' case-insensitive (text segments), 'm' modifiable
    TableBuilder &key(std::initializer_list<const char *> segments, const char *flags = "")
    {
        const std::string_view f(flags);
        recman::IndexDef index;
        index.duplicates = f.find('d') != f.npos;
        index.modifiable = f.find('m') != f.npos || index.duplicates;
        for (const char *segment : segments) {
            const recman::FieldDef *field = spec_.table.field(segment);
            if (!field)
                throw std::logic_error(std::string("key on unknown field ") + segment);
            index.segments.push_back({segment, false, f.find('i') != f.npos && field->type == DataType::String});
        }
        spec_.table.indexes.push_back(std::move(index));
        return *this;
    }

    FundTableSpec done() { return spec_; }

private:
    void add(std::string name, DataType type, int size, int decimals)
    {
        const auto length = static_cast<std::uint32_t>(size);
        spec_.table.fields.push_back({std::move(name), type, offset_, length, static_cast<std::uint8_t>(decimals), 0});
        offset_ += length;
    }

    FundTableSpec spec_;
    std::uint32_t offset_ = 0;
};

const std::initializer_list<FieldSpec> summaryAccountFields{
    text("Account Code", 20), text("Fund ID", 2),    text("Parent ID", 20),  text("Name", 40),
    text("Building ID", 4),   text("Program ID", 4), text("State Code", 20),
};

TableBuilder &summaryKeys(TableBuilder &table)
{
    return table.key({"Account Code"})
        .key({"Fund ID", "Account Code"})
        .key({"Parent ID", "Account Code"}, "d")
        .key({"State Code", "Account Code"}, "d");
}

FundTableSpec summary(const char *name, const char *file, QChar ledger)
{
    TableBuilder table(name, file);
    table.fields(summaryAccountFields).monthly(ledger);
    return summaryKeys(table).done();
}

std::vector<FundTableSpec> buildTables()
{
    std::vector<FundTableSpec> tables;
    tables.push_back(TableBuilder("Funds", "Funds.btr")
                         .fields({text("ID", 2), text("Name", 40), text("Checking ID", 4), text("GL Mask", 20),
                                  text("RL Mask", 20), text("EL Mask", 20)})
                         .key({"ID"}, "i")
                         .key({"Checking ID"}, "d")
                         .done());
    tables.push_back(
        TableBuilder("Checking Accounts", "Checking.btr")
            .fields({text("Checking ID", 4), text("Name", 40), text("Bank Account", 20), text("GL Account Code", 20)})
            .key({"Checking ID"}, "i")
            .done());
    tables.push_back(TableBuilder("Years", "Years.btr")
                         .fields({text("YearNumber", 4), text("Name", 30), text("Changeable", 1),
                                  text("Fiscal Year Start", 8), text("Fiscal Year End", 8)})
                         .key({"YearNumber"})
                         .done());
    tables.push_back(TableBuilder("YearList", "YearList.btr")
                         .fields({text("YearNumber", 4), text("TableId", 10), text("Name", 30)})
                         .key({"YearNumber"})
                         .key({"TableId"}, "i")
                         .done());
    tables.push_back(TableBuilder("FundParameters", "FundPara.btr")
                         .fields({text("Record Type", 5),
                                  integer("First Fiscal Month", 2),
                                  integer("End Fiscal Month", 2),
                                  text("PO Form Type", 1),
                                  text("PO Vendor Notes", 500),
                                  text("Warrant Sort", 1),
                                  text("Cash Disb Signature", 1),
                                  text("Combine Voucher Def", 1),
                                  integer("Next CR Number", 4),
                                  integer("Next PO Number", 4),
                                  text("Elec Auth", 1),
                                  text("Elec Auth Pswd", 10),
                                  text("Elec Auth PO Sort", 1),
                                  text("CDSchedSect1", 30),
                                  text("CDSchedSect2", 30),
                                  text("CDSchedSect3", 30),
                                  text("Spare", 40),
                                  text("CD Settings", 20),
                                  text("CR Settings", 20),
                                  text("EN Settings", 20),
                                  text("JE Settings", 20),
                                  text("BT Settings", 20),
                                  text("ET Settings", 20),
                                  text("RT Settings", 20)})
                         .key({"Record Type"})
                         .done());
    tables.push_back(
        TableBuilder("SysParameters", "Params.btr")
            .fields({text("Name", 50), text("Report Name", 50), text("Address 1", 40), text("Address 2", 40),
                     text("City", 30), text("State", 3), text("Zip Code", 10), text("Area Code", 3),
                     text("Telephone", 12), text("Fax Number", 12), text("Tax Exempt", 15), text("SED Code", 12),
                     text("DateAdd", 8), text("DateChg", 8), text("EmpPayEnc", 1), integer("First Fiscal Month", 2),
                     integer("End Fiscal Month", 2)})
            .key({"Name"}, "dm")
            .done());
    tables.push_back(summary("SummaryRevenue", "SumRev.btr", u'R'));
    tables.push_back(summary("SummaryExpenditure", "SumExp.btr", u'E'));
    tables.push_back(summary("SummaryGeneral", "SumGen.btr", u'G'));
    tables.push_back(TableBuilder("Transactions", "DetTrans.btr")
                         .fields({integer("ID", 4), text("Ledger ID", 1), text("Fund ID", 2), text("Account Code", 20),
                                  text("Trans Date", 8), text("Reference Number", 10), text("Reference Text", 20),
                                  text("Vendor ID", 10), text("Description", 30), text("Encumbrance Number", 10),
                                  text("Invoice Number", 10), text("Check Number", 10), text("Receipt Number", 10),
                                  text("Column ID", 2)})
                         .amount(QStringLiteral("Amount 1"))
                         .amount(QStringLiteral("Amount 2"))
                         .key({"ID"})
                         .key({"Account Code", "Trans Date"}, "d")
                         .key({"Ledger ID", "Fund ID", "Account Code", "Trans Date"}, "d")
                         .key({"Vendor ID", "Trans Date"}, "d")
                         .key({"Encumbrance Number", "Trans Date"}, "d")
                         .key({"Check Number"}, "d")
                         .key({"Receipt Number"}, "d")
                         .key({"Reference Number"}, "d")
                         .done());
    tables.push_back(TableBuilder("Counters", "Counters.btr")
                         .fields({text("Counter Name", 30), integer("Next Value", 4)})
                         .key({"Counter Name"}, "i")
                         .done());
    tables.push_back(TableBuilder("Buildings", "building.btr")
                         .fields({text("Building ID", 4), text("Name", 40)})
                         .key({"Building ID"}, "i")
                         .done());
    tables.push_back(
        TableBuilder("Users", "Users.btr")
            .fields({text("ID", 8), text("Login User ID", 20), text("First Name", 20), text("Middle Initial", 1),
                     text("Last Name", 30), text("Print Preview", 1), text("Restrict Acct Codes", 1), text("Active", 1),
                     text("DateAdd", 8), text("DateChg", 8)})
            .key({"ID"}, "i")
            .key({"Login User ID"}, "i")
            .done());
    tables.push_back(
        TableBuilder("UserPrivileges", "UserPriv.btr")
            .fields({text("User ID", 8), text("Application ID", 10), text("Access", 1), text("All Privileges", 1)})
            .key({"User ID", "Application ID"}, "i")
            .key({"Application ID", "User ID"}, "i")
            .done());
    tables.push_back(
        TableBuilder("AppPrivileges", "AppPriv.btr")
            .fields({text("User ID", 8), text("Application ID", 10), text("Privilege Key", 40), text("Granted", 1)})
            .key({"User ID", "Application ID", "Privilege Key"}, "i")
            .done());
    tables.push_back(TableBuilder("AppPrivDefs", "AppPrivDef.btr")
                         .fields({text("Application ID", 10), text("Privilege Key", 40), text("Module ID", 10),
                                  text("Description", 50)})
                         .key({"Application ID", "Privilege Key"}, "i")
                         .key({"Application ID", "Module ID", "Privilege Key"}, "i")
                         .done());
    tables.push_back(TableBuilder("AppModules", "AppModul.btr")
                         .fields({text("Application ID", 10), text("Module ID", 10), text("Name", 40)})
                         .key({"Application ID", "Module ID"}, "i")
                         .done());
    tables.push_back(TableBuilder("AcctCodeAccess", "AcctCode.btr")
                         .fields({text("User ID", 8), integer("Sequence", 2), text("Entry", 20)})
                         .key({"User ID", "Sequence"})
                         .done());
    return tables;
}
} // namespace

QStringList monthlyAmountNames(QChar ledger)
{
    switch (ledger.unicode()) {
    case u'R':
        return {QStringLiteral("Opening Entry"), QStringLiteral("Budget Adjustment"),
                QStringLiteral("Revenue Received")};
    case u'E':
        return {QStringLiteral("Opening Entry"), QStringLiteral("Budget Adjustment"), QStringLiteral("Encum Placed"),
                QStringLiteral("Encum Liquidated"), QStringLiteral("Payment Expense")};
    case u'G':
        return {QStringLiteral("Debits"), QStringLiteral("Credits")};
    default:
        return {};
    }
}

QString monthlyFieldName(int month, const QString &amount)
{
    return QStringLiteral("%1 %2").arg(month, 2, 10, QLatin1Char('0')).arg(amount);
}

const std::vector<FundTableSpec> &installationTables()
{
    static const std::vector<FundTableSpec> tables = buildTables();
    return tables;
}

const FundTableSpec &installationTable(const QString &name)
{
    for (const FundTableSpec &spec : installationTables()) {
        if (QString::fromStdString(spec.table.name).compare(name, Qt::CaseInsensitive) == 0)
            return spec;
    }
    throw std::invalid_argument("no installation table " + name.toStdString());
}

QString monthlyAmountForColumn(QChar ledger, const QString &columnId)
{
    static const QHash<QString, QString> columns{
        {QStringLiteral("R:OE"), QStringLiteral("Opening Entry")},
        {QStringLiteral("R:BA"), QStringLiteral("Budget Adjustment")},
        {QStringLiteral("R:RR"), QStringLiteral("Revenue Received")},
        {QStringLiteral("E:OE"), QStringLiteral("Opening Entry")},
        {QStringLiteral("E:BA"), QStringLiteral("Budget Adjustment")},
        {QStringLiteral("E:EP"), QStringLiteral("Encum Placed")},
        {QStringLiteral("E:EL"), QStringLiteral("Encum Liquidated")},
        {QStringLiteral("E:PE"), QStringLiteral("Payment Expense")},
        {QStringLiteral("G:DR"), QStringLiteral("Debits")},
        {QStringLiteral("G:CR"), QStringLiteral("Credits")},
    };
    return columns.value(ledger.toUpper() + u':' + columnId.trimmed().toUpper());
}
