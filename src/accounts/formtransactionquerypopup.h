#pragma once

#include "funddataplace.h"
#include "objecttransactions.h"
#include "querylistmodel.h"

#include <QDialog>
#include <QStringList>

#include <memory>

class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

// The selection pop-up of the transaction query: the values of one kind
// (Mode) in the list on the left, the values chosen in the list on the right.
// Rows move across with the buttons or a double click, several at a time.
//
//   formTransactionQueryPopUp popUp(parent);
//   popUp.setMode(TransactionQuery::AccountCodes);
//   popUp.LoadList(items);                 // or LoadList(place) from Kora-Fund
//   popUp.setSearchValues(alreadyChosen);  // optional
//   if (popUp.Display() == formTransactionQueryPopUp::Chosen)
//       use(popUp.SearchValues());
class formTransactionQueryPopUp : public QDialog {
    Q_OBJECT
public:
    enum CloseActionValue { Cancelled = 0, Chosen = 1 };

    explicit formTransactionQueryPopUp(QWidget *parent = nullptr);
    ~formTransactionQueryPopUp() override;

    static QString FormType() { return QStringLiteral("Dialog"); }
    // The caption of a mode: "Select Account Codes", "Select Vendors" ...
    static QString modeCaption(TransactionQuery mode);

    TransactionQuery Mode() const { return mode_; }
    // Sets the caption and the lists' headings of the mode.
    void setMode(TransactionQuery mode);
    // The ledger ("R", "E", "G") whose values LoadList reads; empty for all.
    const QString &Ledger() const { return ledger_; }
    void setLedger(const QString &ledger) { ledger_ = ledger.trimmed().toUpper(); }
    // A caption and a title over the chosen list of the caller's own, after setMode.
    void setCaptions(const QString &caption, const QString &chosenTitle);

    // Fills the left list with the items in the order given, reporting
    // "Loaded N records..." as it goes; the right list is emptied.
    void LoadList(QueryItems items);
    // Reads the mode's values from Kora-Fund (account codes with their names
    // from the ledger summaries, other kinds from the detail transactions) and
    // loads them. False, with the reason in the status line and a message,
    // when the files cannot be read.
    bool LoadList(const FundDataPlace &place);

    // The values of the right list, in load order.
    QStringList SearchValues() const;
    // Moves these values (compared without regard to case) to the right list.
    void setSearchValues(const QStringList &values);

    // Moves the selected rows of the left list to the right, and back.
    void MoveRowRight();
    void MoveRowLeft();
    // While frozen the lists, buttons and find box take no input.
    void Freeze(bool on);
    void FormSize(int widthTwips, int heightTwips);
    // Selects the next row of the left list after the current one (wrapping)
    // whose value begins with the text or whose description contains it.
    // False, and the status says so, when none does.
    bool FindInList(const QString &text);

    // Shows the pop-up modally; returns CloseAction.
    int Display();
    int CloseAction() const { return closeAction_; }

    QTableView *availableList() const { return available_; }
    QTableView *chosenList() const { return chosen_; }
    QString statusText() const;

private:
    void move(QTableView *from, QueryListModel &source, QueryListModel &target);
    void setStatus(const QString &text);

    TransactionQuery mode_ = TransactionQuery::AccountCodes;
    QString ledger_;
    QString loadedStatus_; // "Loaded N records...", back in the status once a find succeeds
    int closeAction_ = Cancelled;
    std::shared_ptr<const QueryItems> items_;
    QueryListModel availableModel_;
    QueryListModel chosenModel_;
    QTableView *available_;
    QTableView *chosen_;
    QLabel *availableTitle_;
    QLabel *chosenTitle_;
    QLineEdit *findText_;
    QPushButton *findNext_;
    QPushButton *moveRight_;
    QPushButton *moveLeft_;
    QPushButton *ok_;
    QPushButton *cancel_;
    QLabel *status_;
};

// The values of a kind, for the pop-up, from the Kora-Fund files at `place`;
// 0 or the record manager's status with the reason in `failure`.
int readQueryItems(TransactionQuery mode, const QString &ledger, const FundDataPlace &place, QueryItems &items,
                   QString &failure);
