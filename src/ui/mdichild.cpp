#include "mdichild.h"

#include "csvexport.h"
#include "gridexport.h"
#include "gridxlsxwriter.h"

#include "messageservice.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTableView>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QString exportTitle = QStringLiteral("Grid Data Export");

QTableView *makeView(const QString &name, QWidget *parent)
{
    auto *view = new QTableView(parent);
    view->setObjectName(name);
    return view;
}

QString slotCommand(const char *command, int slot)
{
    return QLatin1String(command) + (slot == 2 ? QStringLiteral("(2)") : QString());
}

} // namespace

mdiChild::mdiChild(QWidget *parent) : QWidget(parent)
{
    setLoading(true);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto *toolbar = new QToolBar(this);
    toolbar->setObjectName(QStringLiteral("tbr1"));
    layout->addWidget(toolbar);
    auto *dropDownHost = new QWidget(this);
    dropDownHost->setObjectName(QStringLiteral("Label1"));
    layout->addWidget(dropDownHost);

    body_ = new QSplitter(Qt::Horizontal, this);
    // The explorer's caption sits above its tree and names the selected node's place.
    auto *explorerBox = new QWidget(body_);
    auto *explorerLayout = new QVBoxLayout(explorerBox);
    explorerLayout->setContentsMargins(0, 0, 0, 0);
    explorerLayout->setSpacing(2);
    auto *explorerCaption = new QLabel(explorerBox);
    explorerCaption->setObjectName(QStringLiteral("lblExplorer"));
    explorerLayout->addWidget(explorerCaption);
    auto *tree = new QTreeWidget(explorerBox);
    tree->setObjectName(QStringLiteral("explorer1"));
    explorerLayout->addWidget(tree, 1);
    explorerBox_ = explorerBox;
    tree->installEventFilter(this);
    auto *gridArea = new QSplitter(Qt::Vertical, body_);
    const std::array<std::pair<QString, QString>, 2> names{
        {{QStringLiteral("grid1"), QStringLiteral("grid2")}, {QStringLiteral("grid3"), QStringLiteral("grid4")}}};
    for (int slot = 0; slot < 2; ++slot) {
        auto *box = new QWidget(gridArea);
        auto *boxLayout = new QVBoxLayout(box);
        boxLayout->setContentsMargins(0, 0, 0, 0);
        boxLayout->setSpacing(0);
        QTableView *view = makeView(names[std::size_t(slot)].first, box);
        boxLayout->addWidget(view, 1);
        boxLayout->addWidget(makeView(names[std::size_t(slot)].second, box));
        slots_[std::size_t(slot)] = box;
    }
    auto *edit = makeView(QStringLiteral("editGrid1"), gridArea);
    edit->hide();
    body_->setStretchFactor(0, 1);
    body_->setStretchFactor(1, 3);
    layout->addWidget(body_, 1);

    auto *status = new QStatusBar(this);
    status->setObjectName(QStringLiteral("sbr1"));
    layout->addWidget(status);
    tmr_.setObjectName(QStringLiteral("tmr"));

    toolbar_.Init(toolbar);
    statusbar_.Init(status);
    dropDown_.Init(dropDownHost);
    explorer_.Init(tree, explorerCaption);
    for (int slot = 0; slot < 2; ++slot) {
        auto views = slots_[std::size_t(slot)]->findChildren<QTableView *>();
        grids_[std::size_t(slot)].Init(views.at(0), views.at(1));
        connectGrid(grids_[std::size_t(slot)], slot + 1);
    }
    editGrid_.Init(edit, nullptr);

    connect(&toolbar_, &classToolbar::buttonClicked, this, &mdiChild::Command);
    connect(&statusbar_, &classStatusbar::panelClicked, this, &mdiChild::Command);
    connect(&dropDown_, &classDropDown::selectionChanged, this, &mdiChild::Command);
    connect(&explorer_, &classExplorer::nodeDragged, this,
            [this] { emit Command(QStringLiteral("_explorerNodeDrag")); });
    connect(&explorer_, &classExplorer::nodeRightClicked, this,
            [this] { emit Command(QStringLiteral("_explorerNodeRightClick")); });
    connect(&explorer_, &classExplorer::nodeClicked, this,
            [this] { emit Command(QStringLiteral("_explorerNodeClick")); });
    connect(&tmr_, &QTimer::timeout, this, [this] { emit Command(QStringLiteral("_Timer")); });
    const auto forward = [this](const char *command) {
        return [this, command] {
            if (!loading_)
                emit Command(QLatin1String(command));
        };
    };
    connect(&toolbar_, &classToolbar::visibilityChanged, this, forward("_Visible"));
    connect(&statusbar_, &classStatusbar::visibilityChanged, this, forward("_Visible"));
    connect(&dropDown_, &classDropDown::visibilityChanged, this, forward("_Visible"));
    connect(&explorer_, &classExplorer::visibilityChanged, this, forward("_Visible"));
    connect(&explorer_, &classExplorer::resized, this, forward("_Resize"));
    for (classGrid &grid : grids_) {
        connect(&grid, &classGrid::visibilityChanged, this, forward("_Visible"));
        connect(&grid, &classGrid::resized, this, forward("_Resize"));
    }

    setGridCount(1);
    InitForm();
    setLoading(false);
}

mdiChild::~mdiChild() = default;

