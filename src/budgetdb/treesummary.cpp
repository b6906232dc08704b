#include "treesummary.h"

namespace {

QString number(qint64 value)
{
    return QString::number(value);
}

// Sort positions are stored right-aligned in ten characters.
QString paddedSortOrder(qint64 sortOrder)
{
    return number(sortOrder).rightJustified(10, u' ');
}

QString yesNo(bool flag)
{
    return flag ? QStringLiteral("Y") : QStringLiteral("N");
}

void fillNode(const Recordset &row, clsTreeItem &item)
{
    item.ID = row.number(QStringLiteral("ID"));
    item.NodeType = row.text(QStringLiteral("NodeType"));
    item.FundID = row.text(QStringLiteral("FundID"));
    item.LedgerID = row.text(QStringLiteral("LedgerID"));
    item.ParentID = row.number(QStringLiteral("ParentID"));
    item.Name = row.text(QStringLiteral("Name"));
    item.SortOrder = row.number(QStringLiteral("SortOrder"));
    item.ForceNewPage = row.text(QStringLiteral("ForceNewPage")).trimmed() == u"Y";
}

AuditedRows auditedNode(qint64 id)
{
    std::vector<AuditColumn> columns;
    for (const char *name : {"NodeType", "FundID", "LedgerID", "ParentID", "SortOrder", "Name", "ForceNewPage"})
        columns.push_back({QLatin1String(name)});
    return {QStringLiteral("BudgetSummaryTree"),
            {QStringLiteral("ID")},
            std::move(columns),
            QStringLiteral("Rtrim(Ltrim(ID)) = ") + sqlText(number(id)),
            {}};
}

} // namespace

clsTreeSummary::clsTreeSummary() : StoreBase(QStringLiteral("clsTreeSummary"))
{
}

bool clsTreeSummary::Add()
{
    // Finding the key and inserting the node are one piece of work.
    return atomically(QStringLiteral("BudgetSummaryTree"), [this] { return insertNewNode(); });
}

bool clsTreeSummary::insertNewNode()
{
    Recordset rows;
    if (!query(QStringLiteral("Select Max(convert(ID, sql_double)) As NewLngID from BudgetSummaryTree"),
               QStringLiteral("Add"), rows))
        return false;
    qint64 candidate =
        rows.atEnd() || rows.isNull(QStringLiteral("NewLngID")) ? 1 : rows.number(QStringLiteral("NewLngID")) + 1;
    rows.Close();
    // A new node sorts after every sibling: skip positions already taken anywhere.
    for (;;) {
        if (!query(QStringLiteral("Select SortOrder from BudgetSummaryTree where RTrim(Ltrim(SortOrder)) = ") +
                       sqlText(number(candidate)),
                   QStringLiteral("Add"), rows))
            return false;
        const bool taken = !rows.atEnd();
        rows.Close();
        if (!taken)
            break;
        ++candidate;
    }
    treeItem_.ID = candidate;
    treeItem_.SortOrder = candidate;

    const clsTreeItem &t = treeItem_;
    const QString sql = QStringLiteral("Insert into BudgetSummaryTree (ID, NodeType, FundID, ") +
                        QStringLiteral(" LedgerID, ParentID, SortOrder, Name, ForceNewPage)") +
                        QStringLiteral(" Values (") + sqlText(number(t.ID)) + u',' + sqlText(t.NodeType) + u',' +
                        sqlText(t.FundID) + u',' + sqlText(t.LedgerID) + u',' + sqlText(number(t.ParentID)) +
                        QStringLiteral(",'") + paddedSortOrder(t.SortOrder) + QStringLiteral("',") + sqlText(t.Name) +
                        QStringLiteral(",'") + yesNo(t.ForceNewPage) + QStringLiteral(" ')");
    return audited(QStringLiteral("BudgetSummaryTree"), auditedNode(t.ID), [&] {
        return executeCounted(sql, QStringLiteral("BudgetSummaryTree"), Expect::ExactlyOne,
                              always(QStringLiteral("Invalid number of records added!")));
    });
}

QString clsTreeSummary::updateStatement() const
{
    const clsTreeItem &t = treeItem_;
    return QStringLiteral("Update BudgetSummaryTree Set ") + QStringLiteral("NodeType = ") + sqlText(t.NodeType) +
           u',' + QStringLiteral("ParentID = ") + sqlText(number(t.ParentID)) + u',' + QStringLiteral("SortOrder = '") +
           paddedSortOrder(t.SortOrder) + QStringLiteral("',") + QStringLiteral("Name = ") + sqlText(t.Name) + u',' +
           QStringLiteral("forceNewPage = '") + yesNo(t.ForceNewPage) + u'\'' +
           QStringLiteral("Where ltrim(rtrim(id)) = ") + sqlText(number(t.ID));
}

bool clsTreeSummary::Update()
{
    return changeRows(updateStatement(), QStringLiteral("Update"), Expect::ExactlyOne,
                      always(QStringLiteral("No record found to be Update.")), auditedNode(treeItem_.ID));
}

