#include "formreportselection.h"

#include "appglobals.h"
#include "classgrid.h"
#include "gridlistcolumn.h"
#include "messageservice.h"
#include "padwidth.h"

#include <QIntValidator>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QTableView>

namespace {

const QString gridName = QStringLiteral("Grid");
const QString keyColumn = QStringLiteral("ReportKey");
const QString categoryColumn = QStringLiteral("Category");
const QString disabledColumn = QStringLiteral("Disabled");

// Per frame: the frame, the row's flag column, and the option chosen when it is not offered.
struct FrameControls {
    const char *frame;
    const char *flag;
    const char *defaultOption;
};
const std::array<FrameControls, 4> frames{{{"fraPreview", "PreviewFlag", "optPrint"},
                                           {"fraCopies", "CopiesFlag", nullptr},
                                           {"fraEncumOut", "SelectionFlag", "optAll"},
                                           {"fraOrientation", "OrientationFlag", "optPortrait"}}};

// The choice columns: key, heading, width in twips.
struct ChoiceColumn {
    const char *key;
    const char *heading;
    int width;
};
const std::array<ChoiceColumn, 7> choices{{{"FundSelection", "Fund(s)", 2300},
                                           {"MonthSelection", "Month End", 1300},
                                           {"OptionSelection", "Options", 3500},
                                           {"TypeSelection", "Report Type", 1400},
                                           {"SpecialSelection", "Sort", 1600},
                                           {"Totals", "Totals", 900},
                                           {"Page Break", "Page Break", 1100}}};

QString listKey(const QString &key)
{
    return key + QStringLiteral("List");
}

const QString yesNo = QStringLiteral("Yes\tNo");

} // namespace

formReportSelection::formReportSelection(QWidget *parent) : dialog_(*this, parent)
{
    dialog_.setObjectName(QStringLiteral("formReportSelection"));
    dialog_.Build();
}

formReportSelection::~formReportSelection() = default;

void formReportSelection::FormBuild(classDialog &dialog)
{
    dialog.SetSize(11520, 5160);
    dialog.SetCaption(QStringLiteral("Select A Report"));
    dialog.ShowStandardButtons(false);

    classGrid &table = dialog.AddControl(DialogControlKind::Grid, gridName).Grid();
    dialog.Control(gridName).Move(120, 120, 11280, 2400);
    table.setSingleSelection(true);
    table.setSorting(false);
    // A click on a choice opens its list.
    table.setDirectEdit(true);
    const auto hidden = [](int width) {
        GridColumnOptions options;
        options.widthTwips = width;
        options.hidden = true;
        options.sortSimple = false;
        return options;
    };
    const auto shown = [&](int width) {
        GridColumnOptions options = hidden(width);
        options.hidden = false;
        return options;
    };
    table.AddColumn(keyColumn, QString(), hidden(1400));
    table.AddColumn(QStringLiteral("Report"), QStringLiteral("Report"), shown(2000));
    table.AddColumn(QStringLiteral("Description"), QStringLiteral("Description"), shown(1800));
    for (const FrameControls &frame : frames)
        table.AddColumn(QLatin1String(frame.flag), QString(), hidden(400));
    for (const ChoiceColumn &choice : choices) {
        GridColumnOptions options = hidden(choice.width);
        options.editable = true;
        table.AddColumn(QLatin1String(choice.key), QLatin1String(choice.heading), options);
    }
    for (const ChoiceColumn &choice : choices) {
        table.AddColumn(listKey(QLatin1String(choice.key)), QString(), hidden(400));
        setRowListColumn(table, QLatin1String(choice.key), listKey(QLatin1String(choice.key)));
    }
    table.AddColumn(categoryColumn, QString(), hidden(400));
    table.AddColumn(disabledColumn, QString(), hidden(400));
    QObject::connect(table.view()->selectionModel(), &QItemSelectionModel::selectionChanged, &dialog,
                     [this] { applyFrames(); });

    dialog.AddControl(DialogControlKind::CheckBox, QStringLiteral("chkPercent"), QStringLiteral("Show Percent Inc/Dec"))
        .Move(120, 2640, 3000);

    const QString records = QStringLiteral("fraEncumOut");
    dialog.AddControl(DialogControlKind::Frame, records, QStringLiteral("Records")).Move(120, 3000, 3600, 1320);
    dialog.AddControl(DialogControlKind::OptionButton, QStringLiteral("optAll"), QStringLiteral("All Records"), records)
        .Move(160, 300, 2800);
    dialog.AddControl(DialogControlKind::OptionButton, QStringLiteral("optSelected"), QStringLiteral("Compare Code"),
                      records)
        .Move(160, 720, 1860);
    dialog.AddControl(DialogControlKind::TextBox, QStringLiteral("txtCompare"), QString(), records)
        .Move(2040, 660, 1400);

    const QString copies = QStringLiteral("fraCopies");
    dialog.AddControl(DialogControlKind::Frame, copies, QStringLiteral("Copies")).Move(3840, 3000, 1500, 1320);
    DialogControl &count = dialog.AddControl(DialogControlKind::TextBox, QStringLiteral("txtCopies"), QString(), copies);
    count.Move(160, 480, 1000);
    auto *countField = qobject_cast<QLineEdit *>(count.field());
    countField->setValidator(new QIntValidator(1, 99, countField));
    countField->setAlignment(Qt::AlignRight);

    const QString preview = QStringLiteral("fraPreview");
    dialog.AddControl(DialogControlKind::Frame, preview, QStringLiteral("Preview")).Move(5460, 3000, 2880, 1320);
    dialog.AddControl(DialogControlKind::OptionButton, QStringLiteral("optPreview"), QStringLiteral("Print Preview"),
                      preview)
        .Move(160, 300, 2200);
    dialog.AddControl(DialogControlKind::OptionButton, QStringLiteral("optPrint"), QStringLiteral("Print"), preview)
        .Move(160, 720, 2200);

    const QString orientation = QStringLiteral("fraOrientation");
    dialog.AddControl(DialogControlKind::Frame, orientation, QStringLiteral("Orientation"))
        .Move(8460, 3000, 2880, 1320);
    dialog.AddControl(DialogControlKind::OptionButton, QStringLiteral("optLandscape"), QStringLiteral("Landscape"),
                      orientation)
        .Move(160, 300, 2300);
    dialog.AddControl(DialogControlKind::OptionButton, QStringLiteral("optPortrait"), QStringLiteral("Portrait"),
                      orientation)
        .Move(160, 720, 2300);

    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdOK"), QStringLiteral("OK"))
        .Move(8880, 4560, 1200);
    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdCancel"), QStringLiteral("Close"))
        .Move(10200, 4560, 1200);
    dialog.SetCloseAction(QStringLiteral("cmdCancel"));

    // Nothing is offered until the caller or a row says so.
    count.setText(QStringLiteral("1"));
    dialog.Control(QStringLiteral("txtCompare")).setEnabled(false);
    for (const FrameControls &frame : frames) {
        if (frame.defaultOption)
            dialog.Control(QLatin1String(frame.defaultOption)).setValue(true);
        dialog.Control(QLatin1String(frame.frame)).setEnabled(false);
    }
}

