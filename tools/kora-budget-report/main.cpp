#include "reportcommand.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    if (arguments.isEmpty() || arguments.contains(QLatin1String("--help"))) {
        (arguments.isEmpty() ? err : out) << reportUsage();
        return arguments.isEmpty() ? ReportExit::Usage : ReportExit::Ok;
    }
    // Reports are painted (charts with Qt Charts) whether or not there is a display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    return runReportCommand(arguments, out, err);
}
