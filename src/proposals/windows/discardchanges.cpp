#include "discardchanges.h"

#include "classgrid.h"
#include "dialogstatus.h"
#include "messageservice.h"

bool mayDiscardChanges(classDialog &dialog, const classGrid &grid)
{
    bool changed = false;
    for (int row = 1; row <= grid.CountRows() && !changed; ++row) {
        setStatusText(dialog, QStringLiteral("Checking data changes ") + QString(row % 3 + 1, u'.'));
        changed = grid.RowChanged(row);
    }
    setStatusText(dialog, QString());
    if (!changed)
        return true;
    const MessageRequest question{
        QStringLiteral("Discard Changes"),
        QStringLiteral("Changing your ledger will discard any changes you made to your current ledger?\r"
                       "Do you want to continue?"),
        MsgButtons::YesNo, MsgIcon::Question, MsgAnswer::No};
    return messages().messageBox(question) == MsgAnswer::Yes;
}