void formReportSelection::UserAction(classDialog &dialog, const QString &name)
{
    if (name == u"optAll" || name == u"optSelected") {
        dialog.Control(QStringLiteral("txtCompare")).setEnabled(dialog.Control(QStringLiteral("optSelected")).Value());
    } else if (name == u"cmdOK") {
        if (selectedRow() == 0) {
            messages().messageBox({dialog.windowTitle(), QStringLiteral("Please select a report."), MsgButtons::OK,
                                   MsgIcon::Exclamation, MsgAnswer::OK});
            return;
        }
        closeAction_ = 1;
        dialog.CloseDialog();
    } else if (name == u"cmdCancel") {
        closeAction_ = 0;
        dialog.CloseDialog();
    }
}

classGrid &formReportSelection::grid() const
{
    return dialog_.Control(gridName).Grid();
}

int formReportSelection::selectedRow() const
{
    const int row = grid().FirstselectedRow();
    return row > 0 && !grid().view()->isRowHidden(row - 1) ? row : 0;
}

QString formReportSelection::SelectedReport() const
{
    const int row = selectedRow();
    return row ? grid().GetItemValue(row, QStringLiteral("Report")) : QString();
}

QString formReportSelection::SelectedChoice(const QString &columnKey) const
{
    const int row = selectedRow();
    return row ? grid().GetItemValue(row, columnKey) : QString();
}

QString formReportSelection::SelectedFundID() const
{
    // The entry is the padded ID, "- " and the name; an ID holds no blank.
    return SelectedFund().section(QStringLiteral("- "), 0, 0).trimmed();
}

QString formReportSelection::FundList() const
{
    // Padded in the grid's font so that the names line up in the column.
    const formPadWidth pad(grid().view()->font());
    QStringList entries;
    for (const FundEntry &fund : funds_)
        entries << pad.PadFundID(fund.id) + QStringLiteral("- ") + fund.name;
    return listText(entries);
}

bool formReportSelection::frameEnabled(Frame frame) const
{
    return dialog_.Control(QLatin1String(frames[frame].frame)).Enabled();
}

bool formReportSelection::Preview() const
{
    return frameEnabled(PreviewFrame) && dialog_.Control(QStringLiteral("optPreview")).Value();
}

void formReportSelection::setPreview(bool offered)
{
    offerFrame(PreviewFrame, offered);
}

int formReportSelection::Copies() const
{
    if (!frameEnabled(CopiesFrame))
        return 1;
    return std::max(1, dialog_.Control(QStringLiteral("txtCopies")).Text().toInt());
}

void formReportSelection::setCopies(int copies)
{
    if (copies > 0)
        dialog_.Control(QStringLiteral("txtCopies")).setText(QString::number(copies));
    offerFrame(CopiesFrame, copies > 0);
}

int formReportSelection::Records() const
{
    return frameEnabled(RecordsFrame) && dialog_.Control(QStringLiteral("optSelected")).Value() ? 2 : 1;
}

