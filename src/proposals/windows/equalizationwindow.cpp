#include "equalizationwindow.h"

#include "dialogstatus.h"
#include "gridtwins.h"
#include "yearlabel.h"

#include "appglobals.h"
#include "classdialog.h"
#include "classgrid.h"
#include "messageservice.h"

#include <array>
#include <optional>

namespace {
const QString title = QStringLiteral("Equalization Districts");
const QString gridName = QStringLiteral("AcctGrid");
const QString idKey = QStringLiteral("Id");
const QString districtKey = QStringLiteral("District");
const QString currentRateKey = QStringLiteral("CurrentRate");
const QString currentTotalKey = QStringLiteral("CurrentTotalAssessment");
const QString currentTaxableKey = QStringLiteral("CurrentTaxableAssessment");
const QString previousRateKey = QStringLiteral("PreviousRate");
const QString previousTotalKey = QStringLiteral("PreviousTotalAssessment");
const QString previousTaxableKey = QStringLiteral("PreviousTaxableAssessment");
// TownShip has no declared width; a town's name fits in this many characters.
constexpr int districtMaxLength = 40;

std::optional<double> rateIn(const QString &text)
{
    bool ok = false;
    const double rate = text.trimmed().toDouble(&ok);
    return ok ? std::optional<double>(rate) : std::nullopt;
}

std::optional<Currency> amountIn(const QString &text)
{
    return text.trimmed().isEmpty() ? std::nullopt : Currency::parse(text);
}

QString rateText(double rate)
{
    return QString::number(rate, 'g', 15);
}

// The row as an item; nothing when a number cell holds no number.
std::optional<clsEqualizationItem> districtOf(const classGrid &grid, int row)
{
    const auto currentRate = rateIn(grid.GetItemValue(row, currentRateKey));
    const auto previousRate = rateIn(grid.GetItemValue(row, previousRateKey));
    const auto currentTotal = amountIn(grid.GetItemValue(row, currentTotalKey));
    const auto currentTaxable = amountIn(grid.GetItemValue(row, currentTaxableKey));
    const auto previousTotal = amountIn(grid.GetItemValue(row, previousTotalKey));
    const auto previousTaxable = amountIn(grid.GetItemValue(row, previousTaxableKey));
    if (!currentRate || !previousRate || !currentTotal || !currentTaxable || !previousTotal || !previousTaxable)
        return std::nullopt;
    return clsEqualizationItem{grid.GetItemValue(row, idKey).toInt(),
                               grid.GetItemValue(row, districtKey).trimmed(),
                               *currentRate,
                               *currentTotal,
                               *currentTaxable,
                               *previousRate,
                               *previousTotal,
                               *previousTaxable};
}

void showFailure(const QString &text)
{
    messages().messageBox({title, text, MsgButtons::OK, MsgIcon::Critical, MsgAnswer::OK});
}
} // namespace

workerEqualization::workerEqualization(std::shared_ptr<DbConnection> connection, QWidget *parent) : parent_(parent)
{
    store_.setAdoConnection(std::move(connection));
    store_.setAuditTask(AuditTask::Equalization);
}

void workerEqualization::DoModalForm()
{
    classDialog dialog(*this, parent_);
    dialog.Run(1);
}

void workerEqualization::FormBuild(classDialog &dialog)
{
    dialog.SetSize(13400, 5400);
    dialog.SetCaption(title);
    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdAdd"), QStringLiteral("&Add"))
        .Move(100, 200, 1200, 400);
    dialog.AddControl(DialogControlKind::CommandButton, QStringLiteral("cmdErase"), QStringLiteral("&Erase"))
        .Move(1400, 200, 1200, 400);
    classGrid &grid = dialog.AddControl(DialogControlKind::Grid, gridName).Grid();
    dialog.Control(gridName).Move(50, 800, 13300, 4400);
    GridColumnOptions hidden;
    hidden.hidden = true;
    grid.AddColumn(idKey, QStringLiteral("Id"), hidden);
    GridColumnOptions name;
    name.widthTwips = 2300;
    name.maxLength = districtMaxLength;
    addColumnWithTwin(grid, districtKey, QStringLiteral("District"), name);

    const QString current = budgetYearLabel(gstrBudgetYearID, gbCalendarYear);
    const QString previous = budgetYearLabel(previousBudgetYearId(gstrBudgetYearID), gbCalendarYear);
    GridColumnOptions rate;
    rate.widthTwips = 1250;
    GridColumnOptions amount;
    amount.type = GridColumnType::Amount;
    amount.widthTwips = 2050;
    for (const auto &[year, rateKey, totalKey, taxableKey] :
         {std::array{current, currentRateKey, currentTotalKey, currentTaxableKey},
          std::array{previous, previousRateKey, previousTotalKey, previousTaxableKey}}) {
        rate.caption2 = amount.caption2 = year;
        addColumnWithTwin(grid, rateKey, QStringLiteral("Rate"), rate);
        addColumnWithTwin(grid, totalKey, QStringLiteral("Total Assessment"), amount);
        addColumnWithTwin(grid, taxableKey, QStringLiteral("Taxable Assessment"), amount);
    }
    addStatusBar(dialog);
}

