#include "fundinstallation.h"

namespace demo {

namespace {

QString nodeText(int id)
{
    return id == 0 ? QString() : QString::number(id);
}

} // namespace

SampleDistrict sampleDistrictOf(const District &district)
{
    const Organisation &org = district.organisation;
    SampleDistrict sample;
    sample.name = org.name;
    sample.reportName = org.reportName;
    sample.address1 = org.address1;
    sample.address2 = org.address2;
    sample.city = org.city;
    sample.state = org.state;
    sample.zipCode = org.zipCode;
    sample.areaCode = org.areaCode;
    sample.telephone = org.telephone;
    sample.fax = org.fax;
    sample.sedCode = org.sedCode;
    sample.firstFiscalMonth = org.firstFiscalMonth;
    // The proposed year is not opened in the fund-accounting system yet.
    for (const FiscalYear &year : district.years)
        if (year.status != u'P')
            sample.years.push_back(year.year);
    for (const Fund &f : district.funds)
        sample.funds.push_back(
            {f.id, f.name, f.checking.id, f.checking.name, f.checking.bankAccount, f.glMask, f.rlMask, f.elMask});
    for (const GeneralLedgerAccount &g : district.generalLedger)
        sample.accounts.push_back({.code = g.code, .fundId = g.fundId, .ledger = u'G', .name = g.name});
    // A retired code is gone from the ledgers; that is how year-end finds it retired.
    // The latest year's transactions add up to the accounts' figures to date,
    // so the summaries show what the budget's history promises.
    const FiscalYear &current = district.currentYear();
    sample.monthsPosted = current.monthsPosted;
    for (const Account &a : district.accounts) {
        if (a.historical)
            continue;
        sample.accounts.push_back({a.code, a.fundId, a.ledger, a.name, a.stateCode, nodeText(a.parentId),
                                   nodeText(a.buildingId), nodeText(a.programId), a.currentBudget});
        for (const YearFigures &y : a.history)
            if (y.year == current.year)
                sample.accounts.back().actuals = SampleActuals{y.adjustments, y.actual, y.encumbered};
    }
    for (const Folder &f : district.folders)
        if (f.nodeType == u'B')
            sample.buildings.emplace_back(QString::number(f.id), f.name);
    return sample;
}

} // namespace demo
