#include "sampleinstallation.h"

#include "dates.h"
#include "dictionary.h"
#include "fundfieldvalue.h"
#include "installationschema.h"
#include "objectparameters.h"

#include <QDir>

#include <array>
#include <random>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

// Builds one record of a table field by field; a value that does not fit is
// a fault of the generator and stops it.
class RecordBuilder {
public:
    explicit RecordBuilder(const recman::TableDef &table) : table_(table), record_(table.recordLength()) { clear(); }

    RecordBuilder &clear()
    {
        std::fill(record_.begin(), record_.end(), std::uint8_t{0});
        for (const recman::FieldDef &field : table_.fields) {
            if (field.type == recman::DataType::String)
                std::fill_n(record_.begin() + field.offset, field.size, std::uint8_t(' '));
        }
        return *this;
    }

    RecordBuilder &set(const recman::FieldDef &field, const QVariant &value)
    {
        QString why;
        if (!writeFundField(field, value, record_, fundCodePage(), ' ', why))
            throw std::runtime_error(table_.name + ": " + why.toStdString());
        return *this;
    }

    RecordBuilder &set(const char *name, const QVariant &value)
    {
        const recman::FieldDef *field = table_.field(name);
        if (!field)
            throw std::runtime_error(std::string("no field ") + name + " in " + table_.name);
        return set(*field, value);
    }

    const std::vector<std::uint8_t> &record() const { return record_; }

private:
    const recman::TableDef &table_;
    std::vector<std::uint8_t> record_;
};

using Rows = std::vector<std::vector<std::uint8_t>>;

void writeTable(const fs::path &fundFolder, const QString &tableName, const recman::RecordSource &source)
{
    const FundTableSpec &spec = installationTable(tableName);
    std::string why;
    const auto status = recman::createDataFile(fundFolder / spec.fileName.toStdString(), spec.table, source, why,
                                               recman::CreateMode::Overwrite);
    if (status != recman::Status::Success)
        throw std::runtime_error(spec.fileName.toStdString() + ": " + why);
}

void writeRows(const fs::path &fundFolder, const QString &tableName, const Rows &rows)
{
    std::size_t next = 0;
    writeTable(fundFolder, tableName, [&](std::vector<std::uint8_t> &record) {
        if (next == rows.size())
            return false;
        record = rows[next++];
        return true;
    });
}

// Fills rows of a table from a list of (field, value) records.
using Values = std::vector<std::pair<const char *, QVariant>>;
void writeValues(const fs::path &fundFolder, const char *tableName, const std::vector<Values> &records)
{
    RecordBuilder builder(installationTable(QString::fromLatin1(tableName)).table);
    Rows rows;
    for (const Values &values : records) {
        builder.clear();
        for (const auto &[field, value] : values)
            builder.set(field, value);
        rows.push_back(builder.record());
    }
    writeRows(fundFolder, QString::fromLatin1(tableName), rows);
}

QString orDefault(const QString &mask, const QString &fundId, const char *pattern)
{
    return mask.isEmpty() ? fundId + QString::fromLatin1(pattern) : mask;
}

QString yyyymmdd(const QDate &date)
{
    return FormatYYYYMMDD(date);
}

void writeFundsAndYears(const fs::path &fund, const SampleDistrict &district)
{
    std::vector<Values> funds, checking, years, yearList, buildings;
    for (const SampleFund &f : district.funds) {
        funds.push_back({{"ID", f.id},
                         {"Name", f.name},
                         {"Checking ID", f.checkingId},
                         {"GL Mask", orDefault(f.glMask, f.id, "###")},
                         {"RL Mask", orDefault(f.rlMask, f.id, "####")},
                         {"EL Mask", orDefault(f.elMask, f.id, "####.*")}});
        checking.push_back({{"Checking ID", f.checkingId},
                            {"Name", f.checkingName},
                            {"Bank Account", f.bankAccount},
                            {"GL Account Code", f.id + QStringLiteral("200")}});
    }
    for (const int year : district.years) {
        const bool latest = year == district.years.back();
        const QString number = QString::number(year);
        years.push_back({{"YearNumber", number},
                         {"Name", QStringLiteral("Fiscal Year ") + number},
                         {"Changeable", latest ? QStringLiteral("Y") : QStringLiteral("N")},
                         {"Fiscal Year Start", yyyymmdd(FiscalYearStart(district.firstFiscalMonth, year))},
                         {"Fiscal Year End", yyyymmdd(FiscalYearEnd(district.firstFiscalMonth, year))}});
        yearList.push_back({{"YearNumber", number},
                            {"TableId", QStringLiteral("FY") + number},
                            {"Name", QStringLiteral("Fiscal Year ") + number}});
    }
    for (const auto &[id, name] : district.buildings)
        buildings.push_back({{"Building ID", id}, {"Name", name}});
    writeValues(fund, "Funds", funds);
    writeValues(fund, "Checking Accounts", checking);
    writeValues(fund, "Years", years);
    writeValues(fund, "YearList", yearList);
    writeValues(fund, "Buildings", buildings);
}

