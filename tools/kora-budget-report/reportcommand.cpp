#include "reportcommand.h"

#include "adoconnection.h"
#include "appglobals.h"
#include "budgetdbconfig.h"
#include "chartpainter.h"
#include "fundfieldvalue.h"
#include "installationfunds.h"
#include "modmain.h"
#include "reportdefinition.h"
#include "reportdocument.h"
#include "reportgenerator.h"
#include "reportpreparation.h"

#include <optional>

namespace {

enum class Output { Pdf, Csv, Xlsx };

struct ReportArguments {
    QString configPath;
    QString login;
    QString root;
    QString report;
    std::optional<QString> ledger;
    QString fund = QStringLiteral("A");
    int option = 4; // "Current Year Actual"
    std::optional<QString> compare;
    QString category;
    bool percent = false;
    QString format;
    Output output = Output::Pdf;
    QString file;
};

// nullopt after saying what is wrong on err.
std::optional<ReportArguments> parse(const QStringList &arguments, QTextStream &err)
{
    ReportArguments parsed;
    QStringList positional;
    int outputs = 0;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &word = arguments[i];
        if (!word.startsWith(QLatin1String("--"))) {
            positional << word;
            continue;
        }
        if (word == QLatin1String("--percent")) {
            parsed.percent = true;
            continue;
        }
        if (i + 1 >= arguments.size()) {
            err << word << " needs a value.\n";
            return std::nullopt;
        }
        const QString value = arguments[++i];
        if (word == QLatin1String("--config")) {
            parsed.configPath = value;
        } else if (word == QLatin1String("--ledger")) {
            parsed.ledger = value.toUpper();
            if (*parsed.ledger != u"E" && *parsed.ledger != u"R") {
                err << "--ledger takes E or R, not \"" << value << "\".\n";
                return std::nullopt;
            }
        } else if (word == QLatin1String("--fund")) {
            parsed.fund = value.trimmed().toUpper();
        } else if (word == QLatin1String("--option")) {
            bool ok = false;
            parsed.option = value.toInt(&ok);
            if (!ok)
                parsed.option = 0; // said as an unknown option once the report is known
        } else if (word == QLatin1String("--compare")) {
            parsed.compare = value;
        } else if (word == QLatin1String("--category")) {
            parsed.category = value;
        } else if (word == QLatin1String("--format")) {
            parsed.format = value;
        } else if (word == QLatin1String("--pdf") || word == QLatin1String("--csv") || word == QLatin1String("--xlsx")) {
            parsed.output = word == QLatin1String("--pdf")   ? Output::Pdf
                            : word == QLatin1String("--csv") ? Output::Csv
                                                             : Output::Xlsx;
            parsed.file = value;
            ++outputs;
        } else {
            err << "Unknown option " << word << ".\n";
            return std::nullopt;
        }
    }
    if (positional.size() != 3) {
        err << "Expected <login-id> <root> <report>, got " << positional.size() << " words.\n";
        return std::nullopt;
    }
    if (outputs != 1) {
        err << "Name exactly one output: --pdf FILE, --csv FILE or --xlsx FILE.\n";
        return std::nullopt;
    }
    parsed.login = positional[0];
    parsed.root = positional[1];
    parsed.report = positional[2];
    return parsed;
}

bool knownFund(const QString &fund, QString &why)
{
    std::vector<FundEntry> funds;
    if (!readInstallationFunds(funds, why))
        return false;
    QStringList ids;
    for (const FundEntry &entry : funds) {
        if (entry.id.trimmed().compare(fund, Qt::CaseInsensitive) == 0)
            return true;
        ids << entry.id.trimmed();
    }
    why = QStringLiteral("Unknown fund \"%1\"; the funds are: %2.").arg(fund, ids.join(QLatin1String(", ")));
    return false;
}

// The choices the dialog would have given; false with `why` for a value the report does not know.
bool choicesFor(const ReportArguments &arguments, ReportKind kind, const QString &ledger, ReportChoices &choices,
                QString &why)
{
    choices.report = reportRow(kind, ledger).name;
    choices.ledger = ledger;
    choices.fund = arguments.fund;
    choices.type = reportTypes().first();
    choices.percent = arguments.percent;
    if (arguments.compare) {
        choices.records = 2;
        choices.compareCode = *arguments.compare;
    }
    if (kind == ReportKind::Status) {
        if (arguments.option < 1 || arguments.option > statusOptions().size()) {
            why = QStringLiteral("Unknown option; --option takes 1 to %1:").arg(statusOptions().size());
            for (qsizetype i = 0; i < statusOptions().size(); ++i)
                why += QStringLiteral("\n  %1  %2").arg(i + 1).arg(statusOptions()[i]);
            return false;
        }
        choices.option = statusOptions()[arguments.option - 1];
    }
    if (kind == ReportKind::PublicBudget && !arguments.category.isEmpty()) {
        const qsizetype at = publicBudgetCategories().indexOf(arguments.category, 0);
        if (at < 0) {
            why = QStringLiteral("Unknown category \"%1\"; the categories are: %2.")
                      .arg(arguments.category, publicBudgetCategories().join(QLatin1String(", ")));
            return false;
        }
        choices.category = publicBudgetCategories()[at];
    }
    return true;
}

