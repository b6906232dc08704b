#pragma once

#include "accountsummary.h"
#include "codechooser.h"
#include "explorerdialogs.h"
#include "installationfunds.h"
#include "mdichildworker.h"
#include "treesummary.h"

#include <QHash>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class classDialog;
class QMdiArea;

// What the account code window needs from outside: the budget database, the
// funds of the fund-accounting files, the selection list of Folder
// Adjustment, and how a dialog is run (modally, unless a test answers it).
struct AccountCodesContext {
    std::shared_ptr<DbConnection> connection;
    FundListReader listFunds;
    CodeChooser chooseCodes;
    // Opens the grid in which a fund's and ledger's accounts are edited
    // together (state and historical codes, components); returns when it closes.
    std::function<void(const QString &fund, const QString &ledger)> editAccountsInGrid;
    // Prints the account code listing of a fund, ledger and view (node type).
    std::function<void(const QString &fund, const QString &ledger, const QString &node)> printListing;
    std::function<int(classDialog &)> runDialog;
};

// The "Account Code Maintenance" child window: one fund's, ledger's and
// view's folders in the explorer, the selected folder's content in the grid,
// and every command that builds and rearranges them.
class workerAccountCodes : public MdiChildWorker {
    Q_OBJECT
public:
    explicit workerAccountCodes(AccountCodesContext context, QObject *parent = nullptr);
    ~workerAccountCodes() override;

    void DoMDIChild(QMdiArea &area) override;

    const QString &fund() const { return fund_; }
    const QString &ledger() const { return ledger_; }
    const QString &view() const { return view_; }

    // Tree keys: the root, a folder by ID, an account code by ID.
    static QString rootKey() { return QStringLiteral("R"); }
    static QString folderKey(qint64 id) { return QStringLiteral("F") + QString::number(id); }
    static QString codeKey(qint64 id) { return QStringLiteral("A") + QString::number(id); }

    // The commands that apply to a node, in the order the context menu lists
    // them; an empty key stands for a separator.
    static std::vector<std::pair<QString, QString>> nodeCommands(const QString &nodeKey);

private:
    void doCommand(const QString &command) override;

    enum class NodeKind { None, Root, Folder, Code };
    static NodeKind kindOf(const QString &key);
    static qint64 idOf(const QString &key);

    void buildWindow();
    void loadFunds();
    void readChoices();
    void loadTree(const QString &reselect = {});
    // Adds the folders under parentId and, below each, its own folders and codes;
    // the top level reports its progress.
    void addFolders(const QString &parentKey, qint64 parentId, bool top);
    void addCodes(const QString &parentKey, qint64 folderId);
    bool knownNode(const QString &key) const;
    // 0 for the root, 1 for a top-level folder.
    int folderDepth(const QString &key) const;
    void showContent();
    bool commandEnabled(const QString &key) const;
    void enableCommands();
    void showMessage(const QString &text, const QString &title = {});
    void editAccountsInGrid();
    void printListing();
    int runDialog(DialogWorker &worker);
    // Another workstation changed what the command worked on: say so and show the tree as it is now.
    void staleNode(const QString &what, const QString &title);

    void createFolder();
    void editFolder();
    void deleteFolder();
    void moveFolder(bool up);
    void adjustFolder();
    void createAccount();
    void editAccount();
    void deleteAccount();
    void startRename();
    void finishRename(const QString &key, const QString &text);
    void nodeDropped();
    bool dropCode(qint64 codeId, qint64 targetId);
    bool dropFolder(qint64 folderId, qint64 targetId);
    bool targetExists(qint64 folderId, const QString &title);
    // Trims and upper-cases code, then checks it is valid and not yet used in
    // this fund and ledger; the reason is shown when it is not.
    bool codeIsFree(QString &code);
    void contextMenu();
    // A double click on a grid row shows its folder or code, read only.
    void viewRow();
    void find();

    AccountCodesContext context_;
    ClsAccountSummary accounts_;
    clsTreeSummary tree_;
    std::vector<FundEntry> funds_;
    QString fund_;
    QString ledger_ = QStringLiteral("E");
    QString view_ = QStringLiteral("T");
    QHash<qint64, clsTreeItem> folders_;
    QHash<qint64, std::vector<clsAccountCode>> codesByFolder_;
    QHash<qint64, clsAccountCode> codes_;
    QStringList gridKeys_; // the tree key of each grid row
    QString renaming_;     // the folder being renamed in place
    QString lastFind_;
};
