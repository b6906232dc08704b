#pragma once

#include "dialogworker.h"
#include "equalization.h"

#include <QPointer>
#include <QWidget>

#include <memory>

class classGrid;

// Equalization Districts: every town of the district with its equalization
// rate and assessments for the current and the previous year. Add gives a
// blank row, Erase removes the current district at once, OK writes the
// changed and new rows in one transaction.
class workerEqualization : public DialogWorker, public ModalWorker {
public:
    explicit workerEqualization(std::shared_ptr<DbConnection> connection, QWidget *parent = nullptr);

    static QString FormType() { return QStringLiteral("Worker"); }

    void DoModalForm() override;

    void FormBuild(classDialog &dialog) override;
    void LoadData(classDialog &dialog) override;
    void UserAction(classDialog &dialog, const QString &name) override;
    bool SaveData(classDialog &dialog) override;

private:
    bool UpdateDistricts(const classGrid &grid, int row);
    void DeleteDistricts(classGrid &grid);

    clsEqualization store_;
    QPointer<QWidget> parent_;
};
