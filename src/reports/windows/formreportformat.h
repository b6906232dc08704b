#pragma once

#include "classgrid.h"
#include "installationfunds.h"
#include "reportgenerator.h"

#include <QDialog>
#include <QStringList>

#include <cstdint>
#include <memory>

class QComboBox;
class QLineEdit;

// The report format dialog: name, description, ledger and fund of a format,
// and its columns, moved between the available and the selected grid. The
// selected grid always starts with the two default headings, which are
// printed on every format and not stored with it.
//
//   FormReportFormat form(connection, readInstallationFunds, parent);
//   form.setEditMode(true);            // else a new format
//   form.setID(id);
//   if (form.Display() == FormReportFormat::Saved) ... form.ID() ...
class FormReportFormat : public QDialog {
    Q_OBJECT
public:
    enum CloseActionValue { Cancelled = 0, Saved = 1 };
    static constexpr int maximumHeadings = 7; // the defaults included

    FormReportFormat(std::shared_ptr<DbConnection> connection, FundListReader listFunds, QWidget *parent = nullptr);
    ~FormReportFormat() override;

    static QString FormType() { return QStringLiteral("Dialog"); }
    // A message under the dialog's title, "Report Format", which the generator window shares.
    static void showMessage(const QString &text);

    bool EditMode() const { return editMode_; }
    void setEditMode(bool on) { editMode_ = on; }
    // The format edited; after a new one is saved, its database-assigned ID.
    std::int32_t ID() const { return id_; }
    void setID(std::int32_t id) { id_ = id; }

    // Fills the lists and, in edit mode, the format and its columns. False,
    // after telling the user, when the format or its columns cannot be read.
    bool LoadForm();
    // LoadForm, then the dialog modally; its CloseAction.
    int Display();
    int CloseAction() const { return closeAction_; }

    // Moves the current column of the available grid to the end of the
    // selected grid, and the current column of the selected grid back.
    void MoveRowRight();
    void MoveRowLeft();
    // Judges the input and writes the format and its columns as one; true
    // when written (the dialog then closes as Saved).
    bool SaveFormat();

    // The keys of the chosen columns in their order, the defaults left out.
    const QStringList &chosenKeys() const { return chosen_; }

    QLineEdit &nameField() const { return *name_; }
    QLineEdit &descriptionField() const { return *description_; }
    QComboBox &ledgerList() const { return *ledger_; }
    QComboBox &fundList() const { return *fund_; }
    classGrid &gridAvailable() { return available_; }
    classGrid &gridSelected() { return selected_; }

private:
    void buildForm();
    void loadFunds();
    bool loadFormat();
    void selectFund(const QString &fundId);
    QString ledgerKey() const;
    // Both grids from the chosen columns, with heading texts for the ledger.
    void showHeadings();
    bool nameIsFree(const QString &name);
    bool writeFormat(const clsReportName &format);

    std::shared_ptr<DbConnection> connection_;
    FundListReader listFunds_;
    clsReportGenerator generator_;
    bool editMode_ = false;
    std::int32_t id_ = 0;
    int closeAction_ = Cancelled;
    QStringList chosen_;
    QLineEdit *name_;
    QLineEdit *description_;
    QComboBox *ledger_;
    QComboBox *fund_;
    classGrid available_;
    classGrid selected_;
};
