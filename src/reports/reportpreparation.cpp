#include "reportpreparation.h"

#include "adoconnection.h"
#include "appglobals.h"
#include "customername.h"
#include "reportdefinition.h"
#include "reportgenerator.h"
#include "taxlevy.h"
#include "treesummary.h"
#include "years.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace {

constexpr std::int32_t reportError = 999;

// The error handler's name for each report's procedure.
QString procedureOf(ReportKind kind)
{
    switch (kind) {
    case ReportKind::Status:
        return QStringLiteral("PrintStatusReport");
    case ReportKind::TaxRevenue:
        return QStringLiteral("PrintTaxRevenueReport");
    case ReportKind::PublicBudget:
        return QStringLiteral("PrintPublicBudgetReport");
    case ReportKind::VersusProposed:
        return QStringLiteral("PrintVsProposedReport");
    case ReportKind::Historical:
        return QStringLiteral("PrintHistoricalReport");
    case ReportKind::AccountCodes:
        return QStringLiteral("PrintAccountCodeListing");
    case ReportKind::Chart:
        return QStringLiteral("PrintChart");
    case ReportKind::Generated:
        return QStringLiteral("PrintGeneratedReport");
    }
    return {};
}

// The public budget's categories: the component code the folders are read
// with, the Category formula's text and the definition's own selection formula.
struct CategoryRule {
    const char *choice;
    const char *code;
    const char *title;
    const char *selectionFormula;
};

constexpr CategoryRule categoryRules[] = {
    {"Administrative", "A", "'Administrative Component'", ""},
    {"Program", "P", "'Program Component'", "CatPRecordSelection"},
    {"Capital", "C", "'Capital Component'", "CatCRecordSelection"},
    {"No Category Defined", "", "'No Category Defined'", "NoCatSelectionRecord"},
};

const CategoryRule *categoryRule(const QString &choice)
{
    for (const CategoryRule &rule : categoryRules)
        if (choice.compare(QLatin1String(rule.choice), Qt::CaseInsensitive) == 0)
            return &rule;
    return nullptr;
}

bool isAllComponents(const QString &category)
{
    return category.isEmpty() || category.compare(publicBudgetCategories().first(), Qt::CaseInsensitive) == 0;
}

// A parameter's text as a value of the field's declared type.
ReportValue valueFor(const ParameterField &field, const QString &text)
{
    switch (field.Type) {
    case ReportValue::Type::Number:
        if (const std::optional<Currency> number = Currency::parse(text))
            return ReportValue::number(*number);
        return {};
    case ReportValue::Type::Boolean:
        return ReportValue::boolean(text == u"Y" || text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0);
    default:
        return ReportValue::text(text);
    }
}

// A text for the formula language, in single quotes.
QString quoted(QString text)
{
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
}

QString idList(const std::vector<qint64> &ids)
{
    QStringList texts;
    for (qint64 id : ids)
        texts << QString::number(id);
    return texts.join(QLatin1String(", "));
}

// The "Details" subreports when they read the current year's Kora-Fund
// summaries: their table (known to them as "Summary") is re-pointed at the
// year's summary of the ledger. "Details" gives the year's actual so far
// (Col2Amount) and what is still open: the outstanding encumbrances of an
// expenditure, the unrealized balance of a revenue; "Details - 01" gives the
// transfers and adjustments and the revised budget.
struct SubreportFormulas {
    QString subreport;
    QString col2Amount;
    QString fundData; // the ledger's CalExpFundData or CalRevFundData
};

struct CurrentActuals {
    QString record;     // the Kora-Fund record name of the ledger's summary
    QString fundDataName;
    std::array<SubreportFormulas, 2> subreports;
};

CurrentActuals currentActualsOf(const QString &ledger)
{
    const SubreportFormulas adjustments{QStringLiteral("Details - 01"), QStringLiteral("{Summary.BudgetAdjustment}"),
                                        QStringLiteral("{Summary.RevisedBudget}")};
    if (ledger == u"R")
        return {QStringLiteral("SummaryRevenue"),
                QStringLiteral("CalRevFundData"),
                {{{QStringLiteral("Details"), QStringLiteral("{Summary.RevenueReceived}"),
                   QStringLiteral("{Summary.UnearnedBalance}")},
                  adjustments}}};
    return {QStringLiteral("SummaryExpenditure"),
            QStringLiteral("CalExpFundData"),
            {{{QStringLiteral("Details"), QStringLiteral("{Summary.PaymentExpense}"),
               QStringLiteral("{Summary.Encumbrance}")},
              adjustments}}};
}

