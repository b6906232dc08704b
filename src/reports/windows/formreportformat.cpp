#include "formreportformat.h"

#include "messageservice.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QString keyColumn = QStringLiteral("Heading");
const QString textColumn = QStringLiteral("Description");
const QString yearColumn = QStringLiteral("Year");

// The headings every format prints first; they are not stored with it.
const QStringList defaultHeadings{QStringLiteral("Account Code"), QStringLiteral("Account Name")};

// The dialog names a column's year relative to the budget year; the printed
// report names the years themselves.
QString relativeYear(const QString &key)
{
    clsReportGenerator years;
    years.BugdetYear = QStringLiteral("Current");
    years.ProposedYear = QStringLiteral("Proposed");
    years.PriorYear = QStringLiteral("Prior Year");
    years.Prior1Year = QStringLiteral("Two Years Prior");
    return years.HeadingYear(key);
}

void setUpGrid(classGrid &grid, QTableView *view, const QString &caption)
{
    grid.Init(view, nullptr);
    grid.setSingleSelection(true);
    // The selected grid shows the printed order, which a sort would hide.
    grid.setSorting(false);
    GridColumnOptions hidden;
    hidden.hidden = true;
    grid.AddColumn(keyColumn, keyColumn, hidden);
    GridColumnOptions text;
    text.widthTwips = 2700;
    grid.AddColumn(textColumn, caption, text);
    GridColumnOptions year;
    year.widthTwips = 1500;
    grid.AddColumn(yearColumn, QStringLiteral("Year"), year);
}

void addHeading(classGrid &grid, const QString &key, const QString &text, const QString &year)
{
    const int row = grid.AddRow();
    grid.SetCell(row, keyColumn, key);
    grid.SetCell(row, textColumn, text);
    grid.SetCell(row, yearColumn, year);
}

// Keeps the current row where it was (the last when the grid shrank, the first when there was none).
void selectNear(classGrid &grid, int row)
{
    if (grid.CountRows() > 0)
        grid.SelectRow(std::clamp(row, 1, grid.CountRows()));
}

} // namespace

FormReportFormat::FormReportFormat(std::shared_ptr<DbConnection> connection, FundListReader listFunds, QWidget *parent)
    : QDialog(parent), connection_(std::move(connection)), listFunds_(std::move(listFunds))
{
    generator_.setAdoConnection(connection_);
    generator_.setAuditTask(AuditTask::ReportFormats);
    buildForm();
}

FormReportFormat::~FormReportFormat() = default;

void FormReportFormat::buildForm()
{
    setObjectName(QStringLiteral("FormReportFormat"));
    setWindowTitle(QStringLiteral("Report Format"));
    auto *layout = new QVBoxLayout(this);

    auto *fields = new QFormLayout;
    name_ = new QLineEdit(this);
    name_->setObjectName(QStringLiteral("txtName"));
    description_ = new QLineEdit(this);
    description_->setObjectName(QStringLiteral("txtDescription"));
    ledger_ = new QComboBox(this);
    ledger_->setObjectName(QStringLiteral("cboLedger"));
    ledger_->addItem(QStringLiteral("E - Expenditure"), QStringLiteral("E"));
    ledger_->addItem(QStringLiteral("R - Revenue"), QStringLiteral("R"));
    fund_ = new QComboBox(this);
    fund_->setObjectName(QStringLiteral("cboFund"));
    fields->addRow(QStringLiteral("Report Name:"), name_);
    fields->addRow(QStringLiteral("Description:"), description_);
    fields->addRow(QStringLiteral("Ledger:"), ledger_);
    fields->addRow(QStringLiteral("Fund:"), fund_);
    layout->addLayout(fields);

    auto *lists = new QGridLayout;
    auto *availableView = new QTableView(this);
    availableView->setObjectName(QStringLiteral("gridAvailable"));
    auto *selectedView = new QTableView(this);
    selectedView->setObjectName(QStringLiteral("gridSelected"));
    setUpGrid(available_, availableView, QStringLiteral("Available Headings"));
    setUpGrid(selected_, selectedView, QStringLiteral("Selected Headings"));
    auto *right = new QPushButton(QStringLiteral(">"), this);
    right->setObjectName(QStringLiteral("cmdMoveRight"));
    right->setToolTip(QStringLiteral("Add the heading to the report"));
    auto *left = new QPushButton(QStringLiteral("<"), this);
    left->setObjectName(QStringLiteral("cmdMoveLeft"));
    left->setToolTip(QStringLiteral("Take the heading off the report"));
    for (QPushButton *button : {right, left})
        button->setMaximumWidth(48);
    auto *buttons = new QVBoxLayout;
    buttons->addStretch();
    buttons->addWidget(right);
    buttons->addWidget(left);
    buttons->addStretch();
    lists->addWidget(availableView, 0, 0);
    lists->addLayout(buttons, 0, 1);
    lists->addWidget(selectedView, 0, 2);
    layout->addLayout(lists, 1);

    auto *box = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
    box->button(QDialogButtonBox::Save)->setObjectName(QStringLiteral("cmdSave"));
    box->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
    layout->addWidget(box);

    connect(right, &QPushButton::clicked, this, &FormReportFormat::MoveRowRight);
    connect(left, &QPushButton::clicked, this, &FormReportFormat::MoveRowLeft);
    connect(&available_, &classGrid::leftDoubleClicked, this, &FormReportFormat::MoveRowRight);
    connect(&selected_, &classGrid::leftDoubleClicked, this, &FormReportFormat::MoveRowLeft);
    connect(ledger_, &QComboBox::currentIndexChanged, this, &FormReportFormat::showHeadings);
    connect(box, &QDialogButtonBox::accepted, this, &FormReportFormat::SaveFormat);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resize(760, 520);
}

