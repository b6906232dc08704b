// Any bytes as one Kora-Fund data file of the sample installation, read and
// written through the data-access control and the record objects: every
// operation must end in a status, never a crash, overrun or hang.
#include "dataaccesscontrol.h"
#include "errobject.h"
#include "fundfuzz.h"
#include "objectfunds.h"
#include "objectparameters.h"
#include "objectsummaryledgers.h"
#include "objectsysparams.h"
#include "objecttransactions.h"
#include "objectyear.h"

namespace {

constexpr int maxRecords = 2000;

void driveControl(const FundTableSpec &spec)
{
    DataAccessControl control;
    control.setDdfPath(fundfuzz::installationRoot());
    control.setFileName(QString::fromStdString(spec.table.name));
    const int opened = control.Open();
    if (opened != 0 && opened != DataAccessControl::StatusRecordCountMismatch)
        return;
    int seen = 0;
    for (int status = control.StepFirst(); status == 0 && seen < maxRecords; status = control.StepNext(), ++seen)
        for (const auto &field : spec.table.fields)
            control.FieldValue(QString::fromStdString(field.name));
    for (int key = 0; key < static_cast<int>(spec.table.indexes.size()); ++key) {
        control.setIndexNumber(key);
        seen = 0;
        for (int status = control.GetFirst(); status == 0 && seen < maxRecords; status = control.GetNext(), ++seen) {
        }
        if (control.GetLast() == 0)
            control.GetEqual();
    }
    QStringList names;
    for (const auto &field : spec.table.fields)
        names << QString::fromStdString(field.name);
    control.setExtendedOps(true);
    control.setCacheRows(maxRecords);
    control.setSelectedFields(names.join(u','));
    if (control.StepFirst() == 0)
        control.GetNextExtended();
    // A write of the record as read, and one with its first field changed.
    if (control.StepFirst() == 0 && !names.isEmpty()) {
        control.Update();
        control.setFieldValue(names.front(), control.FieldValue(names.front()));
        control.Update();
    }
}

template <class Object> void init(Object &object)
{
    object.Init(fundfuzz::installationRoot(), fundfuzz::installationRoot() + QStringLiteral("\\FUND"));
}

void driveRecordObjects(const std::string &table)
{
    if (table == "Funds") {
        classObjectFunds funds;
        init(funds);
        std::vector<FundFields> list;
        funds.GetList(list);
        funds.RetrieveID(QStringLiteral("A"));
    } else if (table == "Years") {
        classObjectYear years;
        init(years);
        years.RetrieveLatestYear();
    } else if (table == "FundParameters") {
        classObjectParameters parameters;
        init(parameters);
        if (parameters.Retrieve() == 0)
            parameters.UpdateCRMaintParams();
    } else if (table == "SysParameters") {
        classObjectSysParams organisation;
        init(organisation);
        if (organisation.Retrieve() == 0)
            organisation.Update();
    } else if (table == "SummaryExpenditure") {
        classObjectELSummary summary;
        init(summary);
        std::vector<ExpenditureSummaryFields> list;
        summary.FetchAll(list);
        summary.TransDate = QStringLiteral("06");
        if (summary.StepFirst() == 0)
            summary.CalcBalance();
    } else if (table == "Transactions") {
        classObjectTransactions transactions;
        init(transactions);
        QStringList codes;
        transactions.GetListAllAccountCodes(codes);
        Currency amount;
        transactions.CalculateOutstandingAmount(QStringLiteral("A2110.450"), amount);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 1)
        return 0;
    const auto &tables = installationTables();
    const FundTableSpec &spec = tables[data[0] % tables.size()];
    const auto path = fundfuzz::dataFile(spec);
    // Refused files are logged; the log belongs with the fuzzed installation, not in the working folder.
    static const bool logBesideTheFiles = [&] {
        clsErrObject::setLogFilePath(QString::fromStdString((path.parent_path() / "Err.txt").string()));
        return true;
    }();
    (void)logBesideTheFiles;
    std::error_code ignored;
    const auto saved = path.string() + ".saved";
    if (!std::filesystem::exists(saved))
        std::filesystem::copy_file(path, saved, ignored);
    fuzzsupport::writeFile(path, data + 1, size - 1);
    driveControl(spec);
    driveRecordObjects(spec.table.name);
    std::filesystem::copy_file(saved, path, std::filesystem::copy_options::overwrite_existing, ignored);
    return 0;
}
