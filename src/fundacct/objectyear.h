#pragma once

#include "recordobject.h"

struct YearFields {
    QString YearNumber;
    QString YearName;
    QString YearStatus;      // "Changeable": "Y" open, "N" closed
    QString FiscalYearStart; // yyyymmdd
    QString FiscalYearEnd;
};

struct YearListFields {
    QString YearNumber;
    QString TableId;
    QString Name;
};

// The year list file, a second file of the year object.
class YearListRecord : public RecordObject<YearListFields> {
public:
    YearListRecord();
};

// The fiscal years file, with the year list beside it.
class classObjectYear : public RecordObject<YearFields> {
public:
    classObjectYear();

    std::shared_ptr<DataAccessControl> YearListDataControl() const { return yearList_.DataControl(); }

    int AddYearList(const YearListFields &entry);
    int DeleteYearList(const QString &yearNumber);
    int GetYearList(std::vector<YearListFields> &list);
    int RetrieveYearList(const QString &yearNumber, YearListFields &entry);
    // The last year by key into the properties.
    int RetrieveLatestYear();

protected:
    int openCompanions(const QString &ddfPath, const QString &dataFolder) override;

private:
    YearListRecord yearList_;
};
