#include "reportdefinitioncheck.h"

#include <QHash>
#include <QRegularExpression>

#include <functional>
#include <optional>

namespace {

bool same(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Where `{marker name}` (blanks allowed inside the braces) first occurs in text; 0 when it does not.
int positionOf(const QString &text, const QString &inside)
{
    QString pattern = QStringLiteral("\\{\\s*");
    for (const QString &part : inside.split(u'.'))
        pattern += QRegularExpression::escape(part) + QStringLiteral("\\s*\\.\\s*");
    pattern.chop(QStringLiteral("\\s*\\.\\s*").size());
    pattern += QStringLiteral("\\s*\\}");
    const QRegularExpression expression(pattern, QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = expression.match(text);
    return match.hasMatch() ? static_cast<int>(match.capturedStart()) : 0;
}

bool formulaError(const DefinitionFormula &formula, int position, const QString &why, const QString &fileLabel,
                  QString &error)
{
    error = formulaMessage(fileLabel, formula, position, why);
    return false;
}

std::optional<QString> tableFieldProblem(const DefinitionTable &table, const QString &field)
{
    const QStringList *known = nullptr;
    if (table.source == DefinitionTable::Source::Fund)
        known = &fundTableFields(table.fundRecord);
    else if (table.source == DefinitionTable::Source::Levy)
        known = &levyFields();
    if (!known || known->contains(field, Qt::CaseInsensitive))
        return std::nullopt;
    return QStringLiteral("table %1 has no field %2").arg(table.alias, field);
}

std::optional<QString> fieldProblem(const FormulaScope &scope, const FormulaField &f)
{
    const ReportDefinitionData &report = *scope.report;
    if (scope.own != scope.report && same(f.table, scope.own->main.alias))
        return tableFieldProblem(scope.own->main, f.field);
    if (same(f.table, report.main.alias))
        return tableFieldProblem(report.main, f.field);
    if (const DefinitionTable *lookup = report.lookup(f.table))
        return tableFieldProblem(*lookup, f.field);
    for (const ReportDefinitionData *sub : scope.subreports) {
        if (same(f.table, sub->title)) {
            if (sub->formula(f.field))
                return std::nullopt;
            return QStringLiteral("subreport %1 has no formula %2").arg(sub->title, f.field);
        }
    }
    if (same(f.table, QStringLiteral("Tree"))) {
        if (report.folder.text.isEmpty())
            return QStringLiteral("{Tree.%1} needs \"folder\" in [report]").arg(f.field);
        if (!treeFields().contains(f.field, Qt::CaseInsensitive))
            return QStringLiteral("Tree has no field %1").arg(f.field);
        return std::nullopt;
    }
    if (same(f.table, QStringLiteral("Total")) || same(f.table, QStringLiteral("Grand"))) {
        if (!scope.totals)
            return QStringLiteral("{%1.%2} can only be used in a column's totalvalue").arg(f.table, f.field);
        for (const DefinitionColumn &column : report.columns) {
            if (same(column.name, f.field))
                return std::nullopt;
        }
        return QStringLiteral("no column is named %1").arg(f.field);
    }
    // Any other table is a column "Table_Field" of the main table's SQL: known when it runs.
    return std::nullopt;
}

bool hasParameter(const ReportDefinitionData &report, const QString &name)
{
    for (const ParameterField &field : report.parameters) {
        if (same(field.Name, name))
            return true;
    }
    return false;
}

bool checkSql(const DefinitionTable &table, const ReportDefinitionData &report, const ReportDefinitionData &own,
              const QString &fileLabel, QString &error)
{
    for (const SqlReference &reference : sqlReferences(table.sql)) {
        const bool known =
            reference.marker == u'?' ? hasParameter(report, reference.name) : own.formula(reference.name) != nullptr;
        if (!known) {
            error =
                QStringLiteral("%1, line %2: the SQL of table %3 names an unknown %4 %5")
                    .arg(fileLabel)
                    .arg(table.line)
                    .arg(table.name, reference.marker == u'?' ? QStringLiteral("parameter") : QStringLiteral("formula"),
                         reference.name);
            return false;
        }
    }
    return true;
}

} // namespace

QString formulaMessage(const QString &fileLabel, const DefinitionFormula &formula, int position, const QString &why)
{
    const int line = formula.lineOf(position);
    // The formula language ends its messages with the position counted from 0; ours is shown once, from 1.
    QString reason = why;
    const QString suffix = QStringLiteral(" at position %1").arg(position);
    if (reason.endsWith(suffix))
        reason.chop(suffix.size());
    return QStringLiteral("%1%2: formula \"%3\", position %4: %5")
        .arg(fileLabel, line > 0 ? QStringLiteral(", line %1").arg(line) : QString(), formula.name)
        .arg(position + 1)
        .arg(reason);
}

bool checkFormula(DefinitionFormula &formula, const FormulaScope &scope, const QString &fileLabel, QString &error)
{
    formula.parsed.reset();
    if (formula.text.trimmed().isEmpty())
        return true;
    FormulaError parseError;
    std::optional<Formula> parsed = Formula::parse(formula.text, parseError);
    if (!parsed)
        return formulaError(formula, parseError.position, parseError.message, fileLabel, error);
    for (const QString &name : parsed->parameters()) {
        if (!hasParameter(*scope.report, name))
            return formulaError(formula, positionOf(formula.text, u'?' + name),
                                QStringLiteral("unknown parameter {?%1}").arg(name), fileLabel, error);
    }
    for (const QString &name : parsed->formulas()) {
        if (!scope.own->formula(name))
            return formulaError(formula, positionOf(formula.text, u'@' + name),
                                QStringLiteral("unknown formula {@%1}").arg(name), fileLabel, error);
    }
    for (const FormulaField &field : parsed->fields()) {
        if (const auto problem = fieldProblem(scope, field))
            return formulaError(formula, positionOf(formula.text, field.table + u'.' + field.field), *problem,
                                fileLabel, error);
    }
    formula.parsed = std::move(parsed);
    return true;
}

bool checkFormulaCycles(const ReportDefinitionData &own, const QString &fileLabel, QString &error)
{
    // Depth-first walk; 1 = on the current path, 2 = done.
    QHash<QString, int> state;
    std::function<const DefinitionFormula *(const DefinitionFormula &)> visit =
        [&](const DefinitionFormula &formula) -> const DefinitionFormula * {
        const QString key = formula.name.toLower();
        if (state.value(key) == 2)
            return nullptr;
        if (state.value(key) == 1)
            return &formula;
        state.insert(key, 1);
        if (formula.parsed) {
            for (const QString &name : formula.parsed->formulas()) {
                if (const DefinitionFormula *next = own.formula(name)) {
                    if (const DefinitionFormula *looped = visit(*next))
                        return looped;
                }
            }
        }
        state.insert(key, 2);
        return nullptr;
    };
    for (const DefinitionFormula &formula : own.formulas) {
        state.clear();
        if (const DefinitionFormula *looped = visit(formula)) {
            error = QStringLiteral("%1, line %2: formula \"%3\" refers to itself")
                        .arg(fileLabel)
                        .arg(looped->lineOf(0))
                        .arg(looped->name);
            return false;
        }
    }
    return true;
}

FormulaScope reportScope(const ReportDefinitionData &report, const std::vector<const ReportDefinitionData *> &subs)
{
    return {&report, subs, &report, false};
}

FormulaScope subreportScope(const ReportDefinitionData &report, const std::vector<const ReportDefinitionData *> &subs,
                            const ReportDefinitionData &subreport)
{
    return {&report, subs, &subreport, false};
}

bool checkDefinition(ReportDefinitionData &report, const std::vector<ReportDefinitionData *> &subreports,
                     const QString &fileLabel, QString &error)
{
    const std::vector<const ReportDefinitionData *> subs(subreports.begin(), subreports.end());
    const FormulaScope scope = reportScope(report, subs);
    FormulaScope totals = scope;
    totals.totals = true;

    std::vector<DefinitionFormula *> formulas{&report.district,   &report.selection, &report.folder,
                                              &report.grandTotal, &report.main.levy, &report.main.priorLevy};
    for (DefinitionFormula &f : report.formulas)
        formulas.push_back(&f);
    for (DefinitionFormula &f : report.subtitles)
        formulas.push_back(&f);
    for (DefinitionFormula &f : report.notes)
        formulas.push_back(&f);
    for (DefinitionTable &table : report.lookups)
        formulas.push_back(&table.link);
    for (DefinitionGroup &group : report.groups) {
        for (DefinitionFormula *f : {&group.by, &group.header, &group.total, &group.newPage})
            formulas.push_back(f);
    }
    for (DefinitionColumn &column : report.columns) {
        for (DefinitionFormula *f : {&column.heading, &column.value, &column.show})
            formulas.push_back(f);
    }
    for (DefinitionChart &chart : report.charts) {
        formulas.push_back(&chart.title);
        formulas.push_back(&chart.category);
        for (auto &series : chart.series)
            formulas.push_back(&series.second);
    }
    for (ReportDefinitionData *sub : subreports)
        formulas.push_back(&sub->main.link);
    for (DefinitionFormula *formula : formulas) {
        if (!checkFormula(*formula, scope, fileLabel, error))
            return false;
    }
    for (DefinitionColumn &column : report.columns) {
        if (!checkFormula(column.totalValue, totals, fileLabel, error))
            return false;
    }
    if (!checkFormulaCycles(report, fileLabel, error))
        return false;
    for (ReportDefinitionData *sub : subreports) {
        const FormulaScope own = subreportScope(report, subs, *sub);
        for (DefinitionFormula &formula : sub->formulas) {
            if (!checkFormula(formula, own, fileLabel, error))
                return false;
        }
        if (!checkFormulaCycles(*sub, fileLabel, error))
            return false;
    }
    if (!checkSql(report.main, report, report, fileLabel, error))
        return false;
    for (const DefinitionTable &table : report.lookups) {
        if (!checkSql(table, report, report, fileLabel, error))
            return false;
    }
    for (const ReportDefinitionData *sub : subreports) {
        if (!checkSql(sub->main, report, *sub, fileLabel, error))
            return false;
    }
    return true;
}

std::vector<SqlReference> sqlReferences(const QString &sql)
{
    static const QRegularExpression pattern(QStringLiteral("\\{\\s*([?@])\\s*([A-Za-z_][A-Za-z0-9_]*)\\s*\\}"));
    std::vector<SqlReference> references;
    for (auto it = pattern.globalMatch(sql); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        references.push_back(
            {match.captured(1).front(), match.captured(2), match.capturedStart(), match.capturedLength()});
    }
    return references;
}
