#include "budgetapplication.h"

#include "formerrordialog.h"
#include "wrappererror.h"

#include "messageservice.h"

#include <QMetaObject>

namespace {

struct LoggedError {
    QString module;
    QString procedure;
    int number = 0;
    QString description;
};

// A wrapper names the member that refused ("classGrid.SetCell"); any other
// error is placed by the object whose event raised it.
LoggedError describe(const std::exception *error, const QObject *receiver)
{
    LoggedError logged;
    logged.module = receiver ? QString::fromLatin1(receiver->metaObject()->className()) : QString();
    logged.procedure = receiver ? receiver->objectName() : QString();
    if (const auto *wrapper = dynamic_cast<const WrapperError *>(error)) {
        const qsizetype dot = wrapper->source().indexOf(QLatin1Char('.'));
        logged.module = wrapper->source().left(dot);
        logged.procedure = dot < 0 ? QString() : wrapper->source().mid(dot + 1);
    }
    if (const auto *runtime = dynamic_cast<const RuntimeError *>(error)) {
        logged.number = runtime->number();
        logged.description = runtime->description();
    } else {
        logged.description = error ? QString::fromUtf8(error->what()) : QStringLiteral("Unknown error");
    }
    return logged;
}

} // namespace

BudgetApplication::BudgetApplication(int &argc, char **argv) : QApplication(argc, argv)
{
}

bool BudgetApplication::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception &error) {
        report(&error, receiver);
    } catch (...) {
        report(nullptr, receiver);
    }
    return false;
}

void BudgetApplication::report(const std::exception *error, const QObject *receiver)
{
    const LoggedError logged = describe(error, receiver);
    if (errorLog_)
        errorLog_->AddError(logged.module, logged.procedure, logged.number, logged.description);
    // A handler that fails on every repaint must not stack one dialog on another.
    if (showing_)
        return;
    showing_ = true;
    try {
        messages().errorDialog(formErrorDialog::criticalRequest());
    } catch (...) {
        // Nothing more can be shown; the error is in the log.
    }
    showing_ = false;
}
