#pragma once

#include <QSet>
#include <QString>

class QAction;
class QWidget;
class classToolbar;

// What the logged-in user may do in the application "BUDGET". A privilege
// key the installation defines is allowed only when the user holds it; a key
// it does not define is left to everyone, so a new menu item is not locked
// before the fund-accounting side knows of it.
class BudgetPrivileges {
public:
    // Reads the defined keys and the user's (record ID) keys from the fund
    // folder. 0, or the Kora-Fund status; after a failure nothing keyed is allowed.
    int Load(const QString &ddfPath, const QString &fundFolder, const QString &userId);
    // Every key allowed: the state before a user is known.
    void Reset();
    bool Allows(const QString &key) const;

private:
    QSet<QString> defined_; // lower-case
    QSet<QString> held_;
    bool denyAll_ = false;
};

// The privileges start-up read for the user.
BudgetPrivileges &userPrivileges();

// The privilege key that unlocks a menu item, empty for items everyone may use.
QString menuPrivilegeKey(const QString &menuItem);

// Enables or disables, by userPrivileges(), every menu item of the window
// whose name begins with scope (an empty scope: all of them).
void LockMenus(QWidget &window, const QString &scope);
// Each button by its PrivKey.
void LockToolbar(classToolbar &toolbar);
// One control of a dialog or child window by the key that unlocks it.
void LockControl(QWidget &control, const QString &key);
