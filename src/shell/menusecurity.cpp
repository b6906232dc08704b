#include "menusecurity.h"

#include "classtoolbar.h"
#include "securityrecords.h"

#include <QAction>
#include <QHash>
#include <QWidget>

#include <vector>

namespace {

// Menu item → privilege key. Most items are their own key; the charts'
// entries go with their submenu. Items not listed (the menus themselves,
// printing, exit, the window list, help, and the items without an action)
// need no privilege. docs/privileges.md carries the same table.
const QHash<QString, QString> &menuKeys()
{
    static const QHash<QString, QString> keys = [] {
        QHash<QString, QString> map;
        for (const char *item :
             {"mnuFileProposedBudget", "mnuBudgetAccountCodes", "mnuReportBudgetStatus", "mnuReportHistorical",
              "mnuReportsExpenditureVsBudget", "mnuReportRevenueStatus", "mnuReportRevenueVsBudget", "mnuReportTax",
              "mnuReportsGenerator", "mnuReportsPublicBudget", "mnuReportCharts", "mnuMaintOrganization",
              "mnuMaintProposal", "mnuMaintAccountCodes", "mnuMaintFundBalances", "mnuMaintEqualDistricts",
              "mnuInitializeBudget", "mnuChooseProposal"})
            map.insert(QLatin1String(item), QLatin1String(item));
        map.insert(QStringLiteral("mnuChartsRevenue"), QStringLiteral("mnuReportCharts"));
        map.insert(QStringLiteral("mnuChartsExpenditure"), QStringLiteral("mnuReportCharts"));
        return map;
    }();
    return keys;
}

} // namespace

int BudgetPrivileges::Load(const QString &ddfPath, const QString &fundFolder, const QString &userId)
{
    Reset();
    classObjectAppPrivDef definitions;
    std::vector<AppPrivDefFields> defined;
    int status = definitions.Init(ddfPath, fundFolder);
    if (status == 0)
        status = definitions.GetListForApplication(QLatin1String(budgetApplicationId), defined);
    QSet<QString> held;
    if (status == 0)
        status = userPrivilegeKeys(ddfPath, fundFolder, userId, QLatin1String(budgetApplicationId), held);
    if (status != 0) {
        denyAll_ = true;
        return status;
    }
    for (const AppPrivDefFields &definition : defined)
        defined_.insert(definition.PrivilegeKey.toLower());
    for (const QString &key : held)
        held_.insert(key.toLower());
    return 0;
}

void BudgetPrivileges::Reset()
{
    defined_.clear();
    held_.clear();
    denyAll_ = false;
}

bool BudgetPrivileges::Allows(const QString &key) const
{
    if (key.isEmpty())
        return true;
    if (denyAll_)
        return false;
    const QString lower = key.toLower();
    return !defined_.contains(lower) || held_.contains(lower);
}

BudgetPrivileges &userPrivileges()
{
    static BudgetPrivileges privileges;
    return privileges;
}

QString menuPrivilegeKey(const QString &menuItem)
{
    return menuKeys().value(menuItem);
}

void LockMenus(QWidget &window, const QString &scope)
{
    for (QAction *action : window.findChildren<QAction *>()) {
        const QString name = action->objectName();
        const QString key = menuPrivilegeKey(name);
        if (!key.isEmpty() && name.startsWith(scope))
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