void workerEqualization::LoadData(classDialog &dialog)
{
    setStatusText(dialog, QStringLiteral("Loading Records"));
    classGrid &grid = dialog.Control(gridName).Grid();
    grid.ResetRows(0);
    setStatusText(dialog, QStringLiteral("Loading Data ..."));
    std::vector<clsEqualizationItem> districts;
    if (!store_.GetList(districts)) {
        messages().errorDialog({1, title, store_.Error().ErrorText(), false});
        return;
    }
    setStatusText(dialog, QStringLiteral("Loading Grid Data"));
    for (const clsEqualizationItem &district : districts) {
        const int row = grid.AddRow();
        grid.SetCell(row, idKey, QString::number(district.ID));
        grid.SetCell(row, districtKey, district.DistrickName.trimmed());
        grid.SetCell(row, currentRateKey, rateText(district.CurrentRate));
        grid.SetCell(row, currentTotalKey, district.CurrentTotalAssessment.toSqlText());
        grid.SetCell(row, currentTaxableKey, district.CurrentTaxableAssessment.toSqlText());
        grid.SetCell(row, previousRateKey, rateText(district.PriorRate));
        grid.SetCell(row, previousTotalKey, district.PriorTotalAssessment.toSqlText());
        grid.SetCell(row, previousTaxableKey, district.PriorTaxableAssessment.toSqlText());
        keepAsLoaded(grid, row);
    }
    setStatusText(dialog, QStringLiteral("Finished Loading Data"));
}

void workerEqualization::UserAction(classDialog &dialog, const QString &name)
{
    classGrid &grid = dialog.Control(gridName).Grid();
    if (name == u"cmdAdd") {
        grid.SelectRow(grid.AddRow());
        grid.SetColumn(districtKey);
    } else if (name == u"cmdErase") {
        DeleteDistricts(grid);
    }
}

bool workerEqualization::SaveData(classDialog &dialog)
{
    classGrid &grid = dialog.Control(gridName).Grid();
    const SaveResult result =
        saveChangedRows(dialog, store_, grid, [&](int row) { return UpdateDistricts(grid, row); });
    if (result == SaveResult::TransactionFailed)
        messages().errorDialog({1, title, store_.Error().ErrorText(), false});
    return result == SaveResult::Saved;
}

bool workerEqualization::UpdateDistricts(const classGrid &grid, int row)
{
    const auto district = districtOf(grid, row);
    if (!district) {
        messages().messageBox({QStringLiteral("Kora-Budget"),
                               QStringLiteral("Please make sure all the fields are filled with numbers"),
                               MsgButtons::OK, MsgIcon::Exclamation, MsgAnswer::OK});
        return false;
    }
    store_.setEqualizationItem(*district);
    if (district->ID != 0) {
        if (store_.UpdateBatch())
            return true;
        showFailure(QStringLiteral("Error updating Equalization Districts: ") + store_.Error().ErrorText());
    } else {
        if (store_.AddBatch())
            return true;
        showFailure(QStringLiteral("Error adding Equalization Districts: ") + store_.Error().ErrorText());
    }
    return false;
}

void workerEqualization::DeleteDistricts(classGrid &grid)
{
    const int row = grid.CurrentRow();
    if (row == 0)
        return;
    const QString name = grid.GetItemValue(row, districtKey).trimmed();
    const MsgAnswer sure = messages().messageBox({title, QStringLiteral("Erase the district \"%1\"?").arg(name),
                                                  MsgButtons::YesNo, MsgIcon::Question, MsgAnswer::No});
    if (sure != MsgAnswer::Yes)
        return;
    const int id = grid.GetItemValue(row, idKey).toInt();
    if (id != 0) {
        store_.EqualizationItem().ID = id;
        if (!store_.DeleteBatch()) {
            showFailure(QStringLiteral("Error Erase the Equalization District: ") + store_.Error().ErrorText());
            return;
        }
    }
    grid.DeleteRow(row);
}
