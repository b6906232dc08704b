#include "objectparameters.h"

#include <QStringList>

#include <array>

namespace {
using F = FundParameterFields;
const FundFileDef parametersFile{"FundParameters", "\\FundPara.btr"};

const std::array<FieldBinding<F>, 24> allBindings{{
    {"Record Type", &F::RecordType},
    {"First Fiscal Month", &F::FirstFiscalMonth},
    {"End Fiscal Month", &F::LastFiscalMonth},
    {"PO Form Type", &F::FormType},
    {"PO Vendor Notes", &F::VendorNotes},
    {"Warrant Sort", &F::WarrantSort},
    {"Cash Disb Signature", &F::CDSigLine},
    {"Combine Voucher Def", &F::CombineVoucherDef},
    {"Next CR Number", &F::NextCRNumber},
    {"Next PO Number", &F::NextPONumber},
    {"Elec Auth", &F::ElecAuth},
    {"Elec Auth Pswd", &F::ElecAuthPswd},
    {"Elec Auth PO Sort", &F::ElecAuthSort},
    {"CDSchedSect1", &F::CDSchedSect1},
    {"CDSchedSect2", &F::CDSchedSect2},
    {"CDSchedSect3", &F::CDSchedSect3},
    {"Spare", &F::Spare},
    {"CD Settings", &F::CDSettings},
    {"CR Settings", &F::CRSettings},
    {"EN Settings", &F::ENSettings},
    {"JE Settings", &F::JESettings},
    {"BT Settings", &F::BTSettings},
    {"ET Settings", &F::ETSettings},
    {"RT Settings", &F::RTSettings},
}};

const std::array<FieldBinding<F>, 3> typedPOBindings{{
    {"PO Form Type", &F::FormType},
    {"Next PO Number", &F::NextPONumber},
    {"PO Vendor Notes", &F::VendorNotes},
}};
const std::array<FieldBinding<F>, 3> elecAuthBindings{{
    {"Elec Auth", &F::ElecAuth},
    {"Elec Auth Pswd", &F::ElecAuthPswd},
    {"Elec Auth PO Sort", &F::ElecAuthSort},
}};
const std::array<FieldBinding<F>, 6> cdMaintBindings{{
    {"Warrant Sort", &F::WarrantSort},
    {"Cash Disb Signature", &F::CDSigLine},
    {"Combine Voucher Def", &F::CombineVoucherDef},
    {"CDSchedSect1", &F::CDSchedSect1},
    {"CDSchedSect2", &F::CDSchedSect2},
    {"CDSchedSect3", &F::CDSchedSect3},
}};
const std::array<FieldBinding<F>, 1> crMaintBindings{{{"Next CR Number", &F::NextCRNumber}}};
const std::array<FieldBinding<F>, 2> newYearBindings{{
    {"Next CR Number", &F::NextCRNumber},
    {"Next PO Number", &F::NextPONumber},
}};
} // namespace

QString standardVendorNotes()
{
    return QStringList{
        QStringLiteral("1.  Please ship prepaid.  Do not make collect shipments."),
        QStringLiteral("2.  Purchase order number must appear on all packages, delivery slips and invoices."),
        QStringLiteral("3.  Itemized packing slip must accompany each shipment."),
        QStringLiteral("4.  Charge and mail invoice to above address.  Attn: Business Office"),
        QStringLiteral("5.  It is required that Material Safety Data Sheets which may exist for any item listed be "
                       "sent with the order."),
    }
        .join(QStringLiteral("\r\n"));
}

classObjectParameters::classObjectParameters() : RecordObject(parametersFile, allBindings, 0)
{
}

void classObjectParameters::InitFundParams()
{
    Clear();
    FirstFiscalMonth = 7;
    LastFiscalMonth = 6;
    FormType = QStringLiteral("S");
    VendorNotes = standardVendorNotes();
    WarrantSort = QStringLiteral("V");
    CDSigLine = QStringLiteral("Y");
    CombineVoucherDef = QStringLiteral("N");
    NextCRNumber = 1;
    NextPONumber = 1;
    ElecAuth = QStringLiteral("N");
    ElecAuthSort = QStringLiteral("P");
}

int classObjectParameters::Create()
{
    InitFundParams();
    return Add();
}

int classObjectParameters::UpdateNewYear()
{
    NextCRNumber = 1;
    NextPONumber = 1;
    return updateFields(newYearBindings);
}

int classObjectParameters::UpdateTypedPOParams()
{
    return updateFields(typedPOBindings);
}
int classObjectParameters::UpdateElecAuthParams()
{
    return updateFields(elecAuthBindings);
}
int classObjectParameters::UpdateCDMaintParams()
{
    return updateFields(cdMaintBindings);
}
int classObjectParameters::UpdateCRMaintParams()
{
    return updateFields(crMaintBindings);
}

int classObjectParameters::positionForRead()
{
    return DataBound() ? control().StepFirst() : 3;
}
int classObjectParameters::positionForWrite()
{
    return positionForRead();
}
