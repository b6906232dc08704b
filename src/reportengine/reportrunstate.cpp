#include "reportrunstate.h"

#include "dbconnection.h"
#include "exactarithmetic.h"
#include "reportdefinition.h"
#include "reportdefinitioncheck.h"
#include "reportdocument.h"
#include "reportsources.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace {

bool same(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// A value as an SQL literal; a null as the empty value of `type`.
QString sqlLiteral(const ReportValue &value, ReportValue::Type type)
{
    switch (value.type()) {
    case ReportValue::Type::Text:
        return sqlText(value.asText());
    case ReportValue::Type::Number:
        return value.asNumber().toSqlText();
    case ReportValue::Type::Boolean:
        return value.asBoolean() ? QStringLiteral("1") : QStringLiteral("0");
    case ReportValue::Type::Date:
        return value.asDate().isValid() ? u'\'' + value.asDate().toString(QStringLiteral("yyyy-MM-dd")) + u'\''
                                        : QStringLiteral("NULL");
    case ReportValue::Type::Null:
        break;
    }
    switch (type) {
    case ReportValue::Type::Text:
        return QStringLiteral("''");
    case ReportValue::Type::Number:
    case ReportValue::Type::Boolean:
        return QStringLiteral("0");
    default:
        return QStringLiteral("NULL");
    }
}

// A folder or tree ID as a number when it is a whole number, so `in [ 1, 2 ]` compares numbers.
ReportValue idValue(const QString &id)
{
    bool ok = false;
    const qint64 number = id.toLongLong(&ok);
    return ok ? ReportValue::number(Currency::fromUnits(number)) : ReportValue::text(id);
}

} // namespace

void ColumnSums::add(std::size_t column, Currency amount)
{
    if (sums.size() <= column)
        sums.resize(column + 1);
    const Currency base = sums[column].value_or(Currency());
    sums[column] = addExact(base, amount).value_or(base);
}

RunState::RunState(const ReportDefinition &definition, const ReportSources &sources)
    : definition_(definition), report_(definition.data()), sources_(sources),
      label_(QFileInfo(definition.path()).fileName())
{
}

bool RunState::read(QString &error)
{
    if (!sources_.budget) {
        error = QStringLiteral("%1: no budget database to read from").arg(label_);
        return false;
    }
    // One-row lookups first: the main table's levy and every SQL may use them through formulas.
    lookups_.resize(report_.lookups.size());
    for (std::size_t i = 0; i < report_.lookups.size(); ++i) {
        if (!readLinked(report_.lookups[i], report_, lookups_[i], error))
            return false;
    }
    for (const QString &name : definition_.subreportNames()) {
        const ReportDefinition *sub = definition_.OpenSubreport(name);
        subreports_.push_back({&sub->data(), {}});
    }
    for (SubreportState &sub : subreports_) {
        if (!readLinked(sub.definition->main, *sub.definition, sub.table, error))
            return false;
    }
    if (!readTable(report_.main, report_, main_, error))
        return false;
    for (LinkedTable &table : lookups_)
        table.rowOfMain.assign(main_.rowCount(), -2);
    for (SubreportState &sub : subreports_)
        sub.table.rowOfMain.assign(main_.rowCount(), -2);
    folderOfRow_.assign(main_.rowCount(), -2);
    return report_.folder.isSet() ? readFolders(error) : true;
}