const QString summaryAlias = QStringLiteral("Summary");

} // namespace

ReportEnvironment ReportEnvironment::fromAppContext()
{
    ReportEnvironment environment;
    environment.db = gadoConnection ? gadoConnection->dbConnection() : nullptr;
    environment.rootPath = gstrRootPath;
    environment.fundPath = gstrFundPath;
    environment.proposalId = gstrProposalID;
    environment.proposedYear = gstrProposedYearID;
    environment.calendarYear = gbCalendarYear;
    environment.propertyTaxCodes =
        gadoConnection ? gadoConnection->config().propertyTaxCodes : BudgetDbConfig::defaultPropertyTaxCodes();
    return environment;
}

bool compareYearsFor(const QString &option, const std::vector<QString> &historical, CompareYears &years, QString &why)
{
    const qsizetype index = statusOptions().indexOf(option);
    if (index < 0) {
        why = QStringLiteral("Unknown option \"%1\"; the options are: %2.").arg(option, statusOptions().join("; "));
        return false;
    }
    if (historical.empty()) {
        why = QStringLiteral("There is no historical budget year to compare with.");
        return false;
    }
    years = {};
    years.rptOption = int(index) + 1;
    if (years.rptOption == 1) {
        if (historical.size() < 2) {
            why = QStringLiteral("\"%1\" needs two historical years; the budget has only %2.")
                      .arg(option, historical.back());
            return false;
        }
        years.year = historical[historical.size() - 2];
        years.year2 = historical.back();
    } else {
        years.year = historical.back();
    }
    return true;
}

QString effectiveCompareCode(const ReportChoices &choices)
{
    return choices.records == 2 && !choices.compareCode.trimmed().isEmpty() ? choices.compareCode : QString();
}

struct ReportPreparation::Run {
    ReportKind kind;
    const ReportChoices &choices;
    QString sub;
    QString ledger;
    QString fund;
    QHash<QString, QString> values; // by parameter name
    std::vector<std::pair<QString, QString>> formulas; // name, text
    std::unique_ptr<ReportDefinition> definition;
    std::optional<QString> category; // the public budget's component code, when one was chosen
    QStringList selectionFormulas; // the definition's own formulas joined into the selection
    std::vector<qint64> folders;
};

ReportPreparation::ReportPreparation(ReportEnvironment environment) : environment_(std::move(environment))
{
    error_.setErrorCls(QStringLiteral("modReports"));
}

ReportPreparation::~ReportPreparation() = default;

bool ReportPreparation::fail(const QString &sub, const QString &text)
{
    // Filled as a database's error is, so no record-manager wording replaces the report's own.
    error_.setDatabaseError(reportError, sub, text);
    return false;
}

bool ReportPreparation::readYears()
{
    clsYears years;
    years.setAdoConnection(environment_.db);
    historical_.clear();
    if (!years.GetHistYears(historical_) || !years.GetCurrentBudgetYear()) {
        error_ = years.Error();
        return false;
    }
    currentYear_ = years.YearItem().ID;
    return true;
}

const QString &ReportPreparation::customerName()
{
    if (!customerName_)
        customerName_ = GetCustomerName(environment_.rootPath, environment_.fundPath);
    return *customerName_;
}