void formReportSelection::setRecords(int records)
{
    if (records > 0) {
        dialog_.Control(QLatin1String(records == 2 ? "optSelected" : "optAll")).setValue(true);
        dialog_.Control(QStringLiteral("txtCompare")).setEnabled(records == 2);
    }
    offerFrame(RecordsFrame, records > 0);
}

int formReportSelection::Orientation() const
{
    return frameEnabled(OrientationFrame) && dialog_.Control(QStringLiteral("optLandscape")).Value() ? 2 : 1;
}

void formReportSelection::setOrientation(int orientation)
{
    if (orientation > 0)
        dialog_.Control(QLatin1String(orientation == 2 ? "optLandscape" : "optPortrait")).setValue(true);
    offerFrame(OrientationFrame, orientation > 0);
}

QString formReportSelection::CompareCode() const
{
    return dialog_.Control(QStringLiteral("txtCompare")).Text();
}

bool formReportSelection::ShowPercent() const
{
    return dialog_.Control(QStringLiteral("chkPercent")).Value();
}

void formReportSelection::offerFrame(Frame frame, bool offered)
{
    offered_[frame] = offered;
    applyFrames();
}

void formReportSelection::applyFrames()
{
    const int row = selectedRow();
    for (int frame = PreviewFrame; frame <= OrientationFrame; ++frame) {
        const bool rowOffers =
            row && grid().GetItemValue(row, QLatin1String(frames[frame].flag)).toInt() == FrameOffered;
        setFrameEnabled(Frame(frame), offered_[frame] || rowOffers);
    }
}

void formReportSelection::setFrameEnabled(Frame frame, bool enabled)
{
    DialogControl &control = dialog_.Control(QLatin1String(frames[frame].frame));
    if (control.Enabled() == enabled)
        return;
    control.setEnabled(enabled);
    if (frame == PreviewFrame) {
        const bool preview = enabled && gintPrintPreview == 1;
        dialog_.Control(QLatin1String(preview ? "optPreview" : "optPrint")).setValue(true);
    }
}

void formReportSelection::setShowKeyColumn(bool shown)
{
    grid().setColumnHidden(keyColumn, !shown);
}

void formReportSelection::applyRowVisibility(int row)
{
    classGrid &table = grid();
    const QString rowCategory = table.GetItemValue(row, categoryColumn);
    const bool hidden = table.GetItemValue(row, disabledColumn) == u"1" ||
                        (!category_.isEmpty() && rowCategory.compare(category_, Qt::CaseInsensitive) != 0);
    if (hidden)
        table.ClearSelectedRow(row);
    table.view()->setRowHidden(row - 1, hidden);
}

void formReportSelection::SetReportCategory()
{
    for (int row = 1; row <= grid().CountRows(); ++row)
        applyRowVisibility(row);
    applyFrames();
}

void formReportSelection::DisableReport(const QString &reportKey)
{
    classGrid &table = grid();
    for (int row = 1; row <= table.CountRows(); ++row) {
        if (table.GetItemValue(row, keyColumn) == reportKey) {
            table.SetCell(row, disabledColumn, QStringLiteral("1"));
            applyRowVisibility(row);
        }
    }
    applyFrames();
}

void formReportSelection::setCaption(const QString &caption)
{
    dialog_.SetCaption(caption);
}

void formReportSelection::AddReport(const QString &reportKey, const QString &report, int previewFlag, int copiesFlag,
                                    int selectionFlag, int orientationFlag, const QString &description)
{
    classGrid &table = grid();
    const int row = table.AddRow();
    table.SetCell(row, keyColumn, reportKey);
    table.SetCell(row, QStringLiteral("Report"), report);
    table.SetCell(row, QStringLiteral("Description"), description);
    const std::array<int, 4> flags{previewFlag, copiesFlag, selectionFlag, orientationFlag};
    for (int frame = PreviewFrame; frame <= OrientationFrame; ++frame)
        table.SetCell(row, QLatin1String(frames[frame].flag), QString::number(flags[frame]));
    table.SetCell(row, categoryColumn, category_);
    const std::array<QString, 7> lists{FundList(),           QString(),
                                       OptionList(),         TypeList(),
                                       listText(special_),   totals_ ? yesNo : QString(),
                                       pageBreak_ ? yesNo : QString()};
    for (std::size_t i = 0; i < choices.size(); ++i) {
        const QString key = QLatin1String(choices[i].key);
        table.SetCell(row, listKey(key), lists[i]);
        table.SetCell(row, key, lists[i].section(QLatin1Char('\t'), 0, 0));
        if (!lists[i].isEmpty())
            table.setColumnHidden(key, false);
    }
    applyRowVisibility(row);
}

void formReportSelection::ShowDialog()
{
    closeAction_ = 0;
    classGrid &table = grid();
    for (int row = 1; row <= table.CountRows() && selectedRow() == 0; ++row) {
        if (!table.view()->isRowHidden(row - 1))
            table.SelectRow(row);
    }
    applyFrames();
    dialog_.Run();
}

void formReportSelection::CloseDialog()
{
    dialog_.CloseDialog();
}