bool RunState::readTable(const DefinitionTable &table, const ReportDefinitionData &own, DataTable &into,
                         QString &error) const
{
    QString why;
    bool ok = false;
    switch (table.source) {
    case DefinitionTable::Source::Sql: {
        QString sql;
        if (!substitute(table.sql, own, sql, error))
            return false;
        ok = readSqlTable(*sources_.budget, sql, into, why);
        break;
    }
    case DefinitionTable::Source::Fund:
        ok = readFundTable(sources_.fundRoot, table.fundTable, into, why);
        break;
    case DefinitionTable::Source::Levy: {
        ReportValue levy;
        ReportValue prior;
        if (!evaluate(table.levy, -1, levy, error) || !evaluate(table.priorLevy, -1, prior, error))
            return false;
        if (levy.type() != ReportValue::Type::Number ||
            !(prior.isNull() || prior.type() == ReportValue::Type::Number)) {
            error =
                QStringLiteral("%1: the levy of table %2 is not an amount (\"%3\")")
                    .arg(label_, table.name, levy.type() != ReportValue::Type::Number ? levy.toText() : prior.toText());
            return false;
        }
        const bool hasPrior = table.priorLevy.isSet();
        ok = readLevyTable(*sources_.budget, levy.asNumber(), hasPrior ? std::optional(prior.asNumber()) : std::nullopt,
                           into, why);
        break;
    }
    }
    if (!ok)
        error = QStringLiteral("%1, line %2: table %3: %4").arg(label_).arg(table.line).arg(table.name, why);
    return ok;
}

bool RunState::sourceIdentity(const DefinitionTable &table, const ReportDefinitionData &own, QString &identity,
                              QString &error) const
{
    identity.clear();
    switch (table.source) {
    case DefinitionTable::Source::Sql:
        if (!substitute(table.sql, own, identity, error))
            return false;
        identity.prepend(QStringLiteral("sql\n"));
        break;
    case DefinitionTable::Source::Fund:
        identity = QStringLiteral("fund\n") + table.fundTable.trimmed().toLower();
        break;
    case DefinitionTable::Source::Levy:
        return true;
    }
    identity += QStringLiteral("\nkey ") + table.key.toLower();
    return true;
}

bool RunState::readLinked(const DefinitionTable &table, const ReportDefinitionData &own, LinkedTable &into,
                          QString &error)
{
    into.definition = &table;
    into.single = table.key.isEmpty();
    QString identity;
    if (!sourceIdentity(table, own, identity, error))
        return false;
    if (const auto read = linkedBySource_.constFind(identity); !identity.isEmpty() && read != linkedBySource_.cend()) {
        into.data = *read;
        return true;
    }
    auto data = std::make_shared<DataTable>();
    if (!readTable(table, own, *data, error))
        return false;
    if (into.single && data->rowCount() > 1) {
        error = QStringLiteral("%1, line %2: table %3 has no key, so it must give one row; it gave %4")
                    .arg(label_)
                    .arg(table.line)
                    .arg(table.name)
                    .arg(data->rowCount());
        return false;
    }
    if (!into.single && !data->indexBy(table.key)) {
        error = QStringLiteral("%1, line %2: table %3 has no column %4 to join by")
                    .arg(label_)
                    .arg(table.line)
                    .arg(table.name, table.key);
        return false;
    }
    into.data = data;
    if (!identity.isEmpty())
        linkedBySource_.insert(identity, into.data);
    return true;
}

bool RunState::readFolders(QString &error)
{
    DataTable tree;
    QString why;
    if (!readSqlTable(*sources_.budget,
                      QStringLiteral("select ID, ParentID, SortOrder, Name, ForceNewPage from SummaryTree"), tree,
                      why)) {
        error = QStringLiteral("%1: cannot read the summary tree: %2").arg(label_, why);
        return false;
    }
    for (const auto &row : tree.rows()) {
        const QString id = row[0].toText().trimmed();
        if (folderById_.contains(id))
            continue;
        folderById_.insert(id, static_cast<int>(folders_.size()));
        folders_.push_back({id,
                            row[1].toText().trimmed(),
                            row[2].toText().trimmed().toInt(),
                            row[3].toText().trimmed(),
                            row[4].toText().trimmed().startsWith(u'Y', Qt::CaseInsensitive),
                            {}});
    }
    for (int i = 0; i < static_cast<int>(folders_.size()); ++i) {
        std::vector<int> path{i};
        // A damaged tree that loops ends the walk where it would repeat a folder.
        for (int at = i; path.size() <= folders_.size();) {
            const int parent = folderById_.value(folders_[at].parentId, -1);
            if (parent < 0 || std::find(path.begin(), path.end(), parent) != path.end())
                break;
            path.push_back(parent);
            at = parent;
        }
        folders_[i].path.assign(path.rbegin(), path.rend());
    }
    return true;
}

