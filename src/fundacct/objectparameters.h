#pragma once

#include "recordobject.h"

struct FundParameterFields {
    QString RecordType = QStringLiteral("PARMS");
    int FirstFiscalMonth = 0;
    int LastFiscalMonth = 0;
    QString FormType;
    QString VendorNotes; // lines separated by CR LF
    QString WarrantSort;
    QString CDSigLine;
    QString CombineVoucherDef;
    int NextCRNumber = 0;
    int NextPONumber = 0;
    QString ElecAuth;
    QString ElecAuthPswd;
    QString ElecAuthSort;
    QString CDSchedSect1;
    QString CDSchedSect2;
    QString CDSchedSect3;
    QString Spare;
    QString CDSettings;
    QString CRSettings;
    QString ENSettings;
    QString JESettings;
    QString BTSettings;
    QString ETSettings;
    QString RTSettings;
};

// The fund parameters file: one record of type "PARMS", read by stepping.
class classObjectParameters : public RecordObject<FundParameterFields> {
public:
    classObjectParameters();

    // The properties of a new installation's record: fiscal year July to
    // June, numbering from 1, the standard purchase-order vendor notes.
    void InitFundParams();
    // Writes a new record from InitFundParams' values.
    int Create();
    // A new fiscal year numbers purchase orders and cash receipts from 1 again.
    int UpdateNewYear();
    int UpdateTypedPOParams();
    int UpdateElecAuthParams();
    int UpdateCDMaintParams();
    int UpdateCRMaintParams();

protected:
    int positionForRead() override;
    int positionForWrite() override;
};

// The five vendor-note lines every new purchase order carries.
QString standardVendorNotes();