std::unique_ptr<ReportDefinition> ReportPreparation::prepare(ReportKind kind, const ReportChoices &choices)
{
    error_.Clear();
    const ReportInfo &info = reportInfo(kind);
    Run run{kind, choices, procedureOf(kind), choices.ledger == u"R" ? QStringLiteral("R") : QStringLiteral("E"),
            choices.fund.trimmed(), {}, {}, nullptr, {}, {}, {}};
    if (kind == ReportKind::TaxRevenue) {
        // The levy is the general fund's: its appropriations against its revenues.
        run.fund = QStringLiteral("A");
        run.ledger = QStringLiteral("E");
    }

    const QString compareCode = effectiveCompareCode(choices);
    run.values = {
        {"NodeType", kind == ReportKind::AccountCodes ? choices.nodeType : QStringLiteral("T")},
        {"LedgerID", run.ledger},
        {"Ledger", run.ledger},
        {"FundID", run.fund},
        {"ProposalID", environment_.proposalId},
        {"CustomerName", customerName()},
        {"ProposedYear", environment_.proposedYear},
        {"CurBudgetYear", currentYear_},
        {"CompareCode", compareCode},
        {"RptType", choices.type},
        {"Percent", choices.percent ? QStringLiteral("Y") : QStringLiteral("N")},
        {"CalenderYear", environment_.calendarYear ? QStringLiteral("Y") : QStringLiteral("N")},
        {"CalendarYear", environment_.calendarYear ? QStringLiteral("Y") : QStringLiteral("N")},
    };
    // The comparisons: the current budget year against the proposed one, and
    // the four latest historical years, oldest first ("" where there are fewer).
    run.values.insert("Year1", currentYear_);
    run.values.insert("Year2", environment_.proposedYear);
    if (kind == ReportKind::Historical) {
        for (int n = 1; n <= 4; ++n) {
            const qsizetype at = qsizetype(historical_.size()) - 5 + n;
            run.values.insert(QStringLiteral("Year%1").arg(n), at >= 0 ? historical_[size_t(at)] : QString());
        }
    }

    if (kind == ReportKind::Status && !statusValues(run))
        return nullptr;
    if (kind == ReportKind::Generated && !generatorValues(run))
        return nullptr;
    if (kind == ReportKind::TaxRevenue && !taxLevyFormulas(run))
        return nullptr;
    // The chart takes no district parameter; its page header still names the district.
    if (kind == ReportKind::Chart)
        run.formulas.emplace_back(QStringLiteral("District"), quoted(customerName()));

    const QString path = findReportDefinition(environment_.rootPath, info.file);
    if (path.isEmpty()) {
        fail(run.sub, QStringLiteral("The report definition %1 is neither in %2/reports/budget nor among the "
                                     "program's reports.")
                          .arg(info.file, environment_.rootPath));
        return nullptr;
    }
    QString why;
    run.definition = ReportDefinition::load(path, why);
    if (!run.definition) {
        fail(run.sub, why);
        return nullptr;
    }
    applyParameters(run);

    if (!currentActuals(run))
        return nullptr;
    if (kind == ReportKind::PublicBudget && !applyCategory(run))
        return nullptr;
    for (const auto &[formula, text] : run.formulas) {
        if (!run.definition->setFormula(formula, text, why)) {
            fail(run.sub, why);
            return nullptr;
        }
    }
    if (choices.orientation != 0)
        run.definition->setOrientation(choices.orientation == 2 ? PaperOrientation::Landscape
                                                                : PaperOrientation::Portrait);
    // The folders carrying a compare code are "T" folders: a listing by
    // buildings or programs is not narrowed.
    const bool byFolders = kind != ReportKind::TaxRevenue && kind != ReportKind::Chart &&
                           (kind != ReportKind::AccountCodes || run.values.value("NodeType") == u"T");
    if (byFolders && !narrow(run))
        return nullptr;
    return std::move(run.definition);
}

bool ReportPreparation::statusValues(Run &run)
{
    CompareYears years;
    QString why;
    if (!compareYearsFor(run.choices.option, historical_, years, why))
        return fail(run.sub, why);
    run.values.insert("RptOption", QString::number(years.rptOption));
    run.values.insert("CompareYear", years.year);
    run.values.insert("CompareYear2", years.year2);
    return true;
}

void ReportPreparation::applyParameters(Run &run)
{
    const QStringList &names = reportInfo(run.kind).parameters;
    for (ParameterField &field : run.definition->ParameterFields()) {
        for (const QString &name : names) {
            if (field.Name.compare(name, Qt::CaseInsensitive) == 0 && run.values.contains(name)) {
                field.CurrentValue = valueFor(field, run.values.value(name));
                break;
            }
        }
    }
}

