#pragma once

#include "audittrail.h"
#include "mdichildworker.h"

#include <QPointer>

#include <memory>

class QDateEdit;
class QLineEdit;

// Utilities › Audit Trail: the changes to the budget figures, newest first,
// narrowed by account code, user, task and a range of days (UTC), and
// exported from the grid as CSV or an Excel workbook.
class workerAuditTrail : public MdiChildWorker {
    Q_OBJECT
public:
    explicit workerAuditTrail(std::shared_ptr<DbConnection> connection, QObject *parent = nullptr);

    void DoMDIChild(QMdiArea &area) override;

    // What the filter controls say; an unset day reads as an invalid date.
    AuditFilter filter() const;

private:
    void doCommand(const QString &command) override;
    void buildWindow();
    void addFilterBar();
    void fillChoices();
    void showEntries();

    std::shared_ptr<DbConnection> connection_;
    QPointer<QLineEdit> accountCode_;
    QPointer<QDateEdit> from_;
    QPointer<QDateEdit> to_;
};
