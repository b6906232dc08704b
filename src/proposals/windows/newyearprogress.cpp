#include "newyearprogress.h"

#include <QCoreApplication>
#include <QProgressDialog>

namespace {
// How often the window is repainted and Cancel looked at.
constexpr qint64 turnEveryMs = 50;
} // namespace

QString timeLeftText(qint64 elapsedMs, int done, int total)
{
    if (done <= 0 || total <= done)
        return {};
    const qint64 leftMs = elapsedMs * (total - done) / done;
    const qint64 seconds = (leftMs + 999) / 1000;
    if (seconds < 60)
        return QStringLiteral("About %1 s left").arg(seconds);
    return QStringLiteral("About %1 min %2 s left").arg(seconds / 60).arg(seconds % 60);
}

NewYearProgressWindow::NewYearProgressWindow(QWidget *parent) : dialog_(new QProgressDialog(parent))
{
    dialog_->setWindowTitle(QStringLiteral("Initial New Budget Year"));
    dialog_->setObjectName(QStringLiteral("prgNewYear"));
    dialog_->setCancelButtonText(QStringLiteral("Cancel"));
    dialog_->setWindowModality(Qt::ApplicationModal);
    dialog_->setAutoClose(false);
    dialog_->setAutoReset(false);
    dialog_->setMinimumDuration(0);
    dialog_->setMinimumWidth(420);
    started_.start();
    sinceTurn_.start();
}

NewYearProgressWindow::~NewYearProgressWindow()
{
    delete dialog_;
}

bool NewYearProgressWindow::report(const NewYearProgress &progress)
{
    if (first_ || sinceTurn_.elapsed() >= turnEveryMs) {
        first_ = false;
        sinceTurn_.restart();
        dialog_->setMaximum(progress.total);
        dialog_->setLabelText(QStringLiteral("Account being processed: ") + progress.accountCode + u'\n' +
                              timeLeftText(started_.elapsed(), progress.done, progress.total));
        dialog_->setValue(progress.done);
        QCoreApplication::processEvents();
    }
    return !dialog_->wasCanceled();
}

void NewYearProgressWindow::showStep(const QString &text)
{
    dialog_->setCancelButton(nullptr);
    dialog_->setMaximum(1);
    dialog_->setValue(1);
    dialog_->setLabelText(text);
    QCoreApplication::processEvents();
}
