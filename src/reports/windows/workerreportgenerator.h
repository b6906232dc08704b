#pragma once

#include "installationfunds.h"
#include "mdichildworker.h"
#include "reportgenerator.h"

#include <cstdint>
#include <functional>
#include <memory>

class FormReportFormat;
class QMdiArea;

// What the report generator window needs from outside.
struct ReportGeneratorContext {
    std::shared_ptr<DbConnection> connection;
    FundListReader listFunds;
    // Prints one format (the generator report of that format's ID).
    std::function<void(std::int32_t formatId)> printFormat;
    // Enables the toolbar's buttons by the privileges the user holds; without
    // one every button stays enabled.
    std::function<void(classToolbar &)> lockToolbar;
    // How the format dialog is run (modally, unless a test answers it); gives its CloseAction.
    std::function<int(FormReportFormat &)> runFormat;
};

// The "Report Generator" child window: the user's report formats in a grid,
// created, edited, deleted and printed from its toolbar.
class workerReportGenerator : public MdiChildWorker {
    Q_OBJECT
public:
    explicit workerReportGenerator(ReportGeneratorContext context, QObject *parent = nullptr);
    ~workerReportGenerator() override;

    void DoMDIChild(QMdiArea &area) override;

private:
    void doCommand(const QString &command) override;
    void buildWindow();
    // Fills the grid from the database, keeping the format `reselect` current when it is still there.
    void loadList(std::int32_t reselect = 0);
    // The ID of the current row; 0, after asking the user to pick one, when there is none.
    std::int32_t selectedFormat(const QString &doing);
    void openFormat(bool edit);
    void deleteFormat();
    void printFormat();

    ReportGeneratorContext context_;
    clsReportGenerator generator_;
};
