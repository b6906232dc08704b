#include "mdiparent.h"

#include "formabout.h"
#include "frmreportviewer.h"
#include "mdichild.h"
#include "menudefinition.h"

#include "errobject.h"
#include "messageservice.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPrintDialog>
#include <QPrinter>
#include <QSet>
#include <QStatusBar>

namespace {

QString normalised(const QString &name)
{
    return name.toLower();
}

} // namespace

mdiParent::mdiParent(QWidget *parent)
    : QMainWindow(parent), area_(new QMdiArea(this)), printer_(std::make_unique<QPrinter>())
{
    setObjectName(QStringLiteral("mdiParent"));
    setWindowTitle(QLatin1String(applicationTitle));
    area_->setObjectName(QStringLiteral("mdiArea"));
    area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(area_);
    statusBar()->setObjectName(QStringLiteral("sbrStatus"));
    statusbar_.Init(statusBar());
    buildMenu();
    resize(1024, 720);
}

mdiParent::~mdiParent()
{
    // Child windows go before their workers, as when the user closes them.
    area_->closeAllSubWindows();
    openChildren_.clear();
}

void mdiParent::buildMenu()
{
    QSet<QString> submenus;
    for (const MenuEntry &entry : frameMenu())
        submenus.insert(entry.parent);
    QHash<QString, QMenu *> menus;
    for (const MenuEntry &entry : frameMenu()) {
        QMenu *parentMenu = menus.value(entry.parent);
        QAction *action = nullptr;
        if (entry.isSeparator()) {
            action = parentMenu->addSeparator();
        } else if (entry.parent.isEmpty()) {
            QMenu *menu = menuBar()->addMenu(entry.caption);
            action = menu->menuAction();
            menus.insert(entry.name, menu);
        } else if (submenus.contains(entry.name)) {
            QMenu *menu = parentMenu->addMenu(entry.caption);
            action = menu->menuAction();
            menus.insert(entry.name, menu);
        } else {
            action = parentMenu->addAction(entry.caption);
            if (entry.action)
                connect(action, &QAction::triggered, this, [this, run = entry.action] { run(*this); });
            else
                action->setEnabled(false); // kept in its place, but never a click that does nothing
        }
        action->setObjectName(entry.name);
    }
    windowMenu_ = menus.value(QStringLiteral("mnuWindow"));
    connect(windowMenu_, &QMenu::aboutToShow, this, &mdiParent::fillWindowList);
}

QAction *mdiParent::MenuItem(const QString &name) const
{
    const QList<QAction *> items = MenuItems();
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const QAction *a) { return a->objectName() == name; });
    return found == items.end() ? nullptr : *found;
}

QList<QAction *> mdiParent::MenuItems() const
{
    QList<QAction *> items;
    for (QAction *action : findChildren<QAction *>()) {
        if (action->objectName().startsWith(QLatin1String("mnu")))
            items << action;
    }
    return items;
}

void mdiParent::registerChildWorker(const QString &name, ChildFactory factory)
{
    childFactories_[normalised(name)] = std::move(factory);
}

void mdiParent::registerModalWorker(const QString &name, ModalFactory factory)
{
    modalFactories_[normalised(name)] = std::move(factory);
}

void mdiParent::registerReport(const QString &name, ReportRunner runner)
{
    reports_[normalised(name)] = std::move(runner);
}

void mdiParent::registerUnavailable(TaskKind kind, const QString &name, const QString &title)
{
    unavailable_[{kind, normalised(name)}] = title;
}

bool mdiParent::HasTask(TaskKind kind, const QString &name) const
{
    const QString key = normalised(name);
    if (unavailable_.count({kind, key}) > 0)
        return true;
    switch (kind) {
    case TaskKind::Child:
        return childFactories_.count(key) > 0;
    case TaskKind::Modal:
        return modalFactories_.count(key) > 0;
    case TaskKind::Report:
        return reports_.count(key) > 0;
    }
    return false;
}

// A registered task that is not written yet is an expected notice; a name
// nobody registered is a wiring fault, still said rather than swallowed.
void mdiParent::notAvailable(TaskKind kind, const QString &name)
{
    const auto found = unavailable_.find({kind, normalised(name)});
    if (found != unavailable_.end())
        messages().messageBox({QLatin1String(applicationTitle),
                               QStringLiteral("%1 is not available yet.").arg(found->second), MsgButtons::OK,
                               MsgIcon::Information});
    else
        messages().messageBox({QLatin1String(applicationTitle),
                               QStringLiteral("No task named %1 is registered.").arg(name), MsgButtons::OK,
                               MsgIcon::Critical});
}

bool mdiParent::IsFormLoaded(const QString &name) const
{
    return openChildren_.count(normalised(name)) > 0;
}

void mdiParent::ShowWorker(const QString &name)
{
    const auto found = openChildren_.find(normalised(name));
    if (found != openChildren_.end())
        found->second->ShowChild();
}