bool ReportPreparation::currentActuals(Run &run)
{
    // The status report shows the current year's actuals for options 4 and 5
    // only; the comparison with the proposal and the generator's current-year
    // columns always do.
    const int option = run.values.value("RptOption").toInt();
    const bool wanted = run.kind == ReportKind::Status ? option == 4 || option == 5
                                                       : run.kind == ReportKind::VersusProposed ||
                                                             run.kind == ReportKind::Generated;
    if (!wanted)
        return true;
    clsYears years;
    years.setAdoConnection(environment_.db);
    years.YearItem().ID = currentYear_;
    QString tableId;
    if (!years.GetFundYearTableId(tableId)) {
        error_ = years.Error();
        return false;
    }
    const CurrentActuals actuals = currentActualsOf(run.ledger);
    const QString table = tableId + u'_' + actuals.record;
    for (const SubreportFormulas &formulas : actuals.subreports) {
        ReportDefinition *details = run.definition->OpenSubreport(formulas.subreport);
        if (!details)
            return fail(run.sub, QStringLiteral("The report definition %1 has no subreport \"%2\".")
                                     .arg(run.definition->path(), formulas.subreport));
        QString why;
        if (!details->setFormula(QStringLiteral("Col2Amount"), formulas.col2Amount, why) ||
            !details->setFormula(actuals.fundDataName, formulas.fundData, why) ||
            !details->setTableLocation(summaryAlias, table, why))
            return fail(run.sub, why);
    }
    return true;
}

bool ReportPreparation::taxLevyFormulas(Run &run)
{
    TaxLevy proposed;
    TaxLevy adopted;
    DbError error;
    if (!readProposedTaxLevy(*environment_.db, environment_.proposalId, environment_.propertyTaxCodes, proposed,
                             &error) ||
        !readCurrentTaxLevy(*environment_.db, environment_.propertyTaxCodes, adopted, &error))
        return fail(run.sub, error.text);
    const auto amount = [](Currency value) { return value.toSqlText(); };
    run.formulas = {{QStringLiteral("PropertyTaxCodes"), quoted(environment_.propertyTaxCodes.join(", "))},
                    {QStringLiteral("ProposedAppropriations"), amount(proposed.appropriations)},
                    {QStringLiteral("ProposedOtherRevenue"), amount(proposed.otherRevenues)},
                    {QStringLiteral("ProposedTaxLine"), amount(proposed.propertyTaxBudgeted)},
                    {QStringLiteral("AdoptedAppropriations"), amount(adopted.appropriations)},
                    {QStringLiteral("AdoptedOtherRevenue"), amount(adopted.otherRevenues)},
                    {QStringLiteral("AdoptedTaxLine"), amount(adopted.propertyTaxBudgeted)}};
    return true;
}

bool ReportPreparation::applyCategory(Run &run)
{
    if (isAllComponents(run.choices.category))
        return true;
    const CategoryRule *rule = categoryRule(run.choices.category);
    if (!rule)
        return fail(run.sub, QStringLiteral("Unknown category \"%1\"; the categories are: %2.")
                                 .arg(run.choices.category, publicBudgetCategories().join("; ")));
    run.formulas.emplace_back(QStringLiteral("Category"), QLatin1String(rule->title));
    run.category = QLatin1String(rule->code);
    if (*rule->selectionFormula)
        run.selectionFormulas << QLatin1String(rule->selectionFormula);
    return true;
}

bool ReportPreparation::foldersCarrying(const QString &fund, const QString &ledger, const QString &compareCode,
                                        const std::optional<QString> &category, std::vector<qint64> &ids)
{
    clsTreeSummary tree;
    tree.setAdoConnection(environment_.db);
    tree.setCompareCode(compareCode);
    tree.setCat(category.has_value());
    tree.setCategory(category.value_or(QString()));
    tree.TreeItem().NodeType = QStringLiteral("T");
    tree.TreeItem().FundID = fund;
    tree.TreeItem().LedgerID = ledger;
    tree.TreeItem().ParentID = 0;
    std::vector<clsTreeItem> top;
    if (!tree.GetChildren(top)) {
        error_ = tree.Error();
        return false;
    }
    for (const clsTreeItem &folder : top) {
        if (!tree.GetFoldersAcctCodeCount(folder, 1)) {
            error_ = tree.Error();
            return false;
        }
    }
    ids.clear();
    for (const clsTreeItem &folder : tree)
        if (folder.RecCount > 0)
            ids.push_back(folder.ID);
    return true;
}

