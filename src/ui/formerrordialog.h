#pragma once

#include <QDialog>
#include <QPointer>

#include "formerrorlog.h"

#include "messageservice.h"

class QLabel;
class QPushButton;

// The one dialog through which failures and notices are shown. Modes pick
// the icon: 0 none, 1 error or warning, 2 critical, 3 question, 4 notice
// (what the fund-accounting product returned, and the product's own notices).
class formErrorDialog : public QDialog {
    Q_OBJECT
public:
    explicit formErrorDialog(QWidget *parent = nullptr);

    static QString FormType() { return QStringLiteral("Dialog"); }

    void setErrorLog(formErrorLog *log) { log_ = log; }
    formErrorLog *ErrorLog() const { return log_; }
    // Lays the dialog out for the message, beeps and shows it modally.
    void Display(int mode, const QString &title, const QString &message, bool showLog = false);
    // The fallback for unexpected failures: points the user to the error log.
    void DisplayCritical();
    // What DisplayCritical shows, for callers that go through the message service.
    static ErrorDialogRequest criticalRequest();
    // Display without beeping or showing: sets icon, caption, text, the View
    // Log button and the layout.
    void Prepare(int mode, const QString &title, const QString &message, bool showLog);

    int IconMode() const { return mode_; }
    QString Message() const;
    QLabel *messageLabel() const { return message_; }
    QLabel *iconBox() const { return icon_; }

private:
    void layOut();

    QLabel *icon_;
    QLabel *message_;
    QPushButton *ok_;
    QPushButton *viewLog_;
    QPointer<formErrorLog> log_;
    int mode_ = 0;
};
