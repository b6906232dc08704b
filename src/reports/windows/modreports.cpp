#include "modreports.h"

#include "messageservice.h"
#include "reportdefinition.h"
#include "reportgenerator.h"

#include <algorithm>

struct modReports::DialogSetup {
    std::vector<FundEntry> funds;
    QStringList types = reportTypes();
    QStringList options;
    int orientation = 1;
    ReportRow row;
    ReportChoices fixed;         // what the caller decided beforehand (node type, format)
    QString errorTitle;          // "" for the error object's own message box
};

namespace {

// The fund the caller names first, so the row's fund cell starts on it.
std::vector<FundEntry> fundFirst(std::vector<FundEntry> funds, const QString &fund)
{
    std::stable_partition(funds.begin(), funds.end(),
                          [&fund](const FundEntry &entry) { return entry.id.trimmed() == fund.trimmed(); });
    return funds;
}

void showFailure(clsErrObject &error, const QString &title)
{
    error.LogError();
    if (title.isEmpty())
        error.DisplayError();
    else
        messages().errorDialog({1, title, QStringLiteral(" error: ") + error.ErrorText(), false});
}

} // namespace

modReports::modReports(ReportServices services) : services_(std::move(services))
{
}

bool modReports::readYears(ReportPreparation &preparation)
{
    if (preparation.readYears())
        return true;
    messages().errorDialog({1, QStringLiteral("Budgets Years"),
                            QStringLiteral("Error reading Years! ") + preparation.Error().ErrorText(), false});
    return false;
}

void modReports::deliver(ReportPreparation &preparation, ReportKind kind, const ReportChoices &choices,
                         const QString &errorTitle)
{
    std::unique_ptr<ReportDefinition> definition = preparation.prepare(kind, choices);
    if (!definition) {
        showFailure(preparation.Error(), errorTitle);
        return;
    }
    if (choices.preview)
        services_.output->Preview(std::move(definition));
    else
        services_.output->Print(std::move(definition), std::max(1, choices.copies));
}

void modReports::runWithDialog(ReportKind kind, const QString &ledger, const DialogSetup &setup)
{
    ReportPreparation preparation(services_.environment);
    if (!readYears(preparation))
        return;
    std::vector<FundEntry> funds = setup.funds;
    if (funds.empty()) {
        QString why;
        if (!services_.listFunds(funds, why)) {
            messages().errorDialog({1, QStringLiteral("Funds"), QStringLiteral("Cannot read the funds: ") + why, false});
            return;
        }
    }
    const std::unique_ptr<ReportSelection> dialog = services_.makeSelection();
    dialog->setOptionFundSelection(std::move(funds));
    dialog->setOptionTypeSelection(setup.types);
    dialog->setOptionOptionSelection(setup.options);
    dialog->setFrames(true, 1, 1, setup.orientation);
    dialog->setCaption(reportCaption(kind, ledger));
    dialog->AddReport(setup.row);

    for (;;) {
        dialog->ShowDialog();
        if (dialog->CloseAction() != 1)
            return;
        ReportChoices choices = setup.fixed;
        choices.report = dialog->SelectedReport();
        if (choices.report.isEmpty())
            continue;
        choices.ledger = (kind == ReportKind::Status || kind == ReportKind::VersusProposed)
                             ? ledgerOfReport(choices.report)
                             : ledger;
        choices.fund = dialog->SelectedFundID();
        choices.type = dialog->SelectedType();
        if (kind == ReportKind::PublicBudget)
            choices.category = dialog->SelectedOption();
        else
            choices.option = dialog->SelectedOption();
        choices.records = dialog->Records();
        choices.compareCode = dialog->CompareCode();
        choices.percent = dialog->ShowPercent();
        choices.orientation = dialog->Orientation();
        choices.preview = dialog->Preview();
        choices.copies = dialog->Copies();
        deliver(preparation, kind, choices, setup.errorTitle);
    }
}

void modReports::runDirect(ReportKind kind, const ReportChoices &choices)
{
    ReportPreparation preparation(services_.environment);
    if (readYears(preparation))
        deliver(preparation, kind, choices, {});
}

void modReports::PrintStatusReport(const QString &ledger)
{
    DialogSetup setup;
    setup.options = statusOptions();
    setup.orientation = 2;
    setup.row = reportRow(ReportKind::Status, ledger);
    runWithDialog(ReportKind::Status, ledger, setup);
}

void modReports::PrintPublicBudgetReport()
{
    DialogSetup setup;
    setup.options = publicBudgetCategories();
    setup.orientation = 2;
    setup.row = reportRow(ReportKind::PublicBudget, QStringLiteral("E"));
    runWithDialog(ReportKind::PublicBudget, QStringLiteral("E"), setup);
}

void modReports::PrintVsProposedReport(const QString &ledger)
{
    DialogSetup setup;
    setup.orientation = 2;
    setup.row = reportRow(ReportKind::VersusProposed, ledger);
    runWithDialog(ReportKind::VersusProposed, ledger, setup);
}

void modReports::PrintHistoricalReport()
{
    DialogSetup setup;
    setup.orientation = 2;
    setup.row = reportRow(ReportKind::Historical, QStringLiteral("E"));
    runWithDialog(ReportKind::Historical, QStringLiteral("E"), setup);
}

void modReports::PrintAccountCodeListing(const QString &fund, const QString &ledger, const QString &node)
{
    DialogSetup setup;
    QString why;
    if (!services_.listFunds(setup.funds, why)) {
        messages().errorDialog({1, QStringLiteral("Funds"), QStringLiteral("Cannot read the funds: ") + why, false});
        return;
    }
    setup.funds = fundFirst(std::move(setup.funds), fund);
    setup.row = reportRow(ReportKind::AccountCodes, ledger);
    setup.fixed.nodeType = node.isEmpty() ? QStringLiteral("T") : node;
    runWithDialog(ReportKind::AccountCodes, ledger, setup);
}

void modReports::PrintGeneratedReport(std::int32_t formatId)
{
    const QString title = QStringLiteral("Report Format");
    clsReportGenerator generator;
    generator.setAdoConnection(services_.environment.db);
    generator.ReportName().ID = formatId;
    if (!generator.RetrieveReportName(false)) {
        showFailure(generator.Error(), title);
        return;
    }
    const clsReportName &format = generator.ReportName();
    DialogSetup setup;
    QString why;
    if (!services_.listFunds(setup.funds, why)) {
        messages().errorDialog({1, title, QStringLiteral("Cannot read the funds: ") + why, false});
        return;
    }
    setup.funds = fundFirst(std::move(setup.funds), format.FundID);
    setup.orientation = 2;
    setup.row = reportRow(ReportKind::Generated, format.Ledger);
    setup.row.key = QString::number(format.ID);
    setup.row.name = format.Name;
    setup.fixed.formatId = formatId;
    setup.errorTitle = title;
    runWithDialog(ReportKind::Generated, format.Ledger, setup);
}

void modReports::PrintTaxRevenueReport()
{
    ReportChoices choices;
    choices.report = QStringLiteral("TaxRevenue");
    choices.fund = QStringLiteral("A");
    choices.preview = true;
    runDirect(ReportKind::TaxRevenue, choices);
}

void modReports::PrintChart(const QString &ledger)
{
    ReportChoices choices;
    choices.report = QStringLiteral("Chart");
    choices.ledger = ledger;
    choices.preview = true;
    runDirect(ReportKind::Chart, choices);
}
