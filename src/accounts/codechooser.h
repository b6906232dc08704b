#pragma once

#include "accountsummary.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

// What Folder Adjustment asks of the selection list: the codes on offer (in
// the order to show them) and those already in the folder, which start on
// the selected side. The answer is the IDs on the selected side when the user
// confirmed, nothing when they cancelled.
struct CodeChoiceRequest {
    QString caption;
    QString selectedCaption;
    QString ledger;
    std::vector<clsAccountCode> available;
    std::vector<clsAccountCode> selected;
};
using CodeChooser = std::function<std::optional<std::vector<qint64>>(const CodeChoiceRequest &)>;

// Folder Adjustment's selection list: the transaction query pop-up in
// account-code mode, run modally over the active window.
std::optional<std::vector<qint64>> chooseWithQueryPopUp(const CodeChoiceRequest &request);