void writeParameters(const fs::path &fund, const SampleDistrict &d)
{
    const int lastMonth = (d.firstFiscalMonth + 10) % 12 + 1;
    writeValues(fund, "FundParameters",
                {{{"Record Type", QStringLiteral("PARMS")},
                  {"First Fiscal Month", d.firstFiscalMonth},
                  {"End Fiscal Month", lastMonth},
                  {"PO Form Type", QStringLiteral("S")},
                  {"PO Vendor Notes", standardVendorNotes()},
                  {"Warrant Sort", QStringLiteral("V")},
                  {"Cash Disb Signature", QStringLiteral("Y")},
                  {"Combine Voucher Def", QStringLiteral("N")},
                  {"Next CR Number", 1},
                  {"Next PO Number", 1},
                  {"Elec Auth", QStringLiteral("N")},
                  {"Elec Auth PO Sort", QStringLiteral("P")}}});
    const QString today = yyyymmdd(FiscalYearStart(d.firstFiscalMonth, d.years.back()));
    writeValues(fund, "SysParameters",
                {{{"Name", d.name},
                  {"Report Name", d.reportName.isEmpty() ? d.name : d.reportName},
                  {"Address 1", d.address1},
                  {"Address 2", d.address2},
                  {"City", d.city},
                  {"State", d.state},
                  {"Zip Code", d.zipCode},
                  {"Area Code", d.areaCode},
                  {"Telephone", d.telephone},
                  {"Fax Number", d.fax},
                  {"SED Code", d.sedCode},
                  {"DateAdd", today},
                  {"DateChg", today},
                  {"EmpPayEnc", QStringLiteral("N")},
                  {"First Fiscal Month", d.firstFiscalMonth},
                  {"End Fiscal Month", lastMonth}}});
}

struct PrivilegeDef {
    const char *module;
    const char *key;
    const char *description;
};

const std::array<PrivilegeDef, 21> budgetPrivileges{{
    {"FILE", "mnuFileProposedBudget", "Enter the proposed budget"},
    {"EDIT", "mnuBudgetAccountCodes", "Edit account codes"},
    {"REPORTS", "mnuReportBudgetStatus", "Budget status report"},
    {"REPORTS", "mnuReportHistorical", "Historical comparison report"},
    {"REPORTS", "mnuReportsExpenditureVsBudget", "Expenditure vs budget report"},
    {"REPORTS", "mnuReportRevenueStatus", "Revenue status report"},
    {"REPORTS", "mnuReportRevenueVsBudget", "Revenue vs budget report"},
    {"REPORTS", "mnuReportTax", "Analysis of tax revenue"},
    {"REPORTS", "mnuReportsGenerator", "Report generator"},
    {"REPORTS", "15310", "Create report formats"},
    {"REPORTS", "15340", "Edit report formats"},
    {"REPORTS", "15330", "Delete report formats"},
    {"REPORTS", "mnuReportsPublicBudget", "Public budget report"},
    {"REPORTS", "mnuReportCharts", "Charts"},
    {"MAINT", "mnuMaintOrganization", "Maintain the organisation"},
    {"MAINT", "mnuMaintProposal", "Maintain proposals"},
    {"MAINT", "mnuMaintAccountCodes", "Maintain account codes"},
    {"MAINT", "mnuMaintFundBalances", "Maintain fund balances"},
    {"MAINT", "mnuMaintEqualDistricts", "Maintain equalization districts"},
    {"UTIL", "mnuInitializeBudget", "Initialize a new budget year"},
    {"UTIL", "mnuChooseProposal", "Change the active proposal"},
}};

