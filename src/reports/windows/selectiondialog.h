#pragma once

#include "formreportselection.h"
#include "reportselection.h"

// The report procedures' view of "Select A Report".
class SelectionDialog final : public ReportSelection {
public:
    explicit SelectionDialog(QWidget *parent = nullptr) : form_(parent) {}

    void setOptionFundSelection(std::vector<FundEntry> funds) override { form_.setOptionFundSelection(std::move(funds)); }
    void setOptionTypeSelection(QStringList types) override { form_.setOptionTypeSelection(std::move(types)); }
    void setOptionOptionSelection(QStringList options) override { form_.setOptionOptionSelection(std::move(options)); }
    void setFrames(bool preview, int copies, int records, int orientation) override;
    void setCaption(const QString &caption) override { form_.setCaption(caption); }
    void AddReport(const ReportRow &row) override;

    void ShowDialog() override { form_.ShowDialog(); }
    int CloseAction() const override { return form_.CloseAction(); }

    QString SelectedReport() const override { return form_.SelectedReport(); }
    QString SelectedFundID() const override { return form_.SelectedFundID(); }
    QString SelectedType() const override { return form_.SelectedType(); }
    QString SelectedOption() const override { return form_.SelectedOption(); }
    int Records() const override { return form_.Records(); }
    QString CompareCode() const override { return form_.CompareCode(); }
    bool ShowPercent() const override { return form_.ShowPercent(); }
    bool Preview() const override { return form_.Preview(); }
    int Copies() const override { return form_.Copies(); }
    int Orientation() const override { return form_.Orientation(); }

private:
    formReportSelection form_;
};
