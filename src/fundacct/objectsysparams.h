#pragma once

#include "recordobject.h"

struct SysParamFields {
    QString Name;
    QString ReportName;
    QString Address1;
    QString Address2;
    QString City;
    QString State;
    QString ZipCode;
    QString AreaCode;
    QString Telephone;
    QString Fax;
    QString TaxExempt;
    QString SEDCode;
    QString DateAdd; // yyyymmdd
    QString DateChg;
    QString EmpPayEnc;
    int FirstFiscalMonth = 0;
    int LastFiscalMonth = 0;
};

// The organisation record: the one record of the system parameters file.
class classObjectSysParams : public RecordObject<SysParamFields> {
public:
    classObjectSysParams();

    void SetDataControl(std::shared_ptr<DataAccessControl> control) { setDataControl(std::move(control)); }
    // Writes the properties as the organisation record, stamped with today's date.
    int Create();
    // Writes the properties back, stamped with today's change date.
    int Update();
    // Steps from the first record and deletes each.
    int DeleteAllRecords();

protected:
    int positionForRead() override;
    int positionForWrite() override;
};
