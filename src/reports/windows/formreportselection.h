#pragma once

#include "classdialog.h"
#include "dialogworker.h"
#include "installationfunds.h"

#include <QString>
#include <QStringList>

#include <array>
#include <vector>

class classGrid;

// "Select A Report": the one dialog through which every standard report asks
// what to print. The report procedure fills it (choice lists, frames, one
// grid row per report), shows it, and reads the user's choices back; the
// dialog never opens a report itself.
//
// The frames ("Preview", "Copies", "Records", "Orientation") are offered in
// two ways that add up: the caller's setters offer a frame for every row, and
// a row's flag offers it while that row is selected. A flag of 2 offers the
// frame, any other value (1 by convention) leaves it to the setter. A frame
// that is not offered is disabled and its getter gives the default: Print,
// one copy, all records, portrait.
class formReportSelection final : public DialogWorker {
public:
    explicit formReportSelection(QWidget *parent = nullptr);
    ~formReportSelection() override;

    // The flag a row gives AddReport to offer a frame, and the one to leave it to the setter.
    static constexpr int FrameOffered = 2;
    static constexpr int FrameNotOffered = 1;

    // "" when no report row is selected.
    QString SelectedReport() const;
    // True for "Print Preview". Setting offers the frame (or withdraws it, and
    // "Print" is chosen); an offered frame starts on "Print Preview" when the
    // user's print-preview setting is 1, else on "Print".
    bool Preview() const;
    void setPreview(bool offered);
    // The number of copies; setting a number above 0 offers the frame with it, 0 withdraws it.
    int Copies() const;
    void setCopies(int copies);
    // 1 "All Records", 2 "Compare Code"; setting 1 or 2 offers the frame with
    // that choice, 0 withdraws it.
    int Records() const;
    void setRecords(int records);
    // 1 "Portrait", 2 "Landscape"; setting as for Records.
    int Orientation() const;
    void setOrientation(int orientation);
    // The text of the compare code box, and "Show Percent Inc/Dec".
    QString CompareCode() const;
    bool ShowPercent() const;

    // The choice collections; AddReport builds each row's lists from them.
    const std::vector<FundEntry> &OptionFundSelection() const { return funds_; }
    void setOptionFundSelection(std::vector<FundEntry> funds) { funds_ = std::move(funds); }
    const QStringList &OptionTypeSelection() const { return types_; }
    void setOptionTypeSelection(QStringList types) { types_ = std::move(types); }
    const QStringList &OptionSpecialSelection() const { return special_; }
    void setOptionSpecialSelection(QStringList special) { special_ = std::move(special); }
    const QStringList &OptionOptionSelection() const { return options_; }
    void setOptionOptionSelection(QStringList options) { options_ = std::move(options); }
    // The "Totals" and "Page Break" columns are offered ("Yes" or "No").
    void setOptionTotalsSelection(bool offered) { totals_ = offered; }
    void setOptionPageBreakSelection(bool offered) { pageBreak_ = offered; }
    void setShowKeyColumn(bool shown);

    // Rows are filed under the category set when they are added;
    // SetReportCategory shows only the rows of the current one ("" shows all).
    const QString &ReportCategory() const { return category_; }
    void setReportCategory(const QString &category) { category_ = category; }
    void SetReportCategory();
    // The row of that key is no longer offered.
    void DisableReport(const QString &reportKey);

    void setCaption(const QString &caption);
    void AddReport(const QString &reportKey, const QString &report, int previewFlag, int copiesFlag,
                   int selectionFlag, int orientationFlag, const QString &description = {});
    // Modal; afterwards CloseAction says how it was left.
    void ShowDialog();
    void CloseDialog();
    // 1 when confirmed with a report row selected, 0 when closed.
    int CloseAction() const { return closeAction_; }

    // The tab-joined list texts the last row was built with.
    QString OptionList() const { return listText(options_); }
    QString FundList() const;
    QString TypeList() const { return listText(types_); }

    // The selected row's choices; "" when no row is selected.
    QString SelectedFund() const { return SelectedChoice(QStringLiteral("FundSelection")); }
    QString SelectedType() const { return SelectedChoice(QStringLiteral("TypeSelection")); }
    QString SelectedOption() const { return SelectedChoice(QStringLiteral("OptionSelection")); }
    // The chosen fund's ID, from the entry its row was built with.
    QString SelectedFundID() const;
    // Any choice column by its key ("SpecialSelection", "Totals", "Page Break").
    QString SelectedChoice(const QString &columnKey) const;

    classDialog &dialog() { return dialog_; }

    void FormBuild(classDialog &dialog) override;
    void UserAction(classDialog &dialog, const QString &name) override;

private:
    enum Frame { PreviewFrame, CopiesFrame, RecordsFrame, OrientationFrame };
    static QString listText(const QStringList &entries) { return entries.join(QLatin1Char('\t')); }
    classGrid &grid() const;
    int selectedRow() const; // 0 when none
    bool frameEnabled(Frame frame) const;
    void offerFrame(Frame frame, bool offered);
    // Enables each frame as the setters and the selected row's flags say.
    void applyFrames();
    void setFrameEnabled(Frame frame, bool enabled);
    void applyRowVisibility(int row);

    classDialog dialog_;
    std::vector<FundEntry> funds_;
    QStringList types_;
    QStringList special_;
    QStringList options_;
    bool totals_ = false;
    bool pageBreak_ = false;
    QString category_;
    std::array<bool, 4> offered_{};
    int closeAction_ = 0;
};
