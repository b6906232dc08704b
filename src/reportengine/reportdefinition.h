#pragma once

#include "reportvalue.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

// A parameter field of a definition: the program walks them and sets each
// one's CurrentValue by name.
struct ParameterField {
    QString Name;
    ReportValue::Type Type = ReportValue::Type::Text;
    QString Prompt;
    ReportValue CurrentValue; // null until set; a null parameter reads as its type's empty value
};

enum class PaperOrientation { Portrait, Landscape };

struct ReportDefinitionData; // the parsed body: sources, groups, columns, charts (reportdefinitiondata.h)

// One report definition file (reports/budget/*.rpt), loaded and checked: every
// formula parses and names only fields its data has. The program then sets
// parameter values and replaces formulas before the report is run.
class ReportDefinition {
public:
    // Parses the file; on failure `error` names the file, the line and, for a
    // formula, the formula's name and the position within it.
    static std::unique_ptr<ReportDefinition> load(const QString &path, QString &error);
    ~ReportDefinition();

    const QString &path() const;
    const QString &title() const;

    std::vector<ParameterField> &ParameterFields();
    const std::vector<ParameterField> &ParameterFields() const;
    // Sets the named parameter (case-insensitive); false when the definition has none.
    bool setParameter(const QString &name, const ReportValue &value);

    QStringList formulaNames() const;
    bool hasFormula(const QString &name) const;
    // Replaces a named formula's text; a text that does not parse, or a name the
    // definition does not have, is refused with a message naming the
    // definition, the formula and the position.
    bool setFormula(const QString &name, const QString &text, QString &error);

    const QString &RecordSelectionFormula() const;
    bool setRecordSelectionFormula(const QString &text, QString &error);

    // The named subreport ("Details", "Details - 01"); nullptr when there is none.
    ReportDefinition *OpenSubreport(const QString &name);
    const ReportDefinition *OpenSubreport(const QString &name) const;
    QStringList subreportNames() const;

    // The aliases of the definition's data tables, and re-pointing one of them
    // at another table of the same shape (e.g. "FY2025_SummaryExpenditure").
    QStringList tableAliases() const;
    QString tableLocation(const QString &alias) const;
    bool setTableLocation(const QString &alias, const QString &table, QString &error);

    PaperOrientation orientation() const;
    void setOrientation(PaperOrientation orientation);

    const ReportDefinitionData &data() const;

private:
    ReportDefinition();
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// Where a definition file is read from: `<installPath>/reports/budget/<file>`
// (any case, either slash) when the installation has its own copy, else the
// program's installed copy. An empty result when neither exists.
QString findReportDefinition(const QString &installPath, const QString &fileName);