void writeSecurity(const fs::path &fund)
{
    const QString budget = QStringLiteral("BUDGET");
    const QString yes = QStringLiteral("Y");
    const QString no = QStringLiteral("N");
    writeValues(fund, "Users",
                {{{"ID", QStringLiteral("U001")},
                  {"Login User ID", QStringLiteral("BUSINESS")},
                  {"First Name", QStringLiteral("Pat")},
                  {"Middle Initial", QStringLiteral("Q")},
                  {"Last Name", QStringLiteral("Business")},
                  {"Print Preview", QStringLiteral("1")},
                  {"Restrict Acct Codes", no},
                  {"Active", yes}},
                 {{"ID", QStringLiteral("U002")},
                  {"Login User ID", QStringLiteral("CLERK")},
                  {"First Name", QStringLiteral("Casey")},
                  {"Last Name", QStringLiteral("Clerk")},
                  {"Print Preview", QStringLiteral("0")},
                  {"Restrict Acct Codes", yes},
                  {"Active", yes}}});
    writeValues(
        fund, "UserPrivileges",
        {{{"User ID", QStringLiteral("U001")}, {"Application ID", budget}, {"Access", yes}, {"All Privileges", yes}},
         {{"User ID", QStringLiteral("U002")}, {"Application ID", budget}, {"Access", yes}, {"All Privileges", no}},
         {{"User ID", QStringLiteral("U002")},
          {"Application ID", QStringLiteral("FUND")},
          {"Access", yes},
          {"All Privileges", yes}}});
    std::vector<Values> grants;
    for (const char *key :
         {"mnuFileProposedBudget", "mnuReportBudgetStatus", "mnuReportRevenueStatus", "mnuChooseProposal"})
        grants.push_back({{"User ID", QStringLiteral("U002")},
                          {"Application ID", budget},
                          {"Privilege Key", QString::fromLatin1(key)},
                          {"Granted", yes}});
    grants.push_back({{"User ID", QStringLiteral("U002")},
                      {"Application ID", budget},
                      {"Privilege Key", QStringLiteral("mnuInitializeBudget")},
                      {"Granted", no}});
    writeValues(fund, "AppPrivileges", grants);
    std::vector<Values> definitions;
    for (const PrivilegeDef &def : budgetPrivileges)
        definitions.push_back({{"Application ID", budget},
                               {"Privilege Key", QString::fromLatin1(def.key)},
                               {"Module ID", QString::fromLatin1(def.module)},
                               {"Description", QString::fromLatin1(def.description)}});
    definitions.push_back({{"Application ID", QStringLiteral("FUND")},
                           {"Privilege Key", QStringLiteral("mnuPostJournal")},
                           {"Module ID", QStringLiteral("POST")},
                           {"Description", QStringLiteral("Post journal entries")}});
    writeValues(fund, "AppPrivDefs", definitions);
    std::vector<Values> modules;
    for (const auto &[id, name] : std::initializer_list<std::pair<const char *, const char *>>{{"EDIT", "Editing"},
                                                                                               {"FILE", "Budget entry"},
                                                                                               {"MAINT", "Maintenance"},
                                                                                               {"REPORTS", "Reports"},
                                                                                               {"UTIL", "Utilities"}})
        modules.push_back(
            {{"Application ID", budget}, {"Module ID", QString::fromLatin1(id)}, {"Name", QString::fromLatin1(name)}});
    writeValues(fund, "AppModules", modules);
    writeValues(fund, "AcctCodeAccess",
                {{{"User ID", QStringLiteral("U002")}, {"Sequence", 1}, {"Entry", QStringLiteral("A2###.*")}},
                 {{"User ID", QStringLiteral("U002")}, {"Sequence", 2}, {"Entry", QStringLiteral("[CF]*")}}});
}

} // namespace