void mdiParent::OpenChildWorker(const QString &name)
{
    const QString key = normalised(name);
    if (IsFormLoaded(key)) {
        ShowWorker(key);
        return;
    }
    const auto factory = childFactories_.find(key);
    if (factory == childFactories_.end()) {
        notAvailable(TaskKind::Child, name);
        return;
    }
    std::unique_ptr<ChildWorker> worker = factory->second();
    if (!worker)
        return;
    ChildWorker *raw = worker.get();
    // The worker goes once its window is gone, after the event that closed it.
    connect(raw, &ChildWorker::unloaded, this, [this, key, raw] {
        const auto open = openChildren_.find(key);
        if (open != openChildren_.end() && open->second.get() == raw) {
            open->second.release()->deleteLater();
            openChildren_.erase(open);
        }
    });
    openChildren_[key] = std::move(worker);
    raw->DoMDIChild(*area_);
}

void mdiParent::RunModalWorker(const QString &name, const EntryProperties &entry)
{
    const auto factory = modalFactories_.find(normalised(name));
    if (factory == modalFactories_.end()) {
        notAvailable(TaskKind::Modal, name);
        return;
    }
    if (std::unique_ptr<ModalWorker> worker = factory->second(entry))
        worker->DoModalForm();
}

void mdiParent::RunReport(const QString &name, const QString &type)
{
    const auto runner = reports_.find(normalised(name));
    if (runner == reports_.end())
        notAvailable(TaskKind::Report, name);
    else
        runner->second(type);
}

void mdiParent::PrinterSetup()
{
    // The choice stays in the printer; a cancel or a failure changes nothing.
    QPrintDialog dialog(printer_.get(), this);
    dialog.setWindowTitle(QStringLiteral("Printer Setup"));
    dialog.exec();
}

void mdiParent::FilePrint()
{
    QMdiSubWindow *sub = area_->activeSubWindow();
    QWidget *window = sub ? sub->widget() : nullptr;
    if (auto *child = qobject_cast<mdiChild *>(window)) {
        child->DoPrint();
        return;
    }
    // A report viewer still preparing its report has nothing to print yet.
    auto *viewer = qobject_cast<frmReportViewer *>(window);
    if (!viewer || viewer->Waiting()) {
        messages().beep();
        return;
    }
    viewer->Print();
}

void mdiParent::TileHorizontally()
{
    tile(Qt::Vertical);
}

void mdiParent::TileVertically()
{
    tile(Qt::Horizontal);
}

// Windows side by side (Horizontal) or one above the other (Vertical), each
// taking an equal share of the area; minimised ones stay as icons.
void mdiParent::tile(Qt::Orientation orientation)
{
    QList<QMdiSubWindow *> windows;
    for (QMdiSubWindow *sub : area_->subWindowList()) {
        if (!sub->isMinimized() && sub->isVisible())
            windows << sub;
    }
    if (windows.isEmpty())
        return;
    const QRect space = area_->viewport()->rect();
    const int n = int(windows.size());
    for (int i = 0; i < n; ++i) {
        QMdiSubWindow *sub = windows[i];
        if (sub->isMaximized())
            sub->showNormal();
        if (orientation == Qt::Horizontal) {
            const int w = space.width() / n;
            sub->setGeometry(i * w, 0, w, space.height());
        } else {
            const int h = space.height() / n;
            sub->setGeometry(0, i * h, space.width(), h);
        }
    }
}

void mdiParent::ArrangeIcons()
{
    const QRect space = area_->viewport()->rect();
    int x = 0;
    for (QMdiSubWindow *sub : area_->subWindowList()) {
        if (!sub->isMinimized())
            continue;
        const QSize size = sub->size();
        sub->move(x, space.height() - size.height());
        x += size.width();
    }
}

void mdiParent::ShowAbout()
{
    formAbout about(this);
    about.exec();
}

void mdiParent::ShowWhere(const QString &district, const QString &database, const QString &proposal)
{
    district_ = district;
    database_ = database;
    ShowProposal(proposal);
}

void mdiParent::ShowProposal(const QString &proposal)
{
    QStringList parts{QLatin1String(applicationTitle)};
    for (const QString &part : {district_, database_, proposal}) {
        if (!part.trimmed().isEmpty())
            parts << part.trimmed();
    }
    setWindowTitle(parts.join(QStringLiteral(" - ")));
}

void mdiParent::fillWindowList()
{
    for (QAction *action : windowListActions_)
        windowMenu_->removeAction(action);
    qDeleteAll(windowListActions_);
    windowListActions_.clear();
    const QList<QMdiSubWindow *> windows = area_->subWindowList();
    if (windows.isEmpty())
        return;
    windowListActions_ << windowMenu_->addSeparator();
    int number = 1;
    for (QMdiSubWindow *sub : windows) {
        QAction *action = windowMenu_->addAction(QStringLiteral("&%1 %2").arg(number++).arg(sub->windowTitle()));
        action->setCheckable(true);
        action->setChecked(sub == area_->activeSubWindow());
        connect(action, &QAction::triggered, this, [this, sub] { area_->setActiveSubWindow(sub); });
        windowListActions_ << action;
    }
}
