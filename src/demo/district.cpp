#include "district.h"

#include "builders.h"
#include "chart.h"

#include <algorithm>
#include <stdexcept>

namespace demo {

namespace {

Organisation northfield()
{
    Organisation org;
    org.name = QStringLiteral("Northfield Central School District");
    org.reportName = org.name;
    org.address1 = QStringLiteral("120 Academy Street");
    org.address2 = QStringLiteral("P.O. Box 400");
    org.city = QStringLiteral("Northfield");
    org.state = QStringLiteral("NY");
    org.zipCode = QStringLiteral("13999-0400");
    org.areaCode = QStringLiteral("315");
    org.telephone = QStringLiteral("315-555-0142");
    org.fax = QStringLiteral("315-555-0143");
    org.sedCode = QStringLiteral("419901040000");
    return org;
}

void addFunds(District &district)
{
    for (const auto &spec : chart::funds()) {
        const QString id = spec.id;
        Fund fund;
        fund.id = id;
        fund.name = spec.name;
        fund.glMask = id + QLatin1String("###");
        fund.rlMask = id + QLatin1String("####*");
        fund.elMask = id + QLatin1String("####.###*");
        fund.checking = {spec.checkingId, spec.checkingName, spec.bankAccount, id + QLatin1String("200")};
        district.funds.push_back(fund);
        for (const auto &[number, name] :
             {std::pair{"200", "Cash"}, std::pair{"380", "Accounts Receivable"}, std::pair{"600", "Accounts Payable"},
              std::pair{"917", "Unassigned Fund Balance"}})
            district.generalLedger.push_back({id + QLatin1String(number), id, QLatin1String(name)});
    }
}

// Two closed years, the current year posted through April, and next year.
void addYears(District &district)
{
    auto year = [](int number, QChar status, int monthsPosted) {
        const QString text = QString::number(number);
        const QString name =
            status == u'P' ? QLatin1String("Proposed Year ") + text : QLatin1String(" Fiscal Year ") + text;
        return FiscalYear{number, status, name, QLatin1String("FY") + text, monthsPosted};
    };
    district.years = {year(2023, u'H', 12), year(2024, u'H', 12), year(2025, u'C', 10), year(2026, u'P', 0)};
}

void addReportFormats(District &district)
{
    district.reportFormats = {
        {"General Fund Budget vs Proposed",
         "Current budget and spending beside the proposed budget",
         u'E',
         "A",
         "20250312",
         {"CurBudget", "AdjustedBudget", "CurExpense", "ProposedBudget", "Increment"}},
        {"Three Year Expenditure History",
         "The two prior years' budgets and expenses with this year's budget",
         u'E',
         "A",
         "20250115",
         {"Prior2Budget", "Prior2Expense", "PriorBudget", "PriorExpense", "CurBudget"}},
        {"Revenue Projection",
         "Revenue budget, received to date, projected and proposed",
         u'R',
         "A",
         "20250220",
         {"CurBudget", "CurExpense", "ProjectedAmount", "ProposedBudget", "IncPercent"}},
        {"School Lunch Summary",
         "School lunch fund spending and next year's plan",
         u'E',
         "C",
         "20250305",
         {"CurBudget", "CurExpense", "ProposedBudget"}},
    };
}

template <typename Item, typename Match>
const Item &findOne(const std::vector<Item> &items, Match match, const char *what)
{
    const auto found = std::find_if(items.begin(), items.end(), match);
    if (found == items.end())
        throw std::logic_error(what);
    return *found;
}

} // namespace

const FiscalYear &District::currentYear() const
{
    return findOne(
        years, [](const FiscalYear &y) { return y.status == u'C'; }, "the district has no current year");
}

const FiscalYear &District::proposedYear() const
{
    return findOne(
        years, [](const FiscalYear &y) { return y.status == u'P'; }, "the district has no proposed year");
}

const Proposal &District::activeProposal() const
{
    return findOne(
        proposals, [](const Proposal &p) { return p.active; }, "the district has no active proposal");
}

const Fund *District::fund(const QString &id) const
{
    const auto found = std::find_if(funds.begin(), funds.end(), [&](const Fund &f) { return f.id == id; });
    return found == funds.end() ? nullptr : &*found;
}

const Folder *District::folder(int id) const
{
    // Ids are handed out 1, 2, 3 ... in order.
    if (id < 1 || id > int(folders.size()))
        return nullptr;
    return &folders[id - 1];
}

int District::accountIndex(const QString &code) const
{
    const auto found = std::lower_bound(accounts.begin(), accounts.end(), code,
                                        [](const Account &a, const QString &c) { return a.code < c; });
    return found != accounts.end() && found->code == code ? int(found - accounts.begin()) : -1;
}

District makeDistrict(const DistrictOptions &options)
{
    District district;
    district.organisation = northfield();
    addFunds(district);
    addYears(district);
    detail::addChart(district, options);
    detail::addBudgetFigures(district, options.seed);
    addReportFormats(district);
    return district;
}

} // namespace demo