namespace {

using MonthSums = std::array<std::array<Currency, 5>, 12>;

struct Transaction {
    QString column{};
    QDate date{};
    Currency amount1{};
    Currency amount2{};
    QString reference{};
    QString referenceText{};
    QString vendor{};
    QString encumbrance{};
    QString invoice{};
    QString check{};
    QString receipt{};
};

// Streams the detail transactions account by account, adding each into the
// monthly sums of its account so that the summaries agree with them.
class TransactionStream {
public:
    TransactionStream(const std::vector<SampleAccount> &accounts, int perAccount, QDate fiscalStart, int monthsPosted,
                      std::uint64_t seed, std::vector<MonthSums> &sums)
        : accounts_(accounts), perAccount_(std::max(perAccount, 1)), start_(fiscalStart),
          monthsPosted_(std::clamp(monthsPosted, 2, 12)), lastPostedDay_(start_.addMonths(monthsPosted_).addDays(-1)),
          random_(seed), sums_(sums), table_(installationTable(QStringLiteral("Transactions")).table), builder_(table_)
    {
        for (const char *name : {"ID", "Ledger ID", "Fund ID", "Account Code", "Trans Date", "Reference Number",
                                 "Reference Text", "Vendor ID", "Description", "Encumbrance Number", "Invoice Number",
                                 "Check Number", "Receipt Number", "Column ID", "Amount 1", "Amount 2"})
            fields_.push_back(table_.field(name));
    }

    std::int64_t count() const { return nextId_ - 1; }

    bool next(std::vector<std::uint8_t> &record)
    {
        while (pending_.empty()) {
            if (account_ == accounts_.size())
                return false;
            plan(account_++);
        }
        const SampleAccount &account = accounts_[account_ - 1];
        const Transaction t = pending_.back();
        pending_.pop_back();
        const QStringList amounts = monthlyAmountNames(account.ledger);
        const int amountIndex = static_cast<int>(amounts.indexOf(monthlyAmountForColumn(account.ledger, t.column)));
        sums_[account_ - 1][static_cast<std::size_t>(t.date.month() - 1)][static_cast<std::size_t>(amountIndex)] +=
            t.amount1;
        const std::array<QVariant, 16> values{QVariant::fromValue<qlonglong>(nextId_++),
                                              QString(account.ledger),
                                              account.fundId,
                                              account.code,
                                              FormatYYYYMMDD(t.date),
                                              t.reference,
                                              t.referenceText,
                                              t.vendor,
                                              account.name.left(30),
                                              t.encumbrance,
                                              t.invoice,
                                              t.check,
                                              t.receipt,
                                              t.column,
                                              QVariant::fromValue(t.amount1),
                                              QVariant::fromValue(t.amount2)};
        builder_.clear();
        for (std::size_t i = 0; i < values.size(); ++i)
            builder_.set(*fields_[i], values[i]);
        record = builder_.record();
        return true;
    }

private:
    Currency randomAmount() { return Currency::fromRaw(static_cast<std::int64_t>(1000 + random_() % 499000) * 100); }
    QDate randomDate(int fromMonth)
    {
        const int month =
            fromMonth + static_cast<int>(random_() % static_cast<std::uint64_t>(monthsPosted_ - fromMonth));
        return start_.addMonths(month).addDays(static_cast<int>(random_() % 28));
    }

    // A purchase order placed for the amount; paid (liquidated and paid) unless still outstanding.
    void addPurchase(std::vector<Transaction> &planned, Currency amount, bool paid)
    {
        const QString po = QString::number(++purchaseOrder_).rightJustified(6, u'0');
        const QDate placed = randomDate(0);
        const QDate payday = std::min(placed.addDays(static_cast<int>(random_() % 40)), lastPostedDay_);
        const QString vendor = QStringLiteral("V%1").arg(random_() % 500, 4, 10, QLatin1Char('0'));
        planned.push_back({QStringLiteral("EP"), placed, amount, amount, QStringLiteral("PE") + po,
                           QStringLiteral("Purchase order"), vendor, po});
        if (!paid)
            return;
        const QString check = QString::number(++check_);
        planned.push_back({QStringLiteral("EL"),
                           payday,
                           amount,
                           {},
                           QStringLiteral("PR") + po,
                           QStringLiteral("Liquidation"),
                           vendor,
                           po});
        planned.push_back({QStringLiteral("PE"),
                           payday,
                           amount,
                           {},
                           QStringLiteral("CK") + check,
                           QStringLiteral("Payment"),
                           vendor,
                           po,
                           QStringLiteral("INV") + po,
                           check});
    }

