#include "codechooser.h"

#include "formtransactionquerypopup.h"

#include <QApplication>
#include <QHash>

std::optional<std::vector<qint64>> chooseWithQueryPopUp(const CodeChoiceRequest &request)
{
    formTransactionQueryPopUp popUp(QApplication::activeWindow());
    popUp.setMode(TransactionQuery::AccountCodes);
    popUp.setLedger(request.ledger);
    popUp.setCaptions(request.caption, request.selectedCaption);
    QueryItems items;
    QHash<QString, qint64> ids;
    for (const auto *side : {&request.available, &request.selected}) {
        for (const clsAccountCode &code : *side) {
            items.push_back({code.AccountCode(), code.AccountName()});
            ids.insert(code.AccountCode(), code.ID());
        }
    }
    QStringList already;
    for (const clsAccountCode &code : request.selected)
        already << code.AccountCode();
    popUp.LoadList(std::move(items));
    popUp.setSearchValues(already);
    if (popUp.Display() != formTransactionQueryPopUp::Chosen)
        return std::nullopt;
    std::vector<qint64> chosen;
    for (const QString &value : popUp.SearchValues())
        chosen.push_back(ids.value(value));
    return chosen;
}
