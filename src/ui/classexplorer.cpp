#include "classexplorer.h"

#include "storageimages.h"
#include "wrappererror.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QTreeWidget>

#include <memory>

namespace {

constexpr int keyRole = Qt::UserRole;
constexpr int folderRole = Qt::UserRole + 1;

QString source(const char *member)
{
    return QStringLiteral("classExplorer.") + QLatin1String(member);
}

int depthOf(const QTreeWidgetItem *node)
{
    int depth = 0;
    for (; node; node = node->parent())
        ++depth;
    return depth;
}

} // namespace

classExplorer::classExplorer(QObject *parent) : QObject(parent)
{
}

void classExplorer::Init(QTreeWidget *tree, QLabel *caption)
{
    tree_ = tree;
    caption_ = caption;
    tree_->setHeaderHidden(true);
    tree_->setColumnCount(1);
    // Long captions scroll sideways instead of being cut short.
    tree_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    tree_->header()->setStretchLastSection(false);
    tree_->setContextMenuPolicy(Qt::DefaultContextMenu);
    tree_->installEventFilter(this);
    tree_->viewport()->installEventFilter(this);
    // A click on another node changes the current one on the press and is
    // clicked on the release: announce it once. A click on the current node
    // (to open it again) only clicks.
    connect(tree_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem *current) {
        updateCaption();
        changedSincePress_ = current != nullptr;
        if (current)
            emit nodeClicked();
    });
    connect(tree_, &QTreeWidget::itemClicked, this, [this] {
        if (!changedSincePress_)
            emit nodeClicked();
        changedSincePress_ = false;
    });
    updateCaption();
    setEnableDragDrop(dragDrop_);
}

void classExplorer::Reset()
{
    RemoveNodes();
    setEnableDragDrop(false);
    dragging_ = false;
    newParent_.clear();
    dragSuccessful_ = false;
}

void classExplorer::RemoveNodes()
{
    items_.clear();
    if (tree_)
        tree_->clear();
    updateCaption();
}

void classExplorer::AddRootFolder(const QString &key, const QString &text, const QString &image)
{
    addNode({}, key, text, image, true, "AddRootFolder");
}

void classExplorer::AddFolder(const QString &parentKey, const QString &key, const QString &text, const QString &image)
{
    addNode(parentKey, key, text, image, true, "AddFolder");
}

void classExplorer::AddObject(const QString &parentKey, const QString &key, const QString &text, const QString &image)
{
    addNode(parentKey, key, text, image, false, "AddObject");
}

QString classExplorer::SelectedNode() const
{
    if (!tree_ || !tree_->currentItem())
        return {};
    return tree_->currentItem()->data(0, keyRole).toString();
}

void classExplorer::setSelectedNode(const QString &key)
{
    QTreeWidgetItem *node = item(key, "SelectedNode.Let");
    if (tree_) {
        tree_->setCurrentItem(node);
        tree_->scrollToItem(node);
    }
}

ExplorerNode classExplorer::Node(const QString &key) const
{
    const QTreeWidgetItem *node = item(key, "Node");
    ExplorerNode info;
    info.key = key;
    info.text = node->text(0);
    info.parentKey = node->parent() ? node->parent()->data(0, keyRole).toString() : QString();
    info.folder = node->data(0, folderRole).toBool();
    info.depth = depthOf(node);
    return info;
}

void classExplorer::setNodeText(const QString &key, const QString &text)
{
    item(key, "NodeText")->setText(0, text);
    updateCaption();
}

QStringList classExplorer::ChildKeys(const QString &key) const
{
    const QTreeWidgetItem *node = item(key, "ChildKeys");
    QStringList keys;
    for (int i = 0; i < node->childCount(); ++i)
        keys << node->child(i)->data(0, keyRole).toString();
    return keys;
}

void classExplorer::RemoveNode(const QString &key)
{
    QTreeWidgetItem *node = item(key, "RemoveNode");
    forget(node);
    delete node; // a tree item is owned by its parent; deleting it detaches it
    updateCaption();
}

void classExplorer::setEnableDragDrop(bool on)
{
    dragDrop_ = on;
    if (!tree_)
        return;
    tree_->setDragEnabled(on);
    tree_->setAcceptDrops(on);
    tree_->viewport()->setAcceptDrops(on);
    tree_->setDropIndicatorShown(on);
    tree_->setDragDropMode(on ? QAbstractItemView::InternalMove : QAbstractItemView::NoDragDrop);
}

void classExplorer::ExpandNodes(bool expand)
{
    if (!tree_)
        return;
    if (expand)
        tree_->expandAll();
    else
        tree_->collapseAll();
}

