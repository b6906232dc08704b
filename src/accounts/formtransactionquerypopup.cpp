#include "formtransactionquerypopup.h"

#include "dialogframe.h"

#include "messageservice.h"
#include "objectsummaryledgers.h"
#include "twips.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// Rows appended per step while loading; the status and the window are
// brought up to date between steps.
constexpr std::size_t loadStep = 2000;

struct ModeText {
    const char *caption;
    const char *heading;
};

ModeText modeText(TransactionQuery mode)
{
    switch (mode) {
    case TransactionQuery::AccountCodes:
        return {"Select Account Codes", "Account Code"};
    case TransactionQuery::Vendors:
        return {"Select Vendors", "Vendor"};
    case TransactionQuery::Encumbrances:
        return {"Select Encumbrances", "Encumbrance"};
    case TransactionQuery::Checks:
        return {"Select Checks", "Check Number"};
    case TransactionQuery::Receipts:
        return {"Select Receipts", "Receipt Number"};
    }
    return {"", ""};
}

QTableView *listView(QueryListModel &model, const QString &name, QWidget *parent)
{
    auto *view = new QTableView(parent);
    view->setObjectName(name);
    view->setModel(&model);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setAlternatingRowColors(true);
    view->setWordWrap(false);
    view->verticalHeader()->hide();
    view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() + 6);
    view->horizontalHeader()->setStretchLastSection(true);
    view->setColumnWidth(0, twipsToPixels(1900));
    return view;
}

QPushButton *button(const QString &text, const QString &name, QWidget *parent)
{
    auto *created = new QPushButton(text, parent);
    created->setObjectName(name);
    created->setAutoDefault(false);
    return created;
}

// The account codes and names of one ledger's summary file.
template <class Summary> int readCodes(const FundDataPlace &place, QueryItems &items, QString &failure)
{
    Summary summary;
    std::vector<AccountCodeName> codes;
    int status = summary.Init(place.ddfPath, place.dataFolder);
    if (status == 0)
        status = summary.GetAcctCodeList(codes);
    if (status != 0) {
        failure = summary.ErrorMsg();
        return status;
    }
    items.reserve(items.size() + codes.size());
    for (AccountCodeName &code : codes)
        items.push_back({std::move(code.AccountCode), std::move(code.Name)});
    return 0;
}

} // namespace

int readQueryItems(TransactionQuery mode, const QString &ledger, const FundDataPlace &place, QueryItems &items,
                   QString &failure)
{
    items.clear();
    if (mode == TransactionQuery::AccountCodes) {
        const bool all = ledger.isEmpty();
        int status = 0;
        if (status == 0 && (all || ledger == QLatin1String("R")))
            status = readCodes<classObjectRLSummary>(place, items, failure);
        if (status == 0 && (all || ledger == QLatin1String("E")))
            status = readCodes<classObjectELSummary>(place, items, failure);
        if (status == 0 && (all || ledger == QLatin1String("G")))
            status = readCodes<classObjectGLSummary>(place, items, failure);
        if (all)
            std::stable_sort(items.begin(), items.end(),
                             [](const QueryListItem &a, const QueryListItem &b) { return a.value < b.value; });
        return status;
    }
    classObjectTransactions transactions;
    QStringList values;
    int status = transactions.Init(place.ddfPath, place.dataFolder);
    if (status == 0)
        status = transactions.FetchList(mode, ledger, values);
    if (status != 0) {
        failure = transactions.ErrorMsg();
        return status;
    }
    items.reserve(std::size_t(values.size()));
    for (QString &value : values)
        items.push_back({std::move(value), {}});
    return 0;
}