bool RunState::substitute(const QString &sql, const ReportDefinitionData &own, QString &out, QString &error) const
{
    out.clear();
    qsizetype from = 0;
    for (const SqlReference &reference : sqlReferences(sql)) {
        out += sql.mid(from, reference.position - from);
        from = reference.position + reference.length;
        if (reference.marker == u'?') {
            ReportValue::Type type = ReportValue::Type::Text;
            for (const ParameterField &field : report_.parameters) {
                if (same(field.Name, reference.name))
                    type = field.Type;
            }
            out += sqlLiteral(parameter(reference.name).value_or(ReportValue()), type);
            continue;
        }
        const DefinitionFormula *formula = own.formula(reference.name);
        ReportValue value;
        if (!formula || !evaluate(*formula, -1, value, error))
            return false;
        out += sqlLiteral(value, ReportValue::Type::Null);
    }
    out += sql.mid(from);
    return true;
}

bool RunState::evaluate(const DefinitionFormula &formula, int row, ReportValue &value, QString &error) const
{
    const RowContext context(*this, row);
    value = context.evaluate(formula);
    if (context.failure())
        error = *context.failure();
    return !context.failure();
}

bool RunState::evaluateTotal(const DefinitionFormula &formula, const ColumnSums &total, const ColumnSums &grand,
                             ReportValue &value, QString &error) const
{
    const RowContext context(*this, -1, nullptr, &total, &grand);
    value = context.evaluate(formula);
    if (context.failure())
        error = *context.failure();
    return !context.failure();
}

std::optional<ReportValue> RunState::parameter(const QString &name) const
{
    for (const ParameterField &field : report_.parameters) {
        if (!same(field.Name, name))
            continue;
        const ReportValue &value = field.CurrentValue;
        switch (field.Type) {
        case ReportValue::Type::Text:
            return value.type() == ReportValue::Type::Text ? value : ReportValue::text(value.toText());
        case ReportValue::Type::Number:
            if (value.isNull())
                return ReportValue::number(Currency());
            if (value.type() == ReportValue::Type::Text) {
                if (const auto number = Currency::parse(value.asText()))
                    return ReportValue::number(*number);
            }
            return value;
        case ReportValue::Type::Boolean:
            return value.isNull() ? ReportValue::boolean(false) : value;
        default:
            return value;
        }
    }
    return std::nullopt;
}

const FolderNode *RunState::folderOf(int row) const
{
    if (row < 0 || !report_.folder.isSet())
        return nullptr;
    int &folder = folderOfRow_[row];
    if (folder == -2) {
        const RowContext context(*this, row);
        const ReportValue id = context.evaluate(report_.folder);
        folder = context.failure() ? -1 : folderById_.value(keyText(id), -1);
    }
    return folder < 0 ? nullptr : &folders_[folder];
}

int RunState::linkedRow(const LinkedTable &table, int row, const RowContext &context) const
{
    if (table.single)
        return table.data->rowCount() > 0 ? 0 : -1;
    if (row < 0)
        return -1;
    int &linked = table.rowOfMain[row];
    if (linked == -2)
        linked = table.data->find(context.evaluate(table.definition->link));
    return linked;
}

// ---------------------------------------------------------------- RowContext

RowContext::RowContext(const RunState &run, int row, const SubreportState *subreport, const ColumnSums *total,
                       const ColumnSums *grand)
    : run_(run), row_(row), subreport_(subreport), total_(total), grand_(grand)
{
}