bool clsTreeSummary::UpdateBatch()
{
    return Update();
}

bool clsTreeSummary::Delete()
{
    return changeRows(QStringLiteral("Delete from BudgetSummaryTree where Rtrim(Ltrim(Id)) = ") +
                          sqlText(number(treeItem_.ID)),
                      QStringLiteral("TreeSummary:Delete"), Expect::AtLeastOne,
                      always(QStringLiteral("No record found to be delete.")), auditedNode(treeItem_.ID));
}

QString clsTreeSummary::childConditions(const clsTreeItem &selector)
{
    return QStringLiteral("NodeType = ") + sqlText(selector.NodeType) + QStringLiteral(" and ") +
           QStringLiteral("LedgerID = ") + sqlText(selector.LedgerID) + QStringLiteral(" and ") +
           QStringLiteral("FundID = ") + sqlText(selector.FundID) + QStringLiteral(" and ") +
           QStringLiteral("ParentID = ") + sqlText(number(selector.ParentID));
}

bool clsTreeSummary::GetChildren(std::vector<clsTreeItem> &items)
{
    return readList<clsTreeItem>(QStringLiteral("Select * from BudgetSummaryTree where ") + childConditions(treeItem_) +
                                     QStringLiteral("Order by convert(SortOrder,sql_integer)"),
                                 QStringLiteral("GetChildren"), items, fillNode);
}

bool clsTreeSummary::childIds(const clsTreeItem &selector, const QString &sub, std::vector<qint64> &ids)
{
    return readList<qint64>(QStringLiteral("Select ID from BudgetSummaryTree where ") + childConditions(selector), sub,
                            ids, [](const Recordset &row, qint64 &id) { id = row.number(QStringLiteral("ID")); });
}

bool clsTreeSummary::GetChildrenArray(std::vector<qint64> &ids)
{
    return childIds(treeItem_, QStringLiteral("GetChildrenArray"), ids);
}

bool clsTreeSummary::readNode(qint64 id, const QString &sub, clsTreeItem &item)
{
    return retrieveFirst(
        QStringLiteral("Select * from BudgetSummaryTree where Rtrim(ltrim(ID)) = ") + sqlText(number(id)), sub,
        QStringLiteral("Record not Found."), [&item](const Recordset &row) { fillNode(row, item); });
}

bool clsTreeSummary::Retrieve()
{
    return readNode(treeItem_.ID, QStringLiteral("Retrieve"), treeItem_);
}

QString clsTreeSummary::categoryCondition() const
{
    if (!cat_)
        return {};
    const QString category = category_.trimmed().toUpper();
    if (category == u"A")
        return QStringLiteral(" And CatAFlag = 'A' ");
    if (category == u"C")
        return QStringLiteral(" And CatCFlag = 'C' ");
    if (category == u"P")
        return QStringLiteral(" And CatPFlag = 'P' ");
    return QStringLiteral(" And CatAFlag = '' And CatCFlag = '' And CatPFlag = '' ");
}

bool clsTreeSummary::folderHoldsCodes(const clsTreeItem &folder, bool &holds)
{
    QString sql = QStringLiteral("select min(id) As RecCount from AccountCodes where Ledger = ") +
                  sqlText(folder.LedgerID) + QStringLiteral(" and FundID = ") + sqlText(folder.FundID) +
                  QStringLiteral(" And ParentID = ") + sqlText(number(folder.ID));
    if (!compareCode_.trimmed().isEmpty())
        sql += QStringLiteral(" AND AccountCode like ") + sqlText(compareCode_.trimmed() + u'%');
    sql += categoryCondition() + QStringLiteral(" AND HistoricalCode <> 'H'");
    Recordset rows;
    if (!query(sql, QStringLiteral("GetFoldersAcctCodeCount"), rows))
        return false;
    // The smallest id only tells whether there is any such code.
    holds = !rows.atEnd() && !rows.isNull(QStringLiteral("RecCount"));
    rows.Close();
    return true;
}

bool clsTreeSummary::countFolder(const clsTreeItem &folder, int depth, std::vector<size_t> &path)
{
    items_.push_back(folder);
    items_.back().RecCount = 0;
    path.push_back(items_.size() - 1);

    const QString sub = QStringLiteral("GetFoldersAcctCodeCount");
    clsTreeItem selector = folder;
    selector.ParentID = folder.ID;
    std::vector<qint64> childIdList;
    if (!childIds(selector, sub, childIdList))
        return false;
    for (qint64 childId : childIdList) {
        clsTreeItem child;
        if (!readNode(childId, sub, child) || !countFolder(child, depth + 1, path))
            return false;
    }

    bool holds = false;
    if (!folderHoldsCodes(folder, holds))
        return false;
    if (holds)
        for (size_t index : path)
            ++items_[index].RecCount;
    path.pop_back();
    return true;
}

bool clsTreeSummary::GetFoldersAcctCodeCount(const clsTreeItem &folder, int depth)
{
    std::vector<size_t> path;
    return countFolder(folder, depth, path);
}
