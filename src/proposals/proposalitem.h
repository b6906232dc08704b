#pragma once

#include <QString>

// One proposal slot: "1", "2" or "3".
struct clsProposalItem {
    QString ID;
    QString Name;
    QString Status; // "O" open, "C" closed, "" free
    bool Active = false;
};
