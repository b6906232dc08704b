#pragma once

#include <QSet>
#include <QString>

class QAction;
class QWidget;
class classToolbar;

// What the logged-in user may do in the application "BUDGET", denied by
// default: a keyed item is allowed only when the user holds its key, so a key
// the installation does not define, a user without access, or privilege files
// that cannot be read leave it locked. An empty key needs no privilege.
class BudgetPrivileges {
public:
    // Reads the keys the user (record ID) holds from the fund folder. 0, or
    // the Kora-Fund status; after a failure the user holds nothing.
    int Load(const QString &ddfPath, const QString &fundFolder, const QString &userId);
    // Holds nothing: the state before a user is known.
    void Reset();
    bool Allows(const QString &key) const;

private:
    QSet<QString> held_; // by privilegeKeyIdentity
};

// The privileges start-up read for the user.
BudgetPrivileges &userPrivileges();

// The privilege key that unlocks a menu item, empty for items everyone may use.
QString menuPrivilegeKey(const QString &menuItem);

// Enables or disables, by userPrivileges(), every menu item of the window
// whose name begins with scope, in any case (an empty scope: all of them).
void LockMenus(QWidget &window, const QString &scope);
// Each button by its PrivKey.
void LockToolbar(classToolbar &toolbar);
// One control of a dialog or child window by the key that unlocks it.
void LockControl(QWidget &control, const QString &key);
