#pragma once

#include "formerrorlog.h"

#include <QApplication>
#include <QPointer>

#include <exception>

// The program's application object. An error thrown by a slot or an event
// handler stops at the event it came from: the user sees the error dialog's
// critical notice, the error goes into the error log, and the program goes on.
// Letting it cross Qt's event loop would end the program.
class BudgetApplication : public QApplication {
    Q_OBJECT
public:
    BudgetApplication(int &argc, char **argv);

    // The log that receives the errors; until one is set they are only shown.
    void setErrorLog(formErrorLog *log) { errorLog_ = log; }

    bool notify(QObject *receiver, QEvent *event) override;

private:
    void report(const std::exception *error, const QObject *receiver);

    QPointer<formErrorLog> errorLog_;
    bool showing_ = false; // an error dialog is open: further errors are only logged
};