formTransactionQueryPopUp::formTransactionQueryPopUp(QWidget *parent)
    : QDialog(parent), items_(std::make_shared<QueryItems>()), availableModel_(items_), chosenModel_(items_)
{
    setObjectName(QStringLiteral("formTransactionQueryPopUp"));
    setDialogFrame(*this);
    setSizeGripEnabled(true);

    auto *layout = new QVBoxLayout(this);
    auto *findRow = new QHBoxLayout;
    auto *findLabel = new QLabel(QStringLiteral("Find:"), this);
    findText_ = new QLineEdit(this);
    findText_->setObjectName(QStringLiteral("txtFind"));
    findText_->setPlaceholderText(QStringLiteral("beginning of a value, or part of a description"));
    findLabel->setBuddy(findText_);
    findNext_ = button(QStringLiteral("Find &Next"), QStringLiteral("cmdFind"), this);
    findRow->addWidget(findLabel);
    findRow->addWidget(findText_, 1);
    findRow->addWidget(findNext_);
    layout->addLayout(findRow);

    auto *lists = new QGridLayout;
    availableTitle_ = new QLabel(QStringLiteral("Available"), this);
    chosenTitle_ = new QLabel(QStringLiteral("Selected"), this);
    chosenTitle_->setWordWrap(true);
    available_ = listView(availableModel_, QStringLiteral("lstAvailable"), this);
    chosen_ = listView(chosenModel_, QStringLiteral("lstSelected"), this);
    moveRight_ = button(QStringLiteral(">"), QStringLiteral("cmdMoveRight"), this);
    moveLeft_ = button(QStringLiteral("<"), QStringLiteral("cmdMoveLeft"), this);
    moveRight_->setToolTip(QStringLiteral("Move the selected rows to the chosen list"));
    moveLeft_->setToolTip(QStringLiteral("Move the selected rows back"));
    auto *moves = new QVBoxLayout;
    moves->addStretch();
    moves->addWidget(moveRight_);
    moves->addWidget(moveLeft_);
    moves->addStretch();
    lists->addWidget(availableTitle_, 0, 0);
    lists->addWidget(chosenTitle_, 0, 2);
    lists->addWidget(available_, 1, 0);
    lists->addLayout(moves, 1, 1);
    lists->addWidget(chosen_, 1, 2);
    lists->setColumnStretch(0, 1);
    lists->setColumnStretch(2, 1);
    layout->addLayout(lists, 1);

    auto *bottom = new QHBoxLayout;
    status_ = new QLabel(this);
    status_->setObjectName(QStringLiteral("lblStatus"));
    ok_ = button(QStringLiteral("OK"), QStringLiteral("cmdOK"), this);
    ok_->setDefault(true);
    cancel_ = button(QStringLiteral("Cancel"), QStringLiteral("cmdCancel"), this);
    bottom->addWidget(status_, 1);
    bottom->addWidget(ok_);
    bottom->addWidget(cancel_);
    layout->addLayout(bottom);

    connect(moveRight_, &QPushButton::clicked, this, &formTransactionQueryPopUp::MoveRowRight);
    connect(moveLeft_, &QPushButton::clicked, this, &formTransactionQueryPopUp::MoveRowLeft);
    connect(available_, &QTableView::doubleClicked, this, &formTransactionQueryPopUp::MoveRowRight);
    connect(chosen_, &QTableView::doubleClicked, this, &formTransactionQueryPopUp::MoveRowLeft);
    connect(findNext_, &QPushButton::clicked, this, [this] { FindInList(findText_->text()); });
    connect(findText_, &QLineEdit::returnPressed, this, [this] { FindInList(findText_->text()); });
    connect(ok_, &QPushButton::clicked, this, [this] {
        closeAction_ = Chosen;
        accept();
    });
    connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);

    setMode(mode_);
    FormSize(12600, 7200);
}

formTransactionQueryPopUp::~formTransactionQueryPopUp() = default;

QString formTransactionQueryPopUp::modeCaption(TransactionQuery mode)
{
    return QLatin1String(modeText(mode).caption);
}

void formTransactionQueryPopUp::setMode(TransactionQuery mode)
{
    mode_ = mode;
    setWindowTitle(modeCaption(mode));
    const QString heading = QLatin1String(modeText(mode).heading);
    const QString description = mode == TransactionQuery::AccountCodes ? QStringLiteral("Description") : QString();
    availableModel_.setHeadings(heading, description);
    chosenModel_.setHeadings(heading, description);
    // Only account codes come with a description.
    available_->setColumnHidden(1, description.isEmpty());
    chosen_->setColumnHidden(1, description.isEmpty());
    chosenTitle_->setText(QStringLiteral("Selected"));
}

void formTransactionQueryPopUp::setCaptions(const QString &caption, const QString &chosenTitle)
{
    setWindowTitle(caption);
    chosenTitle_->setText(chosenTitle);
}

void formTransactionQueryPopUp::LoadList(QueryItems items)
{
    Freeze(true);
    items_ = std::make_shared<const QueryItems>(std::move(items));
    availableModel_.reset(items_);
    chosenModel_.reset(items_);
    const std::size_t count = items_->size();
    std::vector<int> positions;
    std::size_t loaded = 0;
    do {
        const std::size_t to = std::min(count, loaded + loadStep);
        positions.resize(to - loaded);
        for (std::size_t i = loaded; i < to; ++i)
            positions[i - loaded] = int(i);
        availableModel_.add(positions);
        loaded = to;
        loadedStatus_ = QStringLiteral("Loaded ") + QString::number(loaded) + QStringLiteral(" records...");
        setStatus(loadedStatus_);
        if (loaded < count)
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    } while (loaded < count);
    Freeze(false);
}

