#pragma once

#include "accountsummary.h"
#include "treesummary.h"

#include <QString>

#include <vector>

// The window's caption, and the caption of its messages that name no other.
inline QString explorerTitle()
{
    return QStringLiteral("Account Code Maintenance");
}

// The three ways the explorer arranges a fund's codes: under account-code
// folders ("T"), buildings ("B") or programs ("P").
struct ExplorerView {
    QString nodeType; // "T", "B" or "P"
    QString caption;  // as the view drop-down shows it
    int maximumDepth; // folder levels allowed below the tree's root
};

const std::vector<ExplorerView> &explorerViews();
// The view of a node type; an unknown type falls back to "T".
const ExplorerView &explorerView(const QString &nodeType);

// The folder a code hangs under in the view: ParentID, BuildingID or ProgramID.
qint64 hangingFolder(const clsAccountCode &code, const QString &nodeType);
void setHangingFolder(clsAccountCode &code, const QString &nodeType, qint64 folderId);

// What the user types into the folder and account code dialogs is held to
// the lengths the listings print.
inline constexpr int folderNameLimit = 40;
inline constexpr int accountCodeLimit = 30;
inline constexpr int accountNameLimit = 60;
inline constexpr int stateCodeLimit = 30;

// Empty when the name is acceptable, else the message that says why.
QString folderNameProblem(const QString &name);
// Empty when the description and state code fit, else the message.
QString accountFieldsProblem(const QString &code, const QString &description, const QString &stateCode);

// Whether a folder whose subtree is `subtreeLevels` deep (1 for a folder
// without subfolders) may hang under a folder at `targetDepth` (0 for the
// tree's root, 1 for a top-level folder).
bool folderFits(int targetDepth, int subtreeLevels, int maximumDepth);
QString maximumLevelsMessage(int maximumDepth);

// How an account code appears in the tree.
QString codeCaption(const clsAccountCode &code);

// Codes ordered by their characters from `position` (1-based) on, ties by the
// whole code, for picking codes that share a pattern further in.
void sortFromPosition(std::vector<clsAccountCode> &codes, int position);
// The start position the user typed: its leading number, 1 when there is none.
int startPosition(const QString &answer);