    void addReceipt(std::vector<Transaction> &planned, Currency amount)
    {
        const QString receipt = QString::number(++receipt_);
        planned.push_back({QStringLiteral("RR"),
                           randomDate(0),
                           amount,
                           {},
                           QStringLiteral("CR") + receipt,
                           QStringLiteral("Receipt"),
                           {},
                           {},
                           {},
                           {},
                           receipt});
    }

    void addAdjustment(std::vector<Transaction> &planned, Currency amount)
    {
        planned.push_back({QStringLiteral("BA"),
                           randomDate(1),
                           amount,
                           {},
                           QStringLiteral("BA%1").arg(++adjustment_),
                           QStringLiteral("Budget transfer")});
    }

    // The total in `count` random parts of whole cents that add up to it exactly.
    std::vector<Currency> parts(Currency total, int count)
    {
        std::vector<std::int64_t> weights;
        std::int64_t sum = 0;
        for (int i = 0; i < count; ++i)
            sum += weights.emplace_back(static_cast<std::int64_t>(1 + random_() % 100));
        const std::int64_t cents = total.raw() / 100;
        std::vector<Currency> result;
        Currency given;
        for (int i = 0; i + 1 < count; ++i) {
            const auto share = static_cast<std::int64_t>(static_cast<__int128>(cents) * weights[std::size_t(i)] / sum);
            result.push_back(Currency::fromRaw(share * 100));
            given += result.back();
        }
        result.push_back(total - given);
        return result;
    }

    // Transactions that add up to the account's known figures.
    void planActuals(const SampleAccount &account, std::vector<Transaction> &planned)
    {
        const SampleActuals &figures = *account.actuals;
        if (!figures.adjustments.isZero())
            addAdjustment(planned, figures.adjustments);
        const int room = std::max(1, perAccount_ - static_cast<int>(planned.size()));
        if (account.ledger == u'R') {
            if (!figures.actual.isZero())
                for (const Currency part : parts(figures.actual, room))
                    addReceipt(planned, part);
            return;
        }
        if (!figures.actual.isZero())
            for (const Currency part : parts(figures.actual, std::max(1, room / 3)))
                addPurchase(planned, part, true);
        if (!figures.encumbered.isZero())
            addPurchase(planned, figures.encumbered, false);
    }

    void planRandom(const SampleAccount &account, std::vector<Transaction> &planned)
    {
        while (static_cast<int>(planned.size()) < perAccount_) {
            const int room = perAccount_ - static_cast<int>(planned.size());
            const Currency amount = randomAmount();
            if (account.ledger == u'E' && room >= 3) {
                addPurchase(planned, amount, true);
            } else if (account.ledger == u'R') {
                addReceipt(planned, amount);
            } else if (account.ledger == u'G') {
                const bool debit = planned.size() % 2 == 0;
                planned.push_back({debit ? QStringLiteral("DR") : QStringLiteral("CR"),
                                   randomDate(0),
                                   amount,
                                   {},
                                   QStringLiteral("JE%1").arg(++journal_),
                                   QStringLiteral("Journal entry")});
            } else {
                addAdjustment(planned, amount);
            }
        }
    }

    // Queues an account's transactions (popped from the back, so pushed newest first).
    void plan(std::size_t index)
    {
        const SampleAccount &account = accounts_[index];
        std::vector<Transaction> planned;
        const QString year = QString::number(start_.addYears(1).year());
        if (account.ledger == u'G')
            planned.push_back({QStringLiteral("DR"),
                               start_,
                               account.budget,
                               {},
                               QStringLiteral("JE") + year,
                               QStringLiteral("Opening balance")});
        else
            planned.push_back({QStringLiteral("OE"),
                               start_,
                               account.budget,
                               {},
                               QStringLiteral("OE") + year,
                               QStringLiteral("Adopted budget")});
        if (account.actuals && account.ledger != u'G')
            planActuals(account, planned);
        else
            planRandom(account, planned);
        pending_.assign(planned.rbegin(), planned.rend());
    }

