#include "objectyear.h"

#include <array>

namespace {
const FundFileDef yearsFile{"Years", "\\Years.btr"};
const FundFileDef yearListFile{"YearList", "\\YearList.btr"};

const std::array<FieldBinding<YearFields>, 5> yearBindings{{
    {"YearNumber", &YearFields::YearNumber},
    {"Name", &YearFields::YearName},
    {"Changeable", &YearFields::YearStatus},
    {"Fiscal Year Start", &YearFields::FiscalYearStart, true},
    {"Fiscal Year End", &YearFields::FiscalYearEnd, true},
}};

const std::array<FieldBinding<YearListFields>, 3> yearListBindings{{
    {"YearNumber", &YearListFields::YearNumber},
    {"TableId", &YearListFields::TableId},
    {"Name", &YearListFields::Name},
}};
} // namespace

YearListRecord::YearListRecord() : RecordObject(yearListFile, yearListBindings, 0)
{
}

classObjectYear::classObjectYear() : RecordObject(yearsFile, yearBindings, 0)
{
}

int classObjectYear::openCompanions(const QString &ddfPath, const QString &dataFolder)
{
    return yearList_.Init(ddfPath, dataFolder);
}

int classObjectYear::AddYearList(const YearListFields &entry)
{
    static_cast<YearListFields &>(yearList_) = entry;
    return yearList_.Add();
}

int classObjectYear::DeleteYearList(const QString &yearNumber)
{
    yearList_.Clear();
    yearList_.YearNumber = yearNumber;
    return yearList_.Delete();
}

int classObjectYear::GetYearList(std::vector<YearListFields> &list)
{
    return yearList_.GetList(list);
}

int classObjectYear::RetrieveYearList(const QString &yearNumber, YearListFields &entry)
{
    yearList_.Clear();
    yearList_.YearNumber = yearNumber;
    const int status = yearList_.Retrieve();
    if (status == 0)
        entry = yearList_;
    return status;
}

int classObjectYear::RetrieveLatestYear()
{
    if (!DataBound())
        return finish(3);
    control().setIndexNumber(0);
    const int status = control().GetLast();
    if (status == 0)
        loadCurrent(*this);
    return finish(status);
}
