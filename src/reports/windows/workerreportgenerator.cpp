#include "workerreportgenerator.h"

#include "dates.h"
#include "formreportformat.h"
#include "messageservice.h"

#include <algorithm>

namespace {

const QString statusPanel = QStringLiteral("Status");
const QString idColumn = QStringLiteral("ID");
const QString createKey = QStringLiteral("Report_Create");
const QString editKey = QStringLiteral("Report_Edit");
const QString deleteKey = QStringLiteral("Report_Delete");
const QString printKey = QStringLiteral("_Print");

struct ButtonInfo {
    const QString &key;
    const char *privilege;
    const char *toolTip;
    const char *caption;
    const char *image;
};
const ButtonInfo buttons[] = {
    {createKey, "15310", "Create Report", "Create", "New"},
    {editKey, "15340", "Edit Report", "Edit", "Edit"},
    {deleteKey, "15330", "Delete Report", "Delete", "Delete"},
    {printKey, "", "", "Print", "Print"},
};

GridColumnOptions column(int twips, bool hidden = false)
{
    GridColumnOptions options;
    options.widthTwips = twips;
    options.hidden = hidden;
    return options;
}

} // namespace

workerReportGenerator::workerReportGenerator(ReportGeneratorContext context, QObject *parent)
    : MdiChildWorker(parent), context_(std::move(context))
{
    generator_.setAdoConnection(context_.connection);
    generator_.setAuditTask(AuditTask::ReportFormats);
}

workerReportGenerator::~workerReportGenerator()
{
    delete child_.data();
}

void workerReportGenerator::DoMDIChild(QMdiArea &area)
{
    openChild(QStringLiteral("Report Generator")).setObjectName(QStringLiteral("workerReportGenerator"));
    buildWindow();
    child_->ShowForm(area);
    loadList();
}

void workerReportGenerator::buildWindow()
{
    child_->setLoading(true);
    classToolbar &toolbar = child_->Toolbar();
    for (const ButtonInfo &button : buttons)
        toolbar.AddButton(button.key, QLatin1String(button.privilege), QLatin1String(button.image),
                          QLatin1String(button.toolTip), ToolbarButtonStyle::Default, QLatin1String(button.caption));
    if (context_.lockToolbar)
        context_.lockToolbar(toolbar);

    classGrid &grid = *child_->Grid(1);
    grid.Reset();
    grid.setSingleSelection(true);
    grid.AddColumn(idColumn, QStringLiteral("ID"), column(700, true));
    grid.AddColumn(QStringLiteral("Name"), QStringLiteral("Report  Name"), column(3000));
    grid.AddColumn(QStringLiteral("Description"), QStringLiteral("Report Description"), column(5000));
    grid.AddColumn(QStringLiteral("Date"), QStringLiteral("Modified Date"), column(1500));

    child_->Statusbar().AddPanel(0, statusPanel, {}, {}, PanelAlignment::Left, PanelAutoSize::Spring);
    child_->setLoading(false);
}

void workerReportGenerator::doCommand(const QString &command)
{
    if (command == createKey) {
        openFormat(false);
    } else if (command == editKey) {
        openFormat(true);
    } else if (command == u"_gridLeftDblClick") {
        // The double click edits as the button does, and only for a user the button serves.
        if (child_->Toolbar().ButtonEnabled(editKey))
            openFormat(true);
    } else if (command == deleteKey) {
        deleteFormat();
    } else if (command == printKey) {
        printFormat();
    } else if (command == u"_Refresh") {
        loadList(selectedFormat({}));
    }
}

void workerReportGenerator::loadList(std::int32_t reselect)
{
    classGrid &grid = *child_->Grid(1);
    classStatusbar &status = child_->Statusbar();
    grid.ResetRows();
    classGrouping<clsReportName> names;
    if (!generator_.GetReportNameList(names)) {
        FormReportFormat::showMessage(QStringLiteral(" error: ") + generator_.Error().ErrorText());
        status.setPanelText(statusPanel, {});
        return;
    }
    // By name, whatever order the database keeps its rows in.
    std::vector<const clsReportName *> sorted;
    for (int i = 1; i <= names.Count(); ++i)
        sorted.push_back(&names.Item(i));
    std::stable_sort(sorted.begin(), sorted.end(), [](const clsReportName *a, const clsReportName *b) {
        return a->Name.compare(b->Name, Qt::CaseInsensitive) < 0;
    });
    child_->setLoading(true);
    status.ShowProgress(int(sorted.size()));
    int loaded = 0;
    for (const clsReportName *name : sorted) {
        ++loaded;
        status.ShowStep(statusPanel, QStringLiteral("Loading record ") + QString::number(loaded), loaded);
        const int row = grid.AddRow();
        grid.SetCell(row, idColumn, QString::number(name->ID));
        grid.SetCell(row, QStringLiteral("Name"), name->Name);
        grid.SetCell(row, QStringLiteral("Description"), name->Description);
        grid.SetCell(row, QStringLiteral("Date"),
                     name->ModifiedDate.isValid() ? FormatMMDDYY(name->ModifiedDate) : QString());
    }
    status.HideProgress();
    status.setPanelText(statusPanel, QStringLiteral("%1 report formats").arg(names.Count()));
    child_->setLoading(false);
    grid.Refresh();
    for (int row = 1; row <= grid.CountRows(); ++row) {
        if (grid.GetItemValue(row, idColumn).toInt() == reselect)
            grid.SelectRow(row);
    }
}

std::int32_t workerReportGenerator::selectedFormat(const QString &doing)
{
    const classGrid &grid = *child_->Grid(1);
    const int row = grid.CurrentRow();
    if (row > 0)
        return grid.GetItemValue(row, idColumn).toInt();
    if (!doing.isEmpty())
        FormReportFormat::showMessage(QStringLiteral("Please select the report to ") + doing +
                                      QStringLiteral(" first."));
    return 0;
}

void workerReportGenerator::openFormat(bool edit)
{
    const std::int32_t id = edit ? selectedFormat(QStringLiteral("edit")) : 0;
    if (edit && id == 0)
        return;
    FormReportFormat form(context_.connection, context_.listFunds, child_);
    form.setEditMode(edit);
    form.setID(id);
    const int action = context_.runFormat ? context_.runFormat(form) : form.Display();
    if (action == FormReportFormat::Saved && child_)
        loadList(form.ID());
}

void workerReportGenerator::deleteFormat()
{
    const std::int32_t id = selectedFormat(QStringLiteral("delete"));
    if (id == 0)
        return;
    MessageRequest question;
    question.title = QStringLiteral("Report Format");
    question.text = QStringLiteral("Are you sure you want to delete this report?");
    question.buttons = MsgButtons::YesNo;
    question.icon = MsgIcon::Question;
    question.defaultAnswer = MsgAnswer::No;
    if (messages().messageBox(question) != MsgAnswer::Yes)
        return;
    generator_.setReportName({});
    generator_.ReportName().ID = id;
    if (!generator_.Delete())
        FormReportFormat::showMessage(QStringLiteral(" error: ") + generator_.Error().ErrorText());
    loadList();
}

void workerReportGenerator::printFormat()
{
    const std::int32_t id = selectedFormat(QStringLiteral("print"));
    if (id != 0 && context_.printFormat)
        context_.printFormat(id);
}