    const std::vector<SampleAccount> &accounts_;
    int perAccount_;
    QDate start_;
    int monthsPosted_;
    QDate lastPostedDay_;
    std::mt19937_64 random_;
    std::vector<MonthSums> &sums_;
    const recman::TableDef &table_;
    RecordBuilder builder_;
    std::vector<const recman::FieldDef *> fields_;
    std::vector<Transaction> pending_;
    std::size_t account_ = 0;
    std::int64_t nextId_ = 1;
    int purchaseOrder_ = 0;
    int check_ = 1000;
    int receipt_ = 0;
    int journal_ = 0;
    int adjustment_ = 0;
};

void writeSummary(const fs::path &fund, const char *tableName, QChar ledger, const std::vector<SampleAccount> &accounts,
                  const std::vector<MonthSums> &sums)
{
    const recman::TableDef &table = installationTable(QString::fromLatin1(tableName)).table;
    RecordBuilder builder(table);
    const QStringList amounts = monthlyAmountNames(ledger);
    std::vector<const recman::FieldDef *> monthly;
    for (int month = 1; month <= 12; ++month) {
        for (const QString &amount : amounts)
            monthly.push_back(table.field(monthlyFieldName(month, amount).toStdString()));
    }
    std::size_t next = 0;
    writeTable(fund, QString::fromLatin1(tableName), [&](std::vector<std::uint8_t> &record) {
        while (next < accounts.size() && accounts[next].ledger != ledger)
            ++next;
        if (next == accounts.size())
            return false;
        const SampleAccount &a = accounts[next];
        builder.clear()
            .set("Account Code", a.code)
            .set("Fund ID", a.fundId)
            .set("Parent ID", a.parentId)
            .set("Name", a.name.left(40))
            .set("Building ID", a.buildingId)
            .set("Program ID", a.programId)
            .set("State Code", a.stateCode);
        for (std::size_t month = 0; month < 12; ++month) {
            for (qsizetype k = 0; k < amounts.size(); ++k)
                builder.set(*monthly[month * static_cast<std::size_t>(amounts.size()) + static_cast<std::size_t>(k)],
                            QVariant::fromValue(sums[next][month][static_cast<std::size_t>(k)]));
        }
        record = builder.record();
        ++next;
        return true;
    });
}

// The district's accounts, a cash account per fund when it has no general
// ledger, and synthetic expenditure accounts up to the wanted count.
std::vector<SampleAccount> allAccounts(const SampleDistrict &district, const SampleOptions &options)
{
    std::vector<SampleAccount> accounts = district.accounts;
    for (const SampleFund &fund : district.funds) {
        const bool hasGeneral = std::ranges::any_of(
            accounts, [&](const SampleAccount &a) { return a.fundId == fund.id && a.ledger == u'G'; });
        if (!hasGeneral)
            accounts.push_back({fund.id + QStringLiteral("200"),
                                fund.id,
                                u'G',
                                QStringLiteral("Cash"),
                                fund.id + QStringLiteral("200"),
                                {},
                                {},
                                {},
                                Currency::fromUnits(100000)});
    }
    std::mt19937_64 random(options.seed ^ 0x5a5a);
    for (int n = 0; static_cast<int>(accounts.size()) < options.accounts; ++n) {
        const QString code =
            QStringLiteral("A9%1.%2").arg(n / 1000, 3, 10, QLatin1Char('0')).arg(n % 1000, 3, 10, QLatin1Char('0'));
        accounts.push_back({code,
                            QStringLiteral("A"),
                            u'E',
                            QStringLiteral("Supplies %1").arg(n + 1),
                            code.left(5),
                            {},
                            {},
                            {},
                            Currency::fromRaw(static_cast<std::int64_t>(100000 + random() % 9900000) * 10000)});
    }
    return accounts;
}

int writeDictionary(const fs::path &root, QString &message)
{
    std::vector<recman::TableDef> tables;
    for (const FundTableSpec &spec : installationTables())
        tables.push_back(spec.table);
    std::string why;
    const auto status = recman::createDictionary(root, tables, why, fundCodePage());
    message = QString::fromStdString(why);
    return recman::statusNumber(status);
}

} // namespace

