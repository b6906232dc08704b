#pragma once

#include "gridsortlayout.h"

#include <QDialog>

class QPushButton;
class QTableWidget;

// The dialog in which the user builds a sort order of several columns:
// columns move from gridAvailable to gridSelected, each with "Ascending" or
// "Descending", and cmdOK confirms.
class formComplexSorting : public QDialog {
    Q_OBJECT
public:
    enum CloseActionValue { Cancelled = 0, Confirmed = 1 };

    explicit formComplexSorting(QWidget *parent = nullptr);

    void AddColumn(const QString &key, const QString &description);
    // Starts from an existing order (keys not offered are skipped).
    void SetLayout(const GridSortOrder &order);
    int CloseAction() const { return closeAction_; }
    // The order chosen, first step first.
    GridSortOrder Action() const;

private:
    void add();
    void remove();
    void move(int by);
    void reset();
    void addSelectedRow(const QString &key, const QString &description, bool ascending);
    void updateButtons();

    QTableWidget *available_;
    QTableWidget *selected_;
    QPushButton *add_;
    QPushButton *remove_;
    QPushButton *up_;
    QPushButton *down_;
    int closeAction_ = Cancelled;
    std::vector<std::pair<QString, QString>> offered_;
};