ReportValue RowContext::evaluate(const DefinitionFormula &formula) const
{
    if (!formula.parsed)
        return {};
    FormulaError error;
    ReportValue value = formula.parsed->evaluate(*this, error);
    if (!error.message.isEmpty() && !failure_)
        failure_ = formulaMessage(run_.label(), formula, error.position, error.message);
    return value;
}

std::optional<ReportValue> RowContext::field(const QString &table, const QString &field) const
{
    if (subreport_ && same(table, subreport_->definition->main.alias))
        return linkedField(subreport_->table, field);
    if (total_ && same(table, QStringLiteral("Total")))
        return sumField(total_, field);
    if (grand_ && same(table, QStringLiteral("Grand")))
        return sumField(grand_, field);
    for (const LinkedTable &lookup : run_.lookups_) {
        if (same(table, lookup.definition->alias))
            return lookup.single || row_ >= 0 ? linkedField(lookup, field) : std::nullopt;
    }
    if (row_ < 0)
        return std::nullopt;
    const DataTable &main = run_.main_;
    if (same(table, run_.report_.main.alias)) {
        const int column = main.column(field);
        return column < 0 ? std::nullopt : std::optional(main.cell(row_, column));
    }
    for (const SubreportState &sub : run_.subreports_) {
        if (same(table, sub.definition->title)) {
            const DefinitionFormula *formula = sub.definition->formula(field);
            if (!formula)
                return std::nullopt;
            const RowContext inner(run_, row_, &sub);
            const ReportValue value = inner.evaluate(*formula);
            if (inner.failure() && !failure_)
                failure_ = inner.failure();
            return value;
        }
    }
    if (same(table, QStringLiteral("Tree")))
        return treeField(field);
    const int column = main.column(table + u'_' + field);
    return column < 0 ? std::nullopt : std::optional(main.cell(row_, column));
}

std::optional<ReportValue> RowContext::parameter(const QString &name) const
{
    return run_.parameter(name);
}

std::optional<ReportValue> RowContext::formula(const QString &name) const
{
    const ReportDefinitionData &own = subreport_ ? *subreport_->definition : run_.report_;
    const DefinitionFormula *formula = own.formula(name);
    if (!formula)
        return std::nullopt;
    return evaluate(*formula);
}

std::optional<ReportValue> RowContext::linkedField(const LinkedTable &table, const QString &field) const
{
    const int column = table.data->column(field);
    if (column < 0)
        return std::nullopt;
    const int row = run_.linkedRow(table, row_, *this);
    return row < 0 ? ReportValue() : table.data->cell(row, column);
}

std::optional<ReportValue> RowContext::treeField(const QString &field) const
{
    const FolderNode *folder = run_.folderOf(row_);
    const FolderNode *top = folder ? &run_.folders_[folder->path.front()] : nullptr;
    if (same(field, QStringLiteral("ID")))
        return folder ? idValue(folder->id) : ReportValue();
    if (same(field, QStringLiteral("Name")))
        return folder ? ReportValue::text(folder->name) : ReportValue();
    if (same(field, QStringLiteral("TopID")))
        return top ? idValue(top->id) : ReportValue();
    if (same(field, QStringLiteral("TopName")))
        return top ? ReportValue::text(top->name) : ReportValue();
    if (same(field, QStringLiteral("Depth")))
        return folder ? ReportValue::number(Currency::fromUnits(static_cast<qint64>(folder->path.size())))
                      : ReportValue();
    return std::nullopt;
}

std::optional<ReportValue> RowContext::sumField(const ColumnSums *sums, const QString &field) const
{
    const auto &columns = run_.report_.columns;
    for (std::size_t c = 0; c < columns.size(); ++c) {
        if (same(columns[c].name, field)) {
            if (c < sums->sums.size() && sums->sums[c])
                return ReportValue::number(*sums->sums[c]);
            return ReportValue();
        }
    }
    return std::nullopt;
}
