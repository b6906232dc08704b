#include "workerinitbudget.h"

#include "dialogstatus.h"
#include "newyearbackup.h"
#include "newyearprogress.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classdropdown.h"
#include "messageservice.h"

#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QSqlDatabase>

namespace {

const QString title = QStringLiteral("Initial New Budget Year");
const QString backupLabel = QStringLiteral("lblBackup");
const QString clearList = QStringLiteral("cboClearLineItem");
const QString budgetList = QStringLiteral("cboGetBudget");
const QString unchanged =
    QStringLiteral("The budget database is exactly as it was before: nothing of the new year was written.");

void tell(MsgIcon icon, const QString &text)
{
    messages().messageBox({title, text, MsgButtons::OK, icon, MsgAnswer::OK});
}

} // namespace

WorkerInitBudget::WorkerInitBudget(std::shared_ptr<DbConnection> connection, LedgerSummaryPlace ledgers,
                                   QWidget *parent)
    : connection_(std::move(connection)), ledgers_(std::move(ledgers)), parent_(parent)
{
}

WorkerInitBudget::~WorkerInitBudget() = default;

void WorkerInitBudget::DoModalForm()
{
    classDialog dialog(*this, parent_);
    dialog.Run(1);
}

void WorkerInitBudget::FormBuild(classDialog &dialog)
{
    dialog.SetSize(6400, 4600);
    dialog.SetCaption(title);
    dialog.ShowStandardButtons(false);
    dialog.SetCloseAction(QStringLiteral("cmdCancel"));

    DialogControl &year = dialog.AddControl(DialogControlKind::TextBox, QStringLiteral("txtBudgetYear"),
                                            QStringLiteral("Current Fiscal Year in Budget"));
    year.Move(200, 150, 2400);
    year.setEnabled(false);

    DialogControl &clear =
        dialog.AddControl(DialogControlKind::ComboBox, clearList, QStringLiteral("Clear line item description "));
    clear.Move(200, 850, 2400);
    clear.AddItem(QStringLiteral("Yes"), QStringLiteral("true"));
    clear.AddItem(QStringLiteral("No"), QStringLiteral("false"));
    clear.setListIndex(0);

    DialogControl &from =
        dialog.AddControl(DialogControlKind::ComboBox, budgetList, QStringLiteral("Get budget From "));
    from.Move(200, 1550, 2400);
    from.AddItem(QStringLiteral("Original Budget"), QStringLiteral("O"));
    from.AddItem(QStringLiteral("Adjusted Budget"), QStringLiteral("A"));
    from.setListIndex(0);

    DialogControl &notice = dialog.AddControl(DialogControlKind::Label, backupLabel);
    notice.Move(200, 2300, 6000, 1100);
    if (auto *label = qobject_cast<QLabel *>(notice.field())) {
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }

    DialogControl &ok =
        dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdOk"), QStringLiteral("OK"));
    ok.Move(3000, 3500, 1400);
    // Enter asks to start; Escape, like Cancel, closes.
    if (auto *button = qobject_cast<QPushButton *>(ok.field()))
        button->setDefault(true);
    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdCancel"), QStringLiteral("Cancel"))
        .Move(4600, 3500, 1400);
    addStatusBar(dialog);
}

void WorkerInitBudget::LoadData(classDialog &dialog)
{
    dialog.Control(QStringLiteral("txtBudgetYear")).setText(gstrBudgetYearID);
    dialog.Control(backupLabel).setText(backupNotice());
}

void WorkerInitBudget::UserAction(classDialog &dialog, const QString &name)
{
    if (name.compare(QStringLiteral("cmdOk"), Qt::CaseInsensitive) == 0)
        runInitialisation(dialog);
    else if (name.compare(QStringLiteral("cmdCancel"), Qt::CaseInsensitive) == 0 && !running_)
        dialog.CloseDialog();
}

QString WorkerInitBudget::backupNotice()
{
    switch (connection_->dialect()) {
    case SqlDialect::SQLite:
        return QStringLiteral("Before the new year begins, a copy of the budget database is written beside it, in ") +
               QFileInfo(QSqlDatabase::database(connection_->connectionName(), false).databaseName()).absolutePath() +
               u'.';
    case SqlDialect::PostgreSQL: {
        QString text = QStringLiteral("Take a copy of the budget database before you go on, with the server's dump "
                                      "tool:\n") +
                       NewYearBackup::serverDumpCommand(*connection_, gstrBudgetYearID) + u'\n';
        QStringList others;
        DbError error;
        if (!NewYearBackup::otherWorkstations(*connection_, others, &error))
            return text + QStringLiteral("The workstations connected cannot be read: ") + error.text;
        return text + QStringLiteral("Other workstations connected to the budget database: ") +
               (others.isEmpty() ? QStringLiteral("none") : others.join(QStringLiteral(", "))) + u'.';
    }
    case SqlDialect::Odbc:
        break;
    }
    return QStringLiteral("Take a copy of the budget database with its server's own tools before you go on.");
}

bool WorkerInitBudget::takeBackup()
{
    if (connection_->dialect() != SqlDialect::SQLite)
        return true;
    QString written;
    DbError error;
    if (NewYearBackup::writeSqliteCopy(*connection_, gstrBudgetYearID, today_, written, &error))
        return true;
    tell(MsgIcon::Critical, error.text + QStringLiteral("\n\nThe new budget year was not started. ") + unchanged);
    return false;
}

void WorkerInitBudget::runInitialisation(classDialog &dialog)
{
    if (running_)
        return;
    // Who is still connected now, not when the dialog opened.
    dialog.Control(backupLabel).setText(backupNotice());
    if (messages().messageBox(
            {title, QStringLiteral("Please close your Kora-Fund Application before Initial New Budget Year! "),
             MsgButtons::OKCancel, MsgIcon::Exclamation, MsgAnswer::OK}) != MsgAnswer::OK)
        return;
    if (!takeBackup())
        return;

    clsInitNewYear store;
    store.setAdoConnection(connection_);
    store.setAuditTask(AuditTask::NewBudgetYear);
    store.setCurrentBudgetYear(gstrBudgetYearID);
    store.setProposedYear(gstrProposedYearID);
    store.setClearLineItem(dialog.Control(clearList).DropDown().GetSelectedByKey(clearList) == u"true");
    store.setBudgetFrom(dialog.Control(budgetList).DropDown().GetSelectedByKey(budgetList));
    store.setLedgerSummaries(ledgers_);

    running_ = true;
    bool done = false;
    {
        NewYearProgressWindow progress(&dialog);
        if (progressShown_)
            progressShown_(progress);
        store.setProgress([&progress](const NewYearProgress &at) { return progress.report(at); });
        bool accountPass = true;
        done = runNewBudgetYear(store, [&](const QString &text) {
            setStatusText(dialog, text);
            if (!accountPass)
                progress.showStep(text);
            accountPass = false;
        });
    }
    running_ = false;
    // A failed step's text stays: it says where the run stopped.
    if (done || store.Cancelled())
        setStatusText(dialog, QString());

    if (done) {
        tell(MsgIcon::Information,
             QStringLiteral("Finished Initialize Budget New Year! Please close the application and re-open again"));
        dialog.CloseDialog();
    } else if (store.Cancelled()) {
        tell(MsgIcon::Information, QStringLiteral("The new budget year was cancelled. ") + unchanged);
    } else {
        tell(MsgIcon::Critical, QStringLiteral("Error ") + QString::number(store.Error().ErrorNumber()) +
                                    QStringLiteral(": ") + store.Error().ErrorText() + QStringLiteral("\n\n") +
                                    unchanged);
    }
}
