#pragma once

#include "reportdefinitiondata.h"

#include <QString>

#include <vector>

// What a formula of a definition may name.
struct FormulaScope {
    const ReportDefinitionData *report = nullptr;         // parameters, main table, lookups
    std::vector<const ReportDefinitionData *> subreports; // each titled by its name
    const ReportDefinitionData *own = nullptr;            // whose {@Name} formulas it reaches
    bool totals = false;                                  // {Total.X} and {Grand.X} allowed
};

// "<file>, line <n>: formula "<name>", position <p>: <why>" (the line left out
// for a formula the program set); `position` counts from 0 and is shown from 1.
QString formulaMessage(const QString &fileLabel, const DefinitionFormula &formula, int position, const QString &why);

// Parses the formula (an empty text leaves it unset) and checks every
// parameter, formula and field it names. On failure `error` names the file,
// the line, the formula and the position (counted from 1).
bool checkFormula(DefinitionFormula &formula, const FormulaScope &scope, const QString &fileLabel, QString &error);

// Fails when a named formula of `own` reaches itself through {@...}.
bool checkFormulaCycles(const ReportDefinitionData &own, const QString &fileLabel, QString &error);

// Every formula of a report and of its subreports, and the {?Name}/{@Name}
// of every SQL text.
bool checkDefinition(ReportDefinitionData &report, const std::vector<ReportDefinitionData *> &subreports,
                     const QString &fileLabel, QString &error);

// The scope of the report's own formulas and of one subreport's.
FormulaScope reportScope(const ReportDefinitionData &report, const std::vector<const ReportDefinitionData *> &subs);
FormulaScope subreportScope(const ReportDefinitionData &report, const std::vector<const ReportDefinitionData *> &subs,
                            const ReportDefinitionData &subreport);

// The {?Name} and {@Name} references of an SQL text, in order: (marker, name, position).
struct SqlReference {
    QChar marker; // '?' or '@'
    QString name;
    qsizetype position = 0;
    qsizetype length = 0;
};
std::vector<SqlReference> sqlReferences(const QString &sql);
