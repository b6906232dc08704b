#include "workeraudittrail.h"

#include "messageservice.h"

#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QToolBar>

namespace {

const QString windowCaption = QStringLiteral("Audit Trail");
const QString userList = QStringLiteral("cboUser");
const QString taskList = QStringLiteral("cboTask");
const QString statusPanel = QStringLiteral("Status");
// The first choice of each list: no narrowing.
const QString everyone = QStringLiteral("(All)");

struct Column {
    const char *key;
    const char *caption;
    int widthTwips;
};
constexpr Column columns[] = {
    {"ChangedAt", "When (UTC)", 2300},     {"UserID", "User", 1100},
    {"Workstation", "Workstation", 1500},  {"Task", "Task", 1700},
    {"TableName", "Table", 1600},          {"RowKey", "Row", 2600},
    {"AccountCode", "Account Code", 1700}, {"ColumnName", "Column", 1700},
    {"OldValue", "Old Value", 2000},       {"NewValue", "New Value", 4000},
};

// An unset day shows as "(any)": the earliest day the edit offers.
QDateEdit *dayEdit(const QString &name, QWidget *parent)
{
    auto *edit = new QDateEdit(parent);
    edit->setObjectName(name);
    edit->setCalendarPopup(true);
    edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    edit->setMinimumDate(QDate(2000, 1, 1));
    edit->setSpecialValueText(QStringLiteral("(any)"));
    edit->setDate(edit->minimumDate());
    return edit;
}

QDate chosenDay(const QDateEdit *edit)
{
    return edit->date() == edit->minimumDate() ? QDate() : edit->date();
}

// "2026-11-23T04:10:00.123Z" reads "2026-11-23 04:10:00".
QString shownTime(const QString &stamp)
{
    return stamp.left(19).replace(u'T', u' ');
}

} // namespace

workerAuditTrail::workerAuditTrail(std::shared_ptr<DbConnection> connection, QObject *parent)
    : MdiChildWorker(parent), connection_(std::move(connection))
{
}

void workerAuditTrail::DoMDIChild(QMdiArea &area)
{
    openChild(windowCaption);
    buildWindow();
    child_->ShowForm(area);
    fillChoices();
    showEntries();
}

void workerAuditTrail::buildWindow()
{
    child_->setLoading(true);
    classToolbar &toolbar = child_->Toolbar();
    toolbar.AddButton(QStringLiteral("Find"), {}, {}, QStringLiteral("List the entries the filters let through"),
                      ToolbarButtonStyle::Default, QStringLiteral("Find"));
    toolbar.AddButton(QStringLiteral("Export"), {}, {}, QStringLiteral("Export the list as CSV or Excel"),
                      ToolbarButtonStyle::Default, QStringLiteral("Export"));
    toolbar.AddButton(QStringLiteral("Close"), {}, {}, QStringLiteral("Close"), ToolbarButtonStyle::Default,
                      QStringLiteral("Close"));
    addFilterBar();

    classDropDown &lists = child_->DropDown();
    lists.AddDropDown(userList, QStringLiteral("User"));
    lists.AddDropDown(taskList, QStringLiteral("Task"));

    classGrid &grid = *child_->Grid(1);
    for (const Column &column : columns) {
        GridColumnOptions options;
        options.widthTwips = column.widthTwips;
        grid.AddColumn(QLatin1String(column.key), QLatin1String(column.caption), options);
    }
    child_->Statusbar().AddPanel(0, statusPanel, {}, {}, PanelAlignment::Left, PanelAutoSize::Spring);
    child_->resize(1100, 620);
    child_->setLoading(false);
}

// The typed filters sit in the toolbar beside its buttons; Enter in any of them finds.
void workerAuditTrail::addFilterBar()
{
    auto *bar = child_->findChild<QToolBar *>(QStringLiteral("tbr1"));
    bar->addSeparator();
    bar->addWidget(new QLabel(QStringLiteral(" Account Code "), bar));
    accountCode_ = new QLineEdit(bar);
    accountCode_->setObjectName(QStringLiteral("txtAccountCode"));
    accountCode_->setPlaceholderText(QStringLiteral("beginning with"));
    accountCode_->setMaximumWidth(160);
    bar->addWidget(accountCode_);
    connect(accountCode_, &QLineEdit::returnPressed, this, &workerAuditTrail::showEntries);
    bar->addWidget(new QLabel(QStringLiteral(" From "), bar));
    from_ = dayEdit(QStringLiteral("dtpFrom"), bar);
    bar->addWidget(from_);
    bar->addWidget(new QLabel(QStringLiteral(" To "), bar));
    to_ = dayEdit(QStringLiteral("dtpTo"), bar);
    bar->addWidget(to_);
}

void workerAuditTrail::fillChoices()
{
    classDropDown &lists = child_->DropDown();
    for (const auto &[list, read] :
         {std::pair{userList, &AuditTrail::users}, std::pair{taskList, &AuditTrail::tasks}}) {
        QStringList values;
        DbError error;
        if (!read(*connection_, values, &error)) {
            messages().errorDialog({1, windowCaption, QStringLiteral("Error reading the audit trail. ") + error.text});
            return;
        }
        lists.Clear(list);
        lists.AddItem(list, {}, everyone);
        for (const QString &value : values)
            lists.AddItem(list, value, value);
        lists.setListIndex(list, 0);
    }
}

AuditFilter workerAuditTrail::filter() const
{
    const classDropDown &lists = child_->DropDown();
    return {accountCode_->text(), lists.GetSelectedByKey(userList), lists.GetSelectedByKey(taskList), chosenDay(from_),
            chosenDay(to_)};
}

void workerAuditTrail::showEntries()
{
    const AuditFilter wanted = filter();
    if (wanted.from.isValid() && wanted.to.isValid() && wanted.to < wanted.from) {
        messages().errorDialog({1, windowCaption,
                                QStringLiteral("The day \"To\" (%1) is before the day \"From\" (%2).")
                                    .arg(wanted.to.toString(Qt::ISODate), wanted.from.toString(Qt::ISODate))});
        return;
    }
    std::vector<AuditEntry> entries;
    DbError error;
    if (!AuditTrail::read(*connection_, wanted, entries, &error)) {
        messages().errorDialog({1, windowCaption, QStringLiteral("Error reading the audit trail. ") + error.text});
        return;
    }
    classGrid &grid = *child_->Grid(1);
    child_->setWaiting(true);
    grid.ResetRows();
    for (const AuditEntry &entry : entries) {
        const int row = grid.AddRow();
        const QString values[] = {
            shownTime(entry.changedAt), entry.user,   entry.workstation, entry.task,    entry.table, entry.rowKey,
            entry.accountCode,          entry.column, entry.oldValue,    entry.newValue};
        for (std::size_t i = 0; i < std::size(columns); ++i)
            grid.SetCell(row, QLatin1String(columns[i].key), values[i]);
    }
    grid.Refresh();
    child_->setWaiting(false);
    child_->Statusbar().setPanelText(statusPanel, QStringLiteral("%1 entries").arg(entries.size()));
}

void workerAuditTrail::doCommand(const QString &command)
{
    if (command == u"Find" || command == u"_Refresh" || command == userList || command == taskList) {
        showEntries();
    } else if (command == u"Export") {
        child_->DoExport();
    } else if (command == u"Close") {
        child_->Unload();
    }
}
