#pragma once

#include "formula.h"
#include "reportdefinition.h"
#include "reportdocument.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

// The parsed body of a definition file (docs/report-definitions.md).

// A formula of the file with where it was written, for messages. `lines`
// holds the file line of each line of the text (continuation lines).
struct DefinitionFormula {
    QString name; // "Col2Amount", "selection", "column 3 value"
    QString text;
    std::vector<int> lines;
    std::optional<Formula> parsed; // empty when the text is empty (evaluates to null)

    bool isSet() const { return parsed.has_value(); }
    // The file line of a character position within the text.
    int lineOf(int position) const;
};

// The record names of the Kora-Fund year tables a definition may read.
enum class FundRecord { None, Expenditure, Revenue };

struct DefinitionTable {
    enum class Source { Sql, Fund, Levy };
    QString name;  // the section's name; for a subreport the subreport's name
    QString alias; // what its fields go by: the name, or a subreport's `table`
    int line = 0;
    Source source = Source::Sql;
    QString sql;
    QString fundTable; // "<TableId>_<RecordName>", or "" for no rows
    FundRecord fundRecord = FundRecord::None;
    QString key;            // the column that identifies a row; "" for a one-row table
    DefinitionFormula link; // over the main row
    DefinitionFormula levy; // Source::Levy: the current and the prior levy
    DefinitionFormula priorLevy;
};

struct DefinitionGroup {
    int line = 0;
    bool folders = false;
    DefinitionFormula by;
    DefinitionFormula header;
    DefinitionFormula total;
    DefinitionFormula newPage;
};

struct DefinitionColumn {
    int line = 0;
    QString name;
    DefinitionFormula heading;
    ReportTable::Kind kind = ReportTable::Kind::Text;
    int width = 10;
    DefinitionFormula value;
    bool total = false;
    DefinitionFormula totalValue;
    DefinitionFormula show;
};

struct DefinitionChart {
    int line = 0;
    DefinitionFormula title;
    DefinitionFormula category;
    std::vector<std::pair<QString, DefinitionFormula>> series;
};

struct ReportDefinitionData {
    QString title;
    PaperOrientation orientation = PaperOrientation::Portrait;
    DefinitionFormula district;
    std::vector<DefinitionFormula> subtitles;
    std::vector<DefinitionFormula> notes;
    DefinitionFormula selection;
    DefinitionFormula folder;
    bool details = true;
    DefinitionFormula grandTotal;

    std::vector<ParameterField> parameters;
    std::vector<DefinitionFormula> formulas; // the named formulas ({@Name}; a subreport's own)

    DefinitionTable main; // a subreport's one table
    std::vector<DefinitionTable> lookups;

    std::vector<DefinitionGroup> groups;
    std::vector<DefinitionColumn> columns;
    std::vector<DefinitionChart> charts;

    const DefinitionFormula *formula(const QString &name) const;
    const DefinitionTable *lookup(const QString &alias) const;
};

// The fields of a Kora-Fund year table of that record name.
const QStringList &fundTableFields(FundRecord record);
// "FY2025_SummaryExpenditure" -> ("FY2025", Expenditure); None when the name is not of that form.
std::pair<QString, FundRecord> splitFundTable(const QString &table);
// The fields every row has when the definition names its folder.
const QStringList &treeFields();
// The fields of a row of the built-in levy source.
const QStringList &levyFields();