bool FormReportFormat::LoadForm()
{
    setWindowTitle(editMode_ ? QStringLiteral("Edit Report Format") : QStringLiteral("New Report Format"));
    chosen_.clear();
    loadFunds();
    if (editMode_ && !loadFormat())
        return false;
    showHeadings();
    return true;
}

int FormReportFormat::Display()
{
    closeAction_ = Cancelled;
    if (LoadForm())
        exec();
    return closeAction_;
}

void FormReportFormat::loadFunds()
{
    fund_->clear();
    std::vector<FundEntry> funds;
    QString why;
    if (!listFunds_ || !listFunds_(funds, why)) {
        showMessage(QStringLiteral("Cannot initialize funds. error:") + why);
        return;
    }
    for (const FundEntry &fund : funds)
        fund_->addItem(fund.id + QStringLiteral(" - ") + fund.name, fund.id);
}

bool FormReportFormat::loadFormat()
{
    generator_.setReportName({});
    generator_.ReportName().ID = id_;
    if (!generator_.RetrieveReportName(false)) {
        showMessage(QStringLiteral("Problem opening Report Format:") + generator_.Error().ErrorText());
        return false;
    }
    std::vector<clsReportHeadings> headings;
    if (!generator_.GetReportHeadings(headings)) {
        showMessage(QStringLiteral("Problem opening Report Headings:") + generator_.Error().ErrorText());
        return false;
    }
    const clsReportName &format = generator_.ReportName();
    name_->setText(format.Name);
    description_->setText(format.Description);
    const int ledger = ledger_->findData(format.Ledger.trimmed().toUpper());
    ledger_->setCurrentIndex(ledger < 0 ? 0 : ledger);
    selectFund(format.FundID.trimmed());
    for (const clsReportHeadings &heading : headings) {
        // A key no column answers to any longer has nothing to print.
        if (!heading.ReportHeadingDesc.isEmpty() && !chosen_.contains(heading.ReportHeading, Qt::CaseInsensitive))
            chosen_ << heading.ReportHeading;
    }
    return true;
}

void FormReportFormat::selectFund(const QString &fundId)
{
    // A fund the installation no longer lists stays the format's own until the user picks another.
    if (fund_->findData(fundId) < 0)
        fund_->addItem(fundId, fundId);
    fund_->setCurrentIndex(fund_->findData(fundId));
}

QString FormReportFormat::ledgerKey() const
{
    return ledger_->currentData().toString();
}

