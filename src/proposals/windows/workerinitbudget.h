#pragma once

#include "dialogworker.h"
#include "initnewyear.h"

#include <QDate>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>

class NewYearProgressWindow;

// Initial New Budget Year: the closing year, whether line items are cleared
// and which Kora-Fund budget is taken; OK asks the user to close Kora-Fund,
// copies an SQLite budget database beside itself, and rolls the year forward
// in one transaction with a progress window that can cancel it.
class WorkerInitBudget : public DialogWorker, public ModalWorker {
public:
    // `ledgers`: where the latest Kora-Fund year's ledger summaries are.
    WorkerInitBudget(std::shared_ptr<DbConnection> connection, LedgerSummaryPlace ledgers, QWidget *parent = nullptr);
    ~WorkerInitBudget() override;

    static QString FormType() { return QStringLiteral("Worker"); }

    void DoModalForm() override;

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    void UserAction(classDialog &dialog, const QString &name) override;

    // The day the copy of an SQLite database is named with (tests fix it).
    void setToday(QDate day) { today_ = day; }
    // Called with the progress window once it shows (tests press its Cancel).
    void setProgressShown(std::function<void(NewYearProgressWindow &)> shown) { progressShown_ = std::move(shown); }

private:
    // What the user is told about the copy taken before the run.
    QString backupNotice();
    bool takeBackup();
    void runInitialisation(classDialog &dialog);

    std::shared_ptr<DbConnection> connection_;
    LedgerSummaryPlace ledgers_;
    QPointer<QWidget> parent_;
    QDate today_ = QDate::currentDate();
    std::function<void(NewYearProgressWindow &)> progressShown_;
    bool running_ = false;
};