bool formatIdOf(const QString &name, std::int32_t &id, QString &why)
{
    if (name.isEmpty()) {
        why = QStringLiteral("The generator report needs --format NAME, the name of a report format.");
        return false;
    }
    clsReportGenerator generator;
    generator.setAdoConnection(gadoConnection->dbConnection());
    generator.ReportName().Name = name;
    if (!generator.RetrieveReportName(true)) {
        why = QStringLiteral("Unknown report format \"%1\": %2").arg(name, generator.Error().ErrorText());
        return false;
    }
    id = generator.ReportName().ID;
    return true;
}

bool write(const ReportDocument &document, Output output, const QString &file, QString &why)
{
    switch (output) {
    case Output::Pdf:
        return document.writePdf(file, why);
    case Output::Csv:
        return document.writeCsv(file, why);
    case Output::Xlsx:
        return document.writeXlsx(file, why);
    }
    return false;
}

// The session the program opens, closed again however the command ends.
struct Session {
    ~Session()
    {
        if (gadoConnection)
            CloseDatabase();
        gadoConnection.reset();
    }
};

} // namespace

QString reportUsage()
{
    return QStringLiteral(
               "Usage: kora-budget-report [--config FILE] LOGIN-ID ROOT REPORT [--ledger E|R] [--fund A]\n"
               "         [--option N] [--compare CODE] [--category NAME] [--percent] [--format NAME]\n"
               "         (--pdf FILE | --csv FILE | --xlsx FILE)\n"
               "\n"
               "REPORT is one of: %1.\n"
               "--option N is the status reports' option (1-6, default 4, \"Current Year Actual\");\n"
               "--category the public budget's component; --format the generator format's name.\n")
        .arg(reportNames().join(QLatin1String(", ")));
}

int runReportCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    const std::optional<ReportArguments> parsed = parse(arguments, err);
    if (!parsed) {
        err << '\n' << reportUsage();
        return ReportExit::Usage;
    }
    ReportKind kind;
    QString ledger;
    if (!reportByName(parsed->report, kind, ledger)) {
        err << "Unknown report \"" << parsed->report << "\"; the reports are: " << reportNames().join(", ") << ".\n";
        return ReportExit::Unknown;
    }
    ledger = parsed->ledger.value_or(ledger.isEmpty() ? QStringLiteral("E") : ledger);

    QString why;
    const QString configPath =
        parsed->configPath.isEmpty() ? BudgetDbConfig::resolvePath({}) : parsed->configPath;
    const std::optional<BudgetDbConfig> config = BudgetDbConfig::load(configPath, &why);
    if (!config) {
        err << why << '\n';
        return ReportExit::Failed;
    }
    if (!config->fundCodePage.isEmpty())
        setFundCodePage(config->fundCodePage);
    Session session;
    if (!OpenDatabase(*config) || !OpenSession(parsed->login + u' ' + parsed->root))
        return ReportExit::Failed;

    ReportChoices choices;
    if (!choicesFor(*parsed, kind, ledger, choices, why) ||
        (kind != ReportKind::TaxRevenue && kind != ReportKind::Chart && !knownFund(parsed->fund, why)) ||
        (kind == ReportKind::Generated && !formatIdOf(parsed->format, choices.formatId, why))) {
        err << why << '\n';
        return ReportExit::Unknown;
    }

    ReportPreparation preparation(ReportEnvironment::fromAppContext());
    if (!preparation.readYears()) {
        err << "Error reading Years! " << preparation.Error().ErrorText() << '\n';
        return ReportExit::Failed;
    }
    const std::unique_ptr<ReportDefinition> definition = preparation.prepare(kind, choices);
    if (!definition) {
        err << preparation.Error().ErrorSub() << ": " << preparation.Error().ErrorText() << '\n';
        return ReportExit::Failed;
    }
    setChartPainter(paintReportChart);
    const ReportSources sources{gadoConnection->dbConnection().get(), gstrRootPath};
    const std::unique_ptr<ReportDocument> document = ReportDocument::run(*definition, sources, why);
    if (!document || !write(*document, parsed->output, parsed->file, why)) {
        err << why << '\n';
        return ReportExit::Failed;
    }
    const int pages = document->pageCount();
    out << "Wrote " << document->title() << " (" << pages << (pages == 1 ? " page" : " pages") << ") to "
        << parsed->file << ".\n";
    return ReportExit::Ok;
}