bool formTransactionQueryPopUp::LoadList(const FundDataPlace &place)
{
    QueryItems items;
    QString failure;
    const int status = readQueryItems(mode_, ledger_, place, items, failure);
    if (status != 0) {
        LoadList(QueryItems{});
        const QString text =
            QStringLiteral("Cannot read the list for \"") + windowTitle() + QStringLiteral("\". error: ") + failure;
        setStatus(text);
        messages().messageBox(
            {QStringLiteral("Kora-Budget"), text, MsgButtons::OK, MsgIcon::Exclamation, MsgAnswer::OK});
        return false;
    }
    LoadList(std::move(items));
    return true;
}

QStringList formTransactionQueryPopUp::SearchValues() const
{
    return chosenModel_.values();
}

void formTransactionQueryPopUp::setSearchValues(const QStringList &values)
{
    QSet<QString> wanted;
    for (const QString &value : values)
        wanted.insert(value.trimmed().toUpper());
    std::vector<int> rows;
    for (int row = 0; row < availableModel_.rowCount(); ++row) {
        if (wanted.contains(availableModel_.item(row).value.trimmed().toUpper()))
            rows.push_back(row);
    }
    chosenModel_.add(availableModel_.take(rows));
}

void formTransactionQueryPopUp::move(QTableView *from, QueryListModel &source, QueryListModel &target)
{
    std::vector<int> rows;
    for (const QModelIndex &index : from->selectionModel()->selectedRows())
        rows.push_back(index.row());
    if (rows.empty())
        return;
    const int firstRow = *std::min_element(rows.begin(), rows.end());
    target.add(source.take(rows));
    // The row that took the place of the first moved one is next in line.
    if (source.rowCount() > 0) {
        const QModelIndex next = source.index(std::min(firstRow, source.rowCount() - 1), 0);
        from->selectionModel()->setCurrentIndex(next, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
}

void formTransactionQueryPopUp::MoveRowRight()
{
    move(available_, availableModel_, chosenModel_);
}

void formTransactionQueryPopUp::MoveRowLeft()
{
    move(chosen_, chosenModel_, availableModel_);
}

void formTransactionQueryPopUp::Freeze(bool on)
{
    for (QWidget *widget :
         {static_cast<QWidget *>(available_), static_cast<QWidget *>(chosen_), static_cast<QWidget *>(findText_),
          static_cast<QWidget *>(findNext_), static_cast<QWidget *>(moveRight_), static_cast<QWidget *>(moveLeft_),
          static_cast<QWidget *>(ok_)})
        widget->setEnabled(!on);
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else if (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
}

void formTransactionQueryPopUp::FormSize(int widthTwips, int heightTwips)
{
    resize(twipsToPixels(widthTwips), twipsToPixels(heightTwips));
}

bool formTransactionQueryPopUp::FindInList(const QString &text)
{
    const QString wanted = text.trimmed();
    const int rows = availableModel_.rowCount();
    if (wanted.isEmpty() || rows == 0)
        return false;
    const QModelIndex current = available_->selectionModel()->currentIndex();
    const int start = current.isValid() ? current.row() + 1 : 0;
    for (int step = 0; step < rows; ++step) {
        const int row = (start + step) % rows;
        const QueryListItem &item = availableModel_.item(row);
        if (item.value.startsWith(wanted, Qt::CaseInsensitive) ||
            item.description.contains(wanted, Qt::CaseInsensitive)) {
            const QModelIndex found = availableModel_.index(row, 0);
            available_->selectionModel()->setCurrentIndex(found, QItemSelectionModel::ClearAndSelect |
                                                                     QItemSelectionModel::Rows);
            available_->scrollTo(found);
            setStatus(loadedStatus_);
            return true;
        }
    }
    setStatus(QStringLiteral("\"") + wanted + QStringLiteral("\" is not in the list."));
    return false;
}

int formTransactionQueryPopUp::Display()
{
    closeAction_ = Cancelled;
    exec();
    return closeAction_;
}

QString formTransactionQueryPopUp::statusText() const
{
    return status_->text();
}

void formTransactionQueryPopUp::setStatus(const QString &text)
{
    status_->setText(text);
}
