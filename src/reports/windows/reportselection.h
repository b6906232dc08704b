#pragma once

#include "installationfunds.h"
#include "reportcatalog.h"

#include <QString>
#include <QStringList>

#include <vector>

// What the report procedures need of the selection dialog, in the order they
// use it: fill, show, read. The program's is formReportSelection; tests give
// one that answers from a script.
class ReportSelection {
public:
    virtual ~ReportSelection() = default;

    virtual void setOptionFundSelection(std::vector<FundEntry> funds) = 0;
    virtual void setOptionTypeSelection(QStringList types) = 0;
    virtual void setOptionOptionSelection(QStringList options) = 0;
    // The frames every row offers: Preview, Copies (with the starting number),
    // Records (1 all, 2 compare code) and Orientation (1 portrait, 2 landscape).
    virtual void setFrames(bool preview, int copies, int records, int orientation) = 0;
    virtual void setCaption(const QString &caption) = 0;
    virtual void AddReport(const ReportRow &row) = 0;

    virtual void ShowDialog() = 0;
    // 1 when the user confirmed a report; anything else when the dialog was closed.
    virtual int CloseAction() const = 0;

    virtual QString SelectedReport() const = 0;
    virtual QString SelectedFundID() const = 0;
    virtual QString SelectedType() const = 0;
    virtual QString SelectedOption() const = 0;
    virtual int Records() const = 0;
    virtual QString CompareCode() const = 0;
    virtual bool ShowPercent() const = 0;
    virtual bool Preview() const = 0;
    virtual int Copies() const = 0;
    virtual int Orientation() const = 0;
};
