#include "mainwindowload.h"

#include "adoconnection.h"
#include "appglobals.h"
#include "dates.h"
#include "formerrordialog.h"
#include "formerrorlog.h"
#include "mdiparent.h"
#include "menusecurity.h"
#include "messageservice.h"
#include "modmain.h"
#include "sharedforms.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDate>
#include <QMdiArea>

namespace {

QPointer<mdiParent> parentWindow;

} // namespace

mdiParent *ParentWindow()
{
    return parentWindow;
}

MainWindowLoad::MainWindowLoad(mdiParent &frame) : frame_(frame)
{
    frame_.installEventFilter(this);
}

MainWindowLoad::~MainWindowLoad()
{
    Unload();
}

bool MainWindowLoad::Load(const StartupSettings &settings)
{
    if (!OpenDatabase(settings.config))
        return false;
    loadSharedForms(settings);

    if (!OpenSession(settings.commandLine))
        return false;
    addStatusPanels();

    if (const int status = userPrivileges().Load(gstrRootPath, gstrFundPath, gstrUserID); status != 0)
        messages().errorDialog({4, QStringLiteral("Error returned from Kora-Fund"),
                                QStringLiteral("Cannot read the user's privileges. error:%1").arg(status), false});
    LockMenus(frame_, QString());
    frame_.ShowWhere(ReadDistrictName(), settings.config.shortName(), ProposalName(gstrProposalID));
    parentWindow = &frame_;
    // Every user's report dialogs start on Preview, whatever the user record says.
    gintPrintPreview = 1;
    return true;
}

void MainWindowLoad::loadSharedForms(const StartupSettings &settings)
{
    errorLog_ = std::make_unique<formErrorLog>(&frame_);
    errorDialog_ = std::make_unique<formErrorDialog>(&frame_);
    errorDialog_->setErrorLog(errorLog_.get());
    gcolForms = std::make_unique<SharedForms>(images_, *errorDialog_);
    if (settings.errorDialogLoaded)
        settings.errorDialogLoaded(*errorDialog_);
}

void MainWindowLoad::addStatusPanels()
{
    classStatusbar &bar = frame_.Statusbar();
    const auto add = [&bar](const char *key, const QString &text, PanelAlignment alignment, PanelAutoSize autoSize,
                            int minWidth, const char *toolTip) {
        bar.AddPanel(0, QLatin1String(key), QLatin1String(key), text, alignment, autoSize, minWidth,
                     QLatin1String(toolTip));
    };
    add("User", gstrUserName, PanelAlignment::Left, PanelAutoSize::Spring, 620, "User name");
    add("Proposal", QStringLiteral(" Proposal: %1  ").arg(gstrProposalID), PanelAlignment::Centre,
        PanelAutoSize::Contents, 50, "Proposal");
    add("Year", QStringLiteral(" Proposed Budget Year :") + gstrProposedYearID, PanelAlignment::Centre,
        PanelAutoSize::Contents, 20, "Fiscal year");
    add("Status", QStringLiteral("  Open  "), PanelAlignment::Centre, PanelAutoSize::Contents, 20, "Posting status");
    add("Date", QStringLiteral("  %1  ").arg(FormatMMDDYY(QDate::currentDate())), PanelAlignment::Centre,
        PanelAutoSize::Contents, 20, "System transaction date");
}

void MainWindowLoad::Unload()
{
    if (unloaded_)
        return;
    unloaded_ = true;
    frame_.removeEventFilter(this);
    parentWindow = nullptr;

    gcolForms.reset();
    errorLog_.reset();
    errorDialog_.reset();

    frame_.Area().closeAllSubWindows();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (qsizetype i = windows.size() - 1; i >= 0; --i) {
        if (windows[i] != &frame_)
            windows[i]->close();
    }
    frame_.close();
    CloseDatabase();
    gadoConnection.reset();
    QCoreApplication::quit();
}

bool MainWindowLoad::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &frame_ && event->type() == QEvent::Close)
        Unload();
    return QObject::eventFilter(watched, event);
}