bool classExplorer::Visible() const
{
    return tree_ && !tree_->isHidden();
}

void classExplorer::setVisible(bool on)
{
    if (tree_)
        tree_->setVisible(on);
    if (caption_)
        caption_->setVisible(on);
}

bool classExplorer::DropNode(const QString &draggedKey, const QString &targetKey)
{
    QTreeWidgetItem *dragged = item(draggedKey, "DropNode");
    QTreeWidgetItem *target = item(targetKey, "DropNode");
    if (!target->data(0, folderRole).toBool() || dragged->parent() == target)
        return false;
    for (const QTreeWidgetItem *up = target; up; up = up->parent()) {
        if (up == dragged)
            return false;
    }
    setSelectedNode(draggedKey);
    dragging_ = true;
    newParent_ = targetKey;
    dragSuccessful_ = false;
    emit nodeDragged();
    dragging_ = false;
    if (!dragSuccessful_)
        return false;
    QTreeWidgetItem *from = dragged->parent();
    QTreeWidgetItem *moved = from ? from->takeChild(from->indexOfChild(dragged))
                                  : tree_->takeTopLevelItem(tree_->indexOfTopLevelItem(dragged));
    target->addChild(moved);
    target->setExpanded(true);
    tree_->setCurrentItem(moved);
    updateCaption(); // the same node, now under another folder
    return true;
}

bool classExplorer::eventFilter(QObject *watched, QEvent *event)
{
    if (!tree_)
        return false;
    if (watched == tree_->viewport() && event->type() == QEvent::MouseButtonPress)
        changedSincePress_ = false;
    if (watched == tree_->viewport() && event->type() == QEvent::Drop) {
        auto *drop = static_cast<QDropEvent *>(event);
        const QTreeWidgetItem *target = tree_->itemAt(drop->position().toPoint());
        const QString dragged = SelectedNode();
        if (target && !dragged.isEmpty())
            DropNode(dragged, target->data(0, keyRole).toString());
        // The tree never moves items by itself; DropNode did what was agreed.
        drop->setDropAction(Qt::IgnoreAction);
        drop->accept();
        return true;
    }
    if (watched == tree_->viewport() && event->type() == QEvent::ContextMenu) {
        const auto *menu = static_cast<QContextMenuEvent *>(event);
        if (QTreeWidgetItem *node = tree_->itemAt(menu->pos())) {
            tree_->setCurrentItem(node);
            emit nodeRightClicked();
        }
        return true;
    }
    if (watched == tree_) {
        if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
            emit visibilityChanged();
        else if (event->type() == QEvent::Resize)
            emit resized();
    }
    return false;
}

QTreeWidgetItem *classExplorer::item(const QString &key, const char *member) const
{
    const auto found = items_.constFind(key);
    if (found == items_.cend())
        throw WrapperError(invalidPropertyValueError, source(member), invalidKeyText());
    return *found;
}

void classExplorer::addNode(const QString &parentKey, const QString &key, const QString &text, const QString &image,
                            bool folder, const char *member)
{
    if (key.isEmpty())
        throw WrapperError(invalidPropertyValueError, source(member), invalidKeyText());
    if (items_.contains(key))
        throw WrapperError(duplicateKeyError, source(member), duplicateKeyText());
    QTreeWidgetItem *parentNode = parentKey.isEmpty() ? nullptr : item(parentKey, member);
    auto node = std::make_unique<QTreeWidgetItem>(QStringList{text});
    node->setData(0, keyRole, key);
    node->setData(0, folderRole, folder);
    node->setIcon(0, formStorageImages::Image(image));
    if (!folder)
        node->setFlags(node->flags() & ~Qt::ItemIsDropEnabled);
    QTreeWidgetItem *added = node.get();
    if (parentNode)
        parentNode->addChild(node.release());
    else if (tree_)
        tree_->addTopLevelItem(node.release());
    else
        throw WrapperError(91, source(member), QStringLiteral("Object variable not set"));
    items_.insert(key, added);
}

void classExplorer::forget(QTreeWidgetItem *node)
{
    for (int i = 0; i < node->childCount(); ++i)
        forget(node->child(i));
    items_.remove(node->data(0, keyRole).toString());
}

void classExplorer::updateCaption()
{
    if (!caption_)
        return;
    QStringList path;
    for (const QTreeWidgetItem *node = tree_ ? tree_->currentItem() : nullptr; node; node = node->parent())
        path.prepend(node->text(0));
    caption_->setText(path.join(QStringLiteral(" \\ ")));
}
