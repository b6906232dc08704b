#include "menusecurity.h"

#include "classtoolbar.h"
#include "securityrecords.h"

#include <QAction>
#include <QHash>
#include <QWidget>

namespace {

// Menu item (by privilegeKeyIdentity) → privilege key. Most items are their
// own key; the charts' entries go with their submenu. Items not listed (the
// menus themselves, printing, exit, the window list, help, and the items
// without an action) need no privilege. docs/privileges.md carries the same table.
const QHash<QString, QString> &menuKeys()
{
    static const QHash<QString, QString> keys = [] {
        QHash<QString, QString> map;
        for (const char *item :
             {"mnuFileProposedBudget", "mnuBudgetAccountCodes", "mnuReportBudgetStatus", "mnuReportHistorical",
              "mnuReportsExpenditureVsBudget", "mnuReportRevenueStatus", "mnuReportRevenueVsBudget", "mnuReportTax",
              "mnuReportsGenerator", "mnuReportsPublicBudget", "mnuReportCharts", "mnuMaintOrganization",
              "mnuMaintProposal", "mnuMaintAccountCodes", "mnuMaintFundBalances", "mnuMaintEqualDistricts",
              "mnuInitializeBudget", "mnuChooseProposal", "mnuUtilitiesAuditTrail"})
            map.insert(privilegeKeyIdentity(QLatin1String(item)), QLatin1String(item));
        map.insert(privilegeKeyIdentity(QStringLiteral("mnuChartsRevenue")), QStringLiteral("mnuReportCharts"));
        map.insert(privilegeKeyIdentity(QStringLiteral("mnuChartsExpenditure")), QStringLiteral("mnuReportCharts"));
        return map;
    }();
    return keys;
}

} // namespace

int BudgetPrivileges::Load(const QString &ddfPath, const QString &fundFolder, const QString &userId)
{
    Reset();
    QSet<QString> held;
    const int status = userPrivilegeKeys(ddfPath, fundFolder, userId, QLatin1String(budgetApplicationId), held);
    if (status != 0)
        return status;
    for (const QString &key : std::as_const(held))
        held_.insert(privilegeKeyIdentity(key));
    return 0;
}

void BudgetPrivileges::Reset()
{
    held_.clear();
}

bool BudgetPrivileges::Allows(const QString &key) const
{
    return key.isEmpty() || held_.contains(privilegeKeyIdentity(key));
}

BudgetPrivileges &userPrivileges()
{
    static BudgetPrivileges privileges;
    return privileges;
}

QString menuPrivilegeKey(const QString &menuItem)
{
    return menuKeys().value(privilegeKeyIdentity(menuItem));
}

void LockMenus(QWidget &window, const QString &scope)
{
    for (QAction *action : window.findChildren<QAction *>()) {
        const QString name = action->objectName();
        const QString key = menuPrivilegeKey(name);
        if (!key.isEmpty() && name.startsWith(scope, Qt::CaseInsensitive))
            action->setEnabled(userPrivileges().Allows(key));
    }
}

void LockToolbar(classToolbar &toolbar)
{
    for (int i = 1; i <= toolbar.Count(); ++i) {
        classToolbarButton &button = toolbar.Item(i);
        if (!button.PrivKey().isEmpty())
            button.setEnabled(userPrivileges().Allows(button.PrivKey()));
    }
}

void LockControl(QWidget &control, const QString &key)
{
    control.setEnabled(userPrivileges().Allows(key));
}
