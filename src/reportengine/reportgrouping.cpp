#include "reportgrouping.h"

#include <algorithm>

namespace {

int typeRank(ReportValue::Type type)
{
    switch (type) {
    case ReportValue::Type::Null:
        return 0;
    case ReportValue::Type::Boolean:
        return 1;
    case ReportValue::Type::Number:
        return 2;
    case ReportValue::Type::Text:
        return 3;
    case ReportValue::Type::Date:
        return 4;
    }
    return 5;
}

// Orders group values: null first, then by kind, then by value.
int compareValues(const ReportValue &a, const ReportValue &b)
{
    if (a.type() != b.type())
        return typeRank(a.type()) < typeRank(b.type()) ? -1 : 1;
    switch (a.type()) {
    case ReportValue::Type::Number:
        return a.asNumber() < b.asNumber() ? -1 : b.asNumber() < a.asNumber() ? 1 : 0;
    case ReportValue::Type::Text:
        return a.asText().compare(b.asText());
    case ReportValue::Type::Date:
        return a.asDate() < b.asDate() ? -1 : b.asDate() < a.asDate() ? 1 : 0;
    case ReportValue::Type::Boolean:
        return int(a.asBoolean()) - int(b.asBoolean());
    case ReportValue::Type::Null:
        break;
    }
    return 0;
}

} // namespace

ReportGrouping::ReportGrouping(const RunState &state, std::vector<int> shown) : state_(state), shown_(std::move(shown))
{
}

bool ReportGrouping::groupValues(int row, std::vector<ReportValue> &values, QString &error) const
{
    for (const DefinitionGroup &group : state_.report().groups) {
        ReportValue value;
        if (!group.folders && !state_.evaluate(group.by, row, value, error))
            return false;
        values.push_back(value);
    }
    return true;
}

bool ReportGrouping::sort(std::vector<int> &rows, QString &error)
{
    const auto &groups = state_.report().groups;
    groupValues_.assign(state_.main().rowCount(), {});
    if (groups.empty())
        return true;
    for (const int row : rows) {
        if (!groupValues(row, groupValues_[row], error))
            return false;
    }
    const auto &folders = state_.folders();
    // Folders by their sort order among siblings; a folder's own rows before its subfolders'; rows in no folder last.
    const auto comparePaths = [&](const FolderNode *a, const FolderNode *b) {
        if (!a || !b)
            return a == b ? 0 : a ? -1 : 1;
        for (std::size_t i = 0; i < a->path.size() && i < b->path.size(); ++i) {
            const FolderNode &x = folders[a->path[i]];
            const FolderNode &y = folders[b->path[i]];
            if (x.sortOrder != y.sortOrder)
                return x.sortOrder < y.sortOrder ? -1 : 1;
            if (const int byId = x.id.compare(y.id))
                return byId;
        }
        return a->path.size() == b->path.size() ? 0 : a->path.size() < b->path.size() ? -1 : 1;
    };
    std::stable_sort(rows.begin(), rows.end(), [&](int a, int b) {
        for (std::size_t g = 0; g < groups.size(); ++g) {
            const int order = groups[g].folders ? comparePaths(state_.folderOf(a), state_.folderOf(b))
                                                : compareValues(groupValues_[a][g], groupValues_[b][g]);
            if (order != 0)
                return order < 0;
        }
        return false;
    });
    return true;
}

std::vector<ReportGrouping::Level> ReportGrouping::levelsOf(int row, const std::vector<ReportValue> &values) const
{
    std::vector<Level> levels;
    const auto &groups = state_.report().groups;
    for (std::size_t g = 0; g < groups.size(); ++g) {
        if (!groups[g].folders) {
            levels.push_back(
                {QStringLiteral("%1:%2:").arg(g).arg(int(values[g].type())) + keyText(values[g]), static_cast<int>(g)});
            continue;
        }
        if (const FolderNode *folder = state_.folderOf(row)) {
            for (const int index : folder->path) {
                const FolderNode &node = state_.folders()[index];
                levels.push_back({QStringLiteral("f:") + node.id, static_cast<int>(g), &node});
            }
        }
    }
    return levels;
}

bool ReportGrouping::open(Level &level, int row, int depth, ReportTable &table, QString &error) const
{
    QString header;
    bool hasHeader = false;
    bool newPage = false;
    if (level.folder) {
        header = level.folder->name;
        hasHeader = true;
        newPage = level.folder->forceNewPage;
        level.hasTotal = true;
        level.totalLabel = QStringLiteral("Total ") + level.folder->name;
    } else {
        const DefinitionGroup &group = state_.report().groups[level.group];
        ReportValue value;
        if (!state_.evaluate(group.header, row, value, error))
            return false;
        header = value.toText();
        hasHeader = group.header.isSet();
        if (!state_.evaluate(group.newPage, row, value, error))
            return false;
        newPage = value.type() == ReportValue::Type::Boolean && value.asBoolean();
        if (!state_.evaluate(group.total, row, value, error))
            return false;
        level.hasTotal = group.total.isSet();
        level.totalLabel = value.toText();
    }
    if (hasHeader || newPage) {
        ReportTable::Row out{ReportTable::RowKind::GroupHeader, depth, newPage, std::vector<QString>(shown_.size())};
        if (!out.cells.empty())
            out.cells[0] = header;
        table.rows.push_back(std::move(out));
    }
    return true;
}

