#pragma once

#include "initnewyear.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QString>

#include <QProgressDialog>
class QWidget;

// "About 12 s left" from the time the pass has taken for `done` of `total`
// accounts; "" until there is something to go by.
QString timeLeftText(qint64 elapsedMs, int done, int total);

// The progress window of the new year: the account being processed, a bar,
// the time left, and Cancel. report() is the store's progress handler and
// gives the user interface its turn (a few times a second, not per account,
// which would cost more than the accounts themselves).
class NewYearProgressWindow {
public:
    explicit NewYearProgressWindow(QWidget *parent);
    ~NewYearProgressWindow();
    NewYearProgressWindow(const NewYearProgressWindow &) = delete;
    NewYearProgressWindow &operator=(const NewYearProgressWindow &) = delete;

    // False once the user has pressed Cancel.
    bool report(const NewYearProgress &progress);
    // A step after the account pass: the text shown, the bar full, no Cancel.
    void showStep(const QString &text);

    QProgressDialog *dialog() const { return dialog_; }

private:
    QPointer<QProgressDialog> dialog_;
    QElapsedTimer started_;
    QElapsedTimer sinceTurn_;
    bool first_ = true;
};