bool ReportPreparation::narrow(Run &run)
{
    const QString compareCode = run.values.value("CompareCode");
    if (!foldersCarrying(run.fund, run.ledger, compareCode, run.category, run.folders))
        return false;
    // Nothing to print is said rather than printed as an empty report.
    if (run.folders.empty()) {
        QString text = compareCode.trimmed().isEmpty()
                           ? QStringLiteral("Fund %1, ledger %2 has no account codes to report").arg(run.fund, run.ledger)
                           : QStringLiteral("No account code of fund %1, ledger %2 begins with \"%3\"")
                                 .arg(run.fund, run.ledger, compareCode.trimmed());
        if (run.category)
            text += QStringLiteral(" in the category \"%1\"").arg(run.choices.category);
        return fail(run.sub, text + u'.');
    }
    // An empty selection keeps every row; the narrowing still needs something to follow.
    QString selection = run.definition->RecordSelectionFormula().trimmed();
    if (selection.isEmpty())
        selection = QStringLiteral("true");
    for (const QString &formula : std::as_const(run.selectionFormulas))
        selection += QStringLiteral(" and {@") + formula + u'}';
    selection += QStringLiteral(" and {SummaryTree.ID} in [ ") + idList(run.folders) + QStringLiteral("]");
    QString why;
    if (!run.definition->setRecordSelectionFormula(selection, why))
        return fail(run.sub, why);
    if (run.kind == ReportKind::Generated && !run.definition->setParameter(QStringLiteral("FolderList"),
                                                                           ReportValue::text(idList(run.folders))))
        return fail(run.sub, QStringLiteral("The report definition %1 has no parameter FolderList.")
                                 .arg(run.definition->path()));
    return true;
}

bool ReportPreparation::generatorValues(Run &run)
{
    clsReportGenerator generator;
    generator.setAdoConnection(environment_.db);
    generator.ReportName().ID = run.choices.formatId;
    std::vector<clsReportHeadings> headings;
    if (!generator.RetrieveReportName(false) || !generator.GetReportHeadings(headings)) {
        error_ = generator.Error();
        return false;
    }
    const clsReportName &format = generator.ReportName();
    if (run.fund.isEmpty())
        run.fund = format.FundID.trimmed();
    run.ledger = format.Ledger.trimmed().toUpper() == u"R" ? QStringLiteral("R") : QStringLiteral("E");
    run.values.insert("LedgerID", run.ledger);
    run.values.insert("FundID", run.fund);
    run.values.insert("ReportName", format.Name);
    const QString prior = historical_.empty() ? QString() : historical_.back();
    const QString prior2 = historical_.size() < 2 ? QString() : historical_[historical_.size() - 2];
    run.values.insert("PriorYear", prior);
    run.values.insert("Prior2Year", prior2);

    generator.BugdetYear = currentYear_;
    generator.ProposedYear = environment_.proposedYear;
    generator.PriorYear = prior;
    generator.Prior1Year = prior2;
    // The columns' headings (the year on a second line) and the report variables behind them.

    std::vector<clsReportHeadings> available;
    generator.getAvailHeadingList(available);
    const auto offered = [&available](const clsReportHeadings &heading) {
        return std::any_of(available.begin(), available.end(), [&heading](const clsReportHeadings &known) {
            return known.ReportHeading.compare(heading.ReportHeading.trimmed(), Qt::CaseInsensitive) == 0;
        });
    };
    int column = 0;
    for (const clsReportHeadings &heading : headings) {
        // The account code and name always print; only the amount columns are the format's choice.
        if (!offered(heading))
            continue;
        ++column;
        run.formulas.emplace_back(QStringLiteral("HdgCol%1").arg(column),
                                  quoted(heading.ReportHeadingDesc) + QStringLiteral(" & chr(13) & ") +
                                      quoted(generator.HeadingYear(heading.ReportHeading)));
        run.formulas.emplace_back(QStringLiteral("Col%1").arg(column),
                                  QStringLiteral("{@") + heading.ReportVariable + u'}');
    }
    run.formulas.emplace_back(QStringLiteral("ColumnsDisplay"), QString::number(column));
    return true;
}