void mdiChild::connectGrid(classGrid &grid, int slot)
{
    connect(&grid, &classGrid::cellChanged, this, [this, slot] {
        currentSlot_ = slot;
        emit Command(slotCommand("_CellChange", slot));
    });
    connect(&grid, &classGrid::keyPressed, this, [this, slot](int key) {
        gridKeyAscii_ = key;
        currentSlot_ = slot;
        emit Command(slotCommand("_KeyPress", slot));
    });
    connect(&grid, &classGrid::leftDoubleClicked, this, [this, slot] {
        currentSlot_ = slot;
        emit Command(slotCommand("_gridLeftDblClick", slot));
    });
    connect(&grid, &classGrid::rightClicked, this, [this, slot] {
        currentSlot_ = slot;
        emit Command(slotCommand("_gridRightClick", slot));
    });
    grid.view()->installEventFilter(this);
}

void mdiChild::InitForm()
{
    const bool wasLoading = loading_;
    loading_ = true;
    for (classGrid &grid : grids_)
        grid.Reset();
    editGrid_.Reset();
    explorer_.Reset();
    toolbar_.Reset();
    dropDown_.Reset();
    statusbar_.Reset();
    explorer_.setVisible(false);
    waiting_ = false;
    gridKeyAscii_ = 0;
    currentSlot_ = 1;
    Form_Resize();
    loading_ = wasLoading;
}

void mdiChild::ShowForm(QMdiArea &area)
{
    // A worker that set no size gets most of the frame, not Qt's small default.
    const bool sized = testAttribute(Qt::WA_Resized);
    QMdiSubWindow *sub = area.addSubWindow(this);
    sub->setAttribute(Qt::WA_DeleteOnClose);
    sub->setWindowIcon(style()->standardIcon(QStyle::SP_FileDialogDetailedView));
    if (!sized && area.viewport()->width() > 0)
        sub->resize(area.viewport()->size() * 4 / 5);
    Form_Resize();
    show();
    sub->show();
    area.setActiveSubWindow(sub);
}

void mdiChild::BringToFront()
{
    auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget());
    QWidget *target = sub ? static_cast<QWidget *>(sub) : this;
    if (target->isMinimized())
        target->showNormal();
    target->raise();
    if (sub && sub->mdiArea())
        sub->mdiArea()->setActiveSubWindow(sub);
    target->activateWindow();
}

classGrid *mdiChild::Grid(int index)
{
    if (index < 1 || index > 2) {
        messages().messageBox({windowTitle(), QStringLiteral("Invalid grid index value"), MsgButtons::OK,
                               MsgIcon::Exclamation, MsgAnswer::OK});
        return nullptr;
    }
    return &grids_[std::size_t(index - 1)];
}

void mdiChild::setGridCount(int count)
{
    if (count != 1 && count != 2) {
        messages().messageBox({windowTitle(), QStringLiteral("Invalid Grid Count Value"), MsgButtons::OK,
                               MsgIcon::Exclamation, MsgAnswer::OK});
        return;
    }
    gridCount_ = count;
    if (currentSlot_ > gridCount_)
        currentSlot_ = 1;
    Form_Resize();
}

void mdiChild::Form_Resize()
{
    // Parts without content take no room.
    toolbar_.setVisible(toolbar_.Count() > 0);
    dropDown_.setVisible(dropDown_.Count() > 0);
    slots_[1]->setVisible(gridCount_ == 2);
}

void mdiChild::setWaiting(bool on)
{
    waiting_ = on;
    if (on)
        setCursor(Qt::WaitCursor);
    else
        unsetCursor();
}

void mdiChild::DoExport()
{
    const auto answer = messages().saveFileName(
        {exportTitle, QStringLiteral("Please enter the file name for the data you want to export to! "),
         QStringLiteral("c:\\data.csv"), exportFilters()});
    if (!answer || answer->path.trimmed().isEmpty())
        return;
    const ExportTarget target = exportTarget(answer->path.trimmed(), answer->filter);
    const classGrid &grid = grids_[std::size_t(currentSlot_ - 1)];
    QString error;
    const bool written = target.format == ExportFormat::Xlsx
                             ? GridXlsxWriter(gridExportTable(grid)).write(target.path, error)
                             : exportGridCsv(grid, target.path, error);
    if (!written) {
        messages().messageBox({exportTitle,
                               QStringLiteral("Cannot write ") + target.path + QStringLiteral(": ") + error,
                               MsgButtons::OK, MsgIcon::Critical, MsgAnswer::OK});
        return;
    }
    messages().messageBox(
        {exportTitle, QStringLiteral("Data export finished!"), MsgButtons::OK, MsgIcon::Information, MsgAnswer::OK});
}

void mdiChild::Unload()
{
    unloading_ = true;
    // From the worker's answer to a close the user began, this close does
    // nothing (Qt ignores a close of a closing window) and that close goes on.
    closeWindow();
}

void mdiChild::closeWindow()
{
    // The sub-window closes its child first and goes only when the child does.
    if (auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget()))
        sub->close();
    else
        close();
}

void mdiChild::closeEvent(QCloseEvent *event)
{
    if (!unloading_ && !closeCommand_.isEmpty()) {
        emit Command(closeCommand_);
        if (!unloading_) {
            event->ignore();
            return;
        }
    }
    emit Command(QStringLiteral("_Unload"));
    event->accept();
}

void mdiChild::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier)
        closeWindow();
    else
        QWidget::keyPressEvent(event);
}

bool mdiChild::eventFilter(QObject *watched, QEvent *event)
{
    // The explorer's box takes room in the splitter only while its tree is shown.
    if (watched == explorer_.view() && (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent))
        explorerBox_->setVisible(!explorer_.view()->isHidden());
    if (event->type() == QEvent::FocusIn) {
        for (int slot = 0; slot < 2; ++slot) {
            if (watched == grids_[std::size_t(slot)].view())
                currentSlot_ = slot + 1;
        }
    }
    return QWidget::eventFilter(watched, event);
}
