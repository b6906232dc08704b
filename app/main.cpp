#include "budgetapplication.h"
#include "programarguments.h"
#include "programstart.h"
#include "widgetmessages.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    QTextStream out(stdout);
    QTextStream err(stderr);
    // --help and a bare start are answered before a display is needed; once Qt
    // has taken its own options (-platform, -geometry, ...) out, again for what is left.
    QStringList words;
    for (int i = 0; i < argc; ++i)
        words << QString::fromLocal8Bit(argv[i]);
    if (const std::optional<int> code = answerUsage(parseProgramArguments(words), out, err))
        return *code;

    BudgetApplication app(argc, argv);
    const ProgramArguments arguments = parseProgramArguments(QCoreApplication::arguments());
    if (const std::optional<int> code = answerUsage(arguments, out, err))
        return *code;
    // Saved grid layouts and other per-user settings are kept under these names.
    QApplication::setOrganizationName(QStringLiteral("Kora-Budget"));
    QApplication::setApplicationName(QStringLiteral("Kora-Budget"));
    QApplication::setApplicationVersion(QStringLiteral(KORA_VERSION));
    setMessageService(std::make_unique<WidgetMessages>());

    ProgramStart started = startProgram(arguments, [&app](formErrorDialog &dialog) {
        setMessageService(std::make_unique<WidgetMessages>(&dialog));
        app.setErrorLog(dialog.ErrorLog());
    });
    if (!started.window)
        return started.exitCode;
    mdiParent &frame = started.window->frame;
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