bool ReportGrouping::close(const Level &level, ReportTable::RowKind kind, int depth, ReportTable &table,
                           QString &error) const
{
    if (!level.hasTotal)
        return true;
    const auto &columns = state_.report().columns;
    ReportTable::Row out{kind, depth, false, std::vector<QString>(shown_.size())};
    int labelAt = -1;
    for (std::size_t j = 0; j < shown_.size(); ++j) {
        const int c = shown_[j];
        const DefinitionColumn &column = columns[c];
        if (column.totalValue.isSet()) {
            ReportValue value;
            if (!state_.evaluateTotal(column.totalValue, level.sums, grand_, value, error))
                return false;
            out.cells[j] = value.toText();
        } else if (column.total) {
            const bool any = static_cast<std::size_t>(c) < level.sums.sums.size() && level.sums.sums[c];
            out.cells[j] = any ? level.sums.sums[c]->toSqlText() : QStringLiteral("0");
        } else if (labelAt < 0) {
            labelAt = static_cast<int>(j);
        }
    }
    if (!out.cells.empty())
        out.cells[labelAt < 0 ? 0 : labelAt] = level.totalLabel;
    table.rows.push_back(std::move(out));
    return true;
}

bool ReportGrouping::rowValues(int row, std::vector<ReportValue> &values, QString &error) const
{
    const auto &columns = state_.report().columns;
    values.clear();
    for (const int c : shown_) {
        ReportValue value;
        if (!state_.evaluate(columns[c].value, row, value, error))
            return false;
        values.push_back(std::move(value));
    }
    return true;
}

bool ReportGrouping::build(const std::vector<int> &rows, ReportTable &table, const ReportProgress &progress,
                           QString &error)
{
    const int total = static_cast<int>(state_.main().rowCount());
    // Every row's cells first: the group totals may need the grand total ({Grand.X}).
    std::vector<std::vector<ReportValue>> values(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (progress && i % 256 == 0 && !progress(total + static_cast<int>(i * total / rows.size()), total * 2)) {
            error = reportCancelled;
            return false;
        }
        if (!rowValues(rows[i], values[i], error))
            return false;
        for (std::size_t j = 0; j < shown_.size(); ++j) {
            if (values[i][j].type() == ReportValue::Type::Number)
                grand_.add(shown_[j], values[i][j].asNumber());
        }
    }
    const bool details = state_.report().details;
    std::vector<Level> stack; // the groups open at the current row, outermost first
    for (std::size_t i = 0; i < rows.size(); ++i) {
        std::vector<Level> levels = levelsOf(rows[i], groupValues_[rows[i]]);
        std::size_t common = 0;
        while (common < stack.size() && common < levels.size() && stack[common].identity == levels[common].identity)
            ++common;
        while (stack.size() > common) {
            if (!close(stack.back(), ReportTable::RowKind::GroupTotal, static_cast<int>(stack.size()) - 1, table,
                       error))
                return false;
            stack.pop_back();
        }
        for (std::size_t k = common; k < levels.size(); ++k) {
            if (!open(levels[k], rows[i], static_cast<int>(k), table, error))
                return false;
            stack.push_back(std::move(levels[k]));
        }
        if (details) {
            ReportTable::Row out{ReportTable::RowKind::Detail, static_cast<int>(stack.size()), false, {}};
            for (const ReportValue &value : values[i])
                out.cells.push_back(value.toText());
            table.rows.push_back(std::move(out));
        }
        for (Level &level : stack) {
            for (std::size_t j = 0; j < shown_.size(); ++j) {
                if (values[i][j].type() == ReportValue::Type::Number)
                    level.sums.add(shown_[j], values[i][j].asNumber());
            }
        }
    }
    while (!stack.empty()) {
        if (!close(stack.back(), ReportTable::RowKind::GroupTotal, static_cast<int>(stack.size()) - 1, table, error))
            return false;
        stack.pop_back();
    }
    const DefinitionFormula &grandTotal = state_.report().grandTotal;
    if (!grandTotal.isSet())
        return true;
    Level grand;
    grand.hasTotal = true;
    grand.sums = grand_;
    ReportValue label;
    if (!state_.evaluate(grandTotal, -1, label, error))
        return false;
    grand.totalLabel = label.toText();
    return close(grand, ReportTable::RowKind::GrandTotal, 0, table, error);
}