void FormReportFormat::showHeadings()
{
    const int availableRow = available_.CurrentRow();
    const int selectedRow = selected_.CurrentRow();
    generator_.ReportName().Ledger = ledgerKey();
    std::vector<clsReportHeadings> all;
    generator_.getAvailHeadingList(all);

    available_.ResetRows();
    for (const clsReportHeadings &heading : all) {
        if (!chosen_.contains(heading.ReportHeading, Qt::CaseInsensitive))
            addHeading(available_, heading.ReportHeading, heading.ReportHeadingDesc,
                       relativeYear(heading.ReportHeading));
    }
    selected_.ResetRows();
    for (const QString &text : defaultHeadings)
        addHeading(selected_, {}, text, {});
    for (const QString &key : chosen_) {
        for (const clsReportHeadings &heading : all) {
            if (heading.ReportHeading.compare(key, Qt::CaseInsensitive) == 0)
                addHeading(selected_, heading.ReportHeading, heading.ReportHeadingDesc, relativeYear(key));
        }
    }
    selectNear(available_, availableRow);
    selectNear(selected_, selectedRow);
}

void FormReportFormat::MoveRowRight()
{
    const int row = available_.CurrentRow();
    if (row == 0)
        return;
    if (selected_.CountRows() >= maximumHeadings) {
        showMessage(QStringLiteral("You cannot selected more than 7 headings! "));
        return;
    }
    chosen_ << available_.GetItemValue(row, keyColumn);
    showHeadings();
}

void FormReportFormat::MoveRowLeft()
{
    const int row = selected_.CurrentRow();
    if (row == 0)
        return;
    const QString key = selected_.GetItemValue(row, keyColumn);
    if (key.isEmpty()) {
        showMessage(QStringLiteral("You cannot remove the default heading! "));
        return;
    }
    chosen_.removeIf([&key](const QString &chosen) { return chosen.compare(key, Qt::CaseInsensitive) == 0; });
    showHeadings();
}

bool FormReportFormat::SaveFormat()
{
    const QString name = name_->text().trimmed();
    if (name.isEmpty()) {
        showMessage(QStringLiteral("Please enter Report Name!"));
        return false;
    }
    if (!nameIsFree(name))
        return false;
    clsReportName format;
    format.ID = editMode_ ? id_ : 0;
    format.Name = name;
    format.Description = description_->text().trimmed();
    format.FundID = fund_->currentData().toString();
    format.Ledger = ledgerKey();
    format.ModifiedDate = QDate::currentDate();
    if (!writeFormat(format)) {
        showMessage(QStringLiteral(" error: ") + generator_.Error().ErrorText());
        return false;
    }
    id_ = generator_.ReportName().ID;
    closeAction_ = Saved;
    accept();
    return true;
}

bool FormReportFormat::nameIsFree(const QString &name)
{
    clsReportGenerator lookup;
    lookup.setAdoConnection(connection_);
    lookup.ReportName().Name = name;
    if (lookup.RetrieveReportName(true)) {
        if (editMode_ && lookup.ReportName().ID == id_)
            return true;
        showMessage(QStringLiteral("Report name is already exist in the database!"));
        return false;
    }
    if (lookup.Error().ErrorNumber() == 999) // no format has the name
        return true;
    showMessage(QStringLiteral(" error: ") + lookup.Error().ErrorText());
    return false;
}

bool FormReportFormat::writeFormat(const clsReportName &format)
{
    if (!generator_.BeginTransaction())
        return false;
    generator_.setReportName(format);
    // A new format's ID is the database's: read it back by its (unique) name.
    const bool written = (editMode_ ? generator_.UpdateReportName()
                                    : generator_.AddReportName() && generator_.RetrieveReportName(true)) &&
                         generator_.AddReportHeadings(chosen_);
    if (!written) {
        const clsErrObject failure = generator_.Error();
        generator_.AbortTransaction();
        generator_.Error() = failure;
        return false;
    }
    return generator_.Endtransaction();
}

void FormReportFormat::showMessage(const QString &text)
{
    MessageRequest request;
    request.title = QStringLiteral("Report Format");
    request.text = text;
    request.icon = MsgIcon::Exclamation;
    messages().messageBox(request);
}
