#pragma once

#include "treesummary.h"

#include <QString>

#include <vector>

// Questions about one fund's, ledger's and view's folders, answered from the
// database rather than from what a window shows, so that what another
// workstation changed meanwhile counts.
class FolderQueries {
public:
    FolderQueries(clsTreeSummary &store, QString nodeType, QString fund, QString ledger);

    // The folders under `parentId` (0: the top level), in sort order.
    bool children(qint64 parentId, std::vector<clsTreeItem> &folders);
    // The folder itself; false (with the store's error) when it is gone.
    bool read(qint64 id, clsTreeItem &folder);
    // Levels of the folder's subtree, the folder included (1 without subfolders).
    bool subtreeLevels(qint64 id, int &levels);
    // The folder's ancestors, nearest first; false when one is missing or
    // the chain loops. depth = ancestors + 1; the root (id 0) has none.
    bool ancestors(qint64 id, std::vector<qint64> &chain);

private:
    clsTreeItem selector(qint64 parentId) const;

    clsTreeSummary &store_;
    QString nodeType_;
    QString fund_;
    QString ledger_;
};
