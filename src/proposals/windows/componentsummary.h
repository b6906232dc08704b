#pragma once

#include "currency.h"

#include <QString>
#include <QStringList>

class classGrid;

// The three-part budget of the general fund's expenditure ledger as the
// entry grid holds it: each component's total over the cells that are open
// (a closed cell's figure never counts), and the accounts that take part in
// no component and so cannot be given an amount there.
struct ComponentSummary {
    Currency administrative;
    Currency program;
    Currency capital;
    QStringList withoutComponent;

    Currency total() const { return administrative + program + capital; }
    // "Administrative 1,200.00 (60.0%)   Program ..." with each share of the total.
    QString text() const;
    // Empty when every account takes part in a component.
    QString warning() const;
};

// Reads the grid's CatA, CatP and CatC cells; `codeKey` names the account-code column.
ComponentSummary summariseComponents(const classGrid &grid, const QString &codeKey);

// A share of a total as "12.5%", rounded half away from zero; "0.0%" of nothing.
QString shareText(Currency part, Currency total);
