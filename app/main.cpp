#include "budgetapplication.h"
#include "budgetdbconfig.h"
#include "mainwindowload.h"
#include "mdiparent.h"
#include "messageservice.h"
#include "programarguments.h"
#include "widgetmessages.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    BudgetApplication app(argc, argv);
    // Saved grid layouts and other per-user settings are kept under these names.
    QApplication::setOrganizationName(QStringLiteral("Kora-Budget"));
    QApplication::setApplicationName(QStringLiteral("Kora-Budget"));
    QApplication::setApplicationVersion(QStringLiteral(KORA_VERSION));
    setMessageService(std::make_unique<WidgetMessages>());

    const ProgramArguments arguments = parseProgramArguments(QCoreApplication::arguments());
    QString configError;
    const std::optional<BudgetDbConfig> config = BudgetDbConfig::load(arguments.configPath, &configError);
    if (!config) {
        messages().messageBox({QStringLiteral("Kora-Budget"), configError, MsgButtons::OK, MsgIcon::Critical});
        return 1;
    }

    mdiParent frame;
    MainWindowLoad load(frame);
    StartupSettings settings;
    settings.commandLine = arguments.commandLine;
    settings.config = *config;
    settings.errorDialogLoaded = [&app](formErrorDialog &dialog) {
        setMessageService(std::make_unique<WidgetMessages>(&dialog));
        app.setErrorLog(dialog.ErrorLog());
    };
    if (!load.Load(settings))
        return 1;
    frame.show();
    if (arguments.startupTiming) {
        // Runs once the events of showing the window (its first paint) are done.
        QTimer::singleShot(0, &frame, [&] {
            std::printf("%lld\n", static_cast<long long>(sinceStart.elapsed()));
            std::fflush(stdout);
            frame.close();
        });
    }
    return QApplication::exec();
}
