#pragma once

#include "currency.h"
#include "formula.h"
#include "reportdatatable.h"
#include "reportdefinitiondata.h"

#include <QHash>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class DbConnection;
class ReportDefinition;
struct ReportSources;

// A table joined to the main rows: a lookup or a subreport's table.
struct LinkedTable {
    const DefinitionTable *definition = nullptr;
    std::shared_ptr<const DataTable> data; // shared with every linked table of the run reading the same source
    bool single = false;                // a one-row table, seen from every row
    mutable std::vector<int> rowOfMain; // the linked row per main row; -2 until resolved
};

struct SubreportState {
    const ReportDefinitionData *definition = nullptr;
    LinkedTable table;
};

// A summary-tree folder.
struct FolderNode {
    QString id;
    QString parentId;
    int sortOrder = 0;
    QString name;
    bool forceNewPage = false;
    std::vector<int> path; // the folders from the top down to this one (indexes into the tree)
};

// The sums of each column over some rows ({Total.X} and {Grand.X}).
struct ColumnSums {
    std::vector<std::optional<Currency>> sums; // nullopt: no number in the column yet
    void add(std::size_t column, Currency amount);
};

class RowContext;

// Everything a run has read, and the formulas' evaluation against it.
class RunState {
public:
    RunState(const ReportDefinition &definition, const ReportSources &sources);

    // Reads every table; false with `error` naming the definition and the table.
    bool read(QString &error);

    const ReportDefinitionData &report() const { return report_; }
    const DataTable &main() const { return main_; }
    const QString &label() const { return label_; }

    // Evaluates a formula of the definition for a main row (-1: none, only
    // parameters, formulas and one-row tables). Unset formulas give null.
    bool evaluate(const DefinitionFormula &formula, int row, ReportValue &value, QString &error) const;
    // The same for a column's total cell.
    bool evaluateTotal(const DefinitionFormula &formula, const ColumnSums &total, const ColumnSums &grand,
                       ReportValue &value, QString &error) const;

    // A parameter's value as the run uses it: converted to the field's type, null as the type's empty value.
    std::optional<ReportValue> parameter(const QString &name) const;

    // The folder of a main row; nullptr when the definition names none or the tree lacks it.
    const FolderNode *folderOf(int row) const;
    const std::vector<FolderNode> &folders() const { return folders_; }

private:
    friend class RowContext;

    bool readTable(const DefinitionTable &table, const ReportDefinitionData &own, DataTable &into,
                   QString &error) const;
    bool readLinked(const DefinitionTable &table, const ReportDefinitionData &own, LinkedTable &into,
                    QString &error);
    bool readFolders(QString &error);
    // What identifies the rows a table reads within this run (its source with the
    // parameters in place, and its key); "" for a table read anew each time.
    bool sourceIdentity(const DefinitionTable &table, const ReportDefinitionData &own, QString &identity,
                        QString &error) const;
    // The SQL text with {?Name} and {@Name} replaced by literals.
    bool substitute(const QString &sql, const ReportDefinitionData &own, QString &out, QString &error) const;
    int linkedRow(const LinkedTable &table, int row, const RowContext &context) const;

    const ReportDefinition &definition_;
    const ReportDefinitionData &report_;
    const ReportSources &sources_;
    QString label_;
    DataTable main_;
    std::vector<LinkedTable> lookups_;
    // Linked tables by source identity: subreports pointed at one Kora-Fund year
    // table read it once.
    QHash<QString, std::shared_ptr<const DataTable>> linkedBySource_;
    std::vector<SubreportState> subreports_;
    std::vector<FolderNode> folders_;
    QHash<QString, int> folderById_;
    mutable std::vector<int> folderOfRow_; // -2 until resolved, -1 none
};

// {Table.Field}, {?Name} and {@Name} for one main row.
class RowContext : public FormulaContext {
public:
    RowContext(const RunState &run, int row, const SubreportState *subreport = nullptr,
               const ColumnSums *total = nullptr, const ColumnSums *grand = nullptr);

    std::optional<ReportValue> field(const QString &table, const QString &field) const override;
    std::optional<ReportValue> parameter(const QString &name) const override;
    std::optional<ReportValue> formula(const QString &name) const override;

    // Evaluates in this context; the first failure (the innermost, of a nested
    // formula) is kept for failure().
    ReportValue evaluate(const DefinitionFormula &formula) const;
    const std::optional<QString> &failure() const { return failure_; }

private:
    std::optional<ReportValue> linkedField(const LinkedTable &table, const QString &field) const;
    std::optional<ReportValue> treeField(const QString &field) const;
    std::optional<ReportValue> sumField(const ColumnSums *sums, const QString &field) const;

    const RunState &run_;
    int row_;
    const SubreportState *subreport_;
    const ColumnSums *total_;
    const ColumnSums *grand_;
    mutable std::optional<QString> failure_;
};
