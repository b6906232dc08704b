#include "objectsysparams.h"

#include "dates.h"

#include <array>

namespace {
using F = SysParamFields;
const FundFileDef sysParamsFile{"SysParameters", "\\Params.btr"};

const std::array<FieldBinding<F>, 17> bindings{{
    {"Name", &F::Name},
    {"Report Name", &F::ReportName, true},
    {"Address 1", &F::Address1},
    {"Address 2", &F::Address2},
    {"City", &F::City},
    {"State", &F::State},
    {"Zip Code", &F::ZipCode},
    {"Area Code", &F::AreaCode},
    {"Telephone", &F::Telephone},
    {"Fax Number", &F::Fax},
    {"Tax Exempt", &F::TaxExempt},
    {"SED Code", &F::SEDCode},
    {"DateAdd", &F::DateAdd},
    {"DateChg", &F::DateChg},
    {"EmpPayEnc", &F::EmpPayEnc},
    {"First Fiscal Month", &F::FirstFiscalMonth},
    {"End Fiscal Month", &F::LastFiscalMonth},
}};

QString today()
{
    return FormatYYYYMMDD(QDate::currentDate());
}
} // namespace

classObjectSysParams::classObjectSysParams() : RecordObject(sysParamsFile, bindings, 0)
{
}

int classObjectSysParams::Create()
{
    DateAdd = today();
    DateChg = DateAdd;
    return Add();
}

int classObjectSysParams::Update()
{
    DateChg = today();
    return RecordObject::Update();
}

int classObjectSysParams::DeleteAllRecords()
{
    if (!DataBound())
        return finish(3);
    int status = control().StepFirst();
    while (status == 0) {
        status = control().Delete();
        if (status == 0)
            status = control().StepFirst();
    }
    return finish(status == 9 ? 0 : status);
}

int classObjectSysParams::positionForRead()
{
    return DataBound() ? control().StepFirst() : 3;
}
int classObjectSysParams::positionForWrite()
{
    return DataBound() ? control().GetFirst() : 3;
}