int createSampleInstallation(const QString &root, const SampleDistrict &district, const SampleOptions &options,
                             QString &message, SampleSummary *summary)
{
    try {
        if (district.years.empty() || district.funds.empty())
            throw std::runtime_error("the district needs at least one year and one fund");
        const fs::path rootPath = root.toStdString();
        const fs::path fund = rootPath / "FUND";
        fs::create_directories(fund);
        if (const int status = writeDictionary(rootPath, message); status != 0)
            return status;
        writeFundsAndYears(fund, district);
        writeParameters(fund, district);
        writeSecurity(fund);

        const std::vector<SampleAccount> accounts = allAccounts(district, options);
        const std::int64_t wanted =
            options.transactions > 0 ? options.transactions : static_cast<std::int64_t>(accounts.size()) * 7;
        const int perAccount =
            static_cast<int>(std::max<std::int64_t>(1, wanted / static_cast<std::int64_t>(accounts.size())));
        std::vector<MonthSums> sums(accounts.size());
        TransactionStream stream(accounts, perAccount,
                                 FiscalYearStart(district.firstFiscalMonth, district.years.back()),
                                 district.monthsPosted, options.seed, sums);
        writeTable(fund, QStringLiteral("Transactions"),
                   [&](std::vector<std::uint8_t> &record) { return stream.next(record); });
        writeSummary(fund, "SummaryRevenue", u'R', accounts, sums);
        writeSummary(fund, "SummaryExpenditure", u'E', accounts, sums);
        writeSummary(fund, "SummaryGeneral", u'G', accounts, sums);
        writeValues(fund, "Counters",
                    {{{"Counter Name", QStringLiteral("Detail Transactions")},
                      {"Next Value", QVariant::fromValue<qlonglong>(stream.count() + 1)}}});
        if (summary)
            *summary = {static_cast<std::int64_t>(accounts.size()), stream.count()};
        message.clear();
        return 0;
    } catch (const std::exception &error) {
        message = QString::fromStdString(error.what());
        return static_cast<int>(recman::Status::CreateIoError);
    }
}

SampleDistrict smallSampleDistrict()
{
    SampleDistrict d;
    d.name = QStringLiteral("Lakeview Union Free School District");
    d.address1 = QStringLiteral("12 School Street");
    d.city = QStringLiteral("Lakeview");
    d.zipCode = QStringLiteral("12000-0001");
    d.areaCode = QStringLiteral("518");
    d.telephone = QStringLiteral("555-010-0100");
    d.sedCode = QStringLiteral("000000000001");
    d.years = {2023, 2024, 2025};
    d.funds = {{QStringLiteral("A"), QStringLiteral("General Fund"), QStringLiteral("GEN"),
                QStringLiteral("General Fund Checking"), QStringLiteral("100-200-300")},
               {QStringLiteral("C"), QStringLiteral("School Lunch Fund"), QStringLiteral("LUN"),
                QStringLiteral("Lunch Checking"), QStringLiteral("100-200-301")},
               {QStringLiteral("F"), QStringLiteral("Special Aid Fund"), QStringLiteral("SPA"),
                QStringLiteral("Special Aid Checking"), QStringLiteral("100-200-302")}};
    d.buildings = {{QStringLiteral("01"), QStringLiteral("Lakeview Elementary")},
                   {QStringLiteral("02"), QStringLiteral("Lakeview High School")}};
    const auto add = [&](const char *code, QChar ledger, const char *name, std::int64_t budget) {
        const QString text = QString::fromLatin1(code);
        d.accounts.push_back({text,
                              text.left(1),
                              ledger,
                              QString::fromLatin1(name),
                              text.left(5),
                              {},
                              {},
                              {},
                              Currency::fromUnits(budget)});
    };
    add("A1001", u'R', "Real Property Taxes", 9000000);
    add("A3101", u'R', "Basic Formula Aid", 4000000);
    add("A1010.150", u'E', "Board of Education Salaries", 40000);
    add("A1240.150", u'E', "Chief School Administrator Salaries", 180000);
    add("A2110.120", u'E', "Teaching Salaries K-6", 3500000);
    add("A2110.450", u'E', "Teaching Supplies", 120000);
    add("A5510.200", u'E', "District Transportation Equipment", 250000);
    add("C1440", u'R', "Sales of Lunches", 300000);
    add("C2860.400", u'E', "School Lunch Contractual", 280000);
    add("F4289", u'R', "Federal Aid Other", 500000);
    add("F2250.150", u'E', "Special Education Salaries", 450000);
    return d;
}
