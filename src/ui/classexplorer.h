#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <QLabel>
#include <QTreeWidget>

// What the explorer knows of one node.
struct ExplorerNode {
    QString key;
    QString text;
    QString parentKey; // empty for a root folder
    bool folder = false;
    int depth = 0; // 1 for a root folder
};

// The tree wrapper: folders and objects addressed by key. With drag and drop
// enabled, a drop raises nodeDragged with Dragging, NewParent and
// SelectedNode describing the move; the node moves in the tree only when the
// handler sets DragSuccessful. The second control is a caption beside the
// tree that shows where the selected node lies: the texts of its folders and
// its own, joined by " \ ", or nothing when no node is selected.
class classExplorer : public QObject {
    Q_OBJECT
public:
    explicit classExplorer(QObject *parent = nullptr);

    // The caption may be null for a tree shown on its own.
    void Init(QTreeWidget *tree, QLabel *caption = nullptr);
    QTreeWidget *view() const { return tree_; }
    QLabel *caption() const { return caption_; }
    void Reset();
    void RemoveNodes();
    void AddRootFolder(const QString &key, const QString &text, const QString &image = QStringLiteral("Folder"));
    void AddFolder(const QString &parentKey, const QString &key, const QString &text,
                   const QString &image = QStringLiteral("Folder"));
    void AddObject(const QString &parentKey, const QString &key, const QString &text,
                   const QString &image = QStringLiteral("Object"));
    QString SelectedNode() const; // empty when none
    void setSelectedNode(const QString &key);
    ExplorerNode Node(const QString &key) const;
    void setNodeText(const QString &key, const QString &text);
    QStringList ChildKeys(const QString &key) const;
    void RemoveNode(const QString &key);
    bool EnableDragDrop() const { return dragDrop_; }
    void setEnableDragDrop(bool on);
    bool Dragging() const { return dragging_; }
    void setDragging(bool on) { dragging_ = on; }
    QString NewParent() const { return newParent_; }
    void setNewParent(const QString &key) { newParent_ = key; }
    bool DragSuccessful() const { return dragSuccessful_; }
    void setDragSuccessful(bool on) { dragSuccessful_ = on; }
    void ExpandNodes(bool expand = true);
    int NodeCount() const { return int(items_.size()); }
    bool Visible() const;
    void setVisible(bool on);

    // Carries out a drop of one node on another: refused (false) when the
    // target is not a folder or lies inside the dragged node.
    bool DropNode(const QString &draggedKey, const QString &targetKey);

signals:
    void nodeDragged();
    void nodeRightClicked();
    void nodeClicked();
    void visibilityChanged();
    void resized();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTreeWidgetItem *item(const QString &key, const char *member) const;
    void addNode(const QString &parentKey, const QString &key, const QString &text, const QString &image, bool folder,
                 const char *member);
    void forget(QTreeWidgetItem *node);
    void updateCaption();

    QPointer<QTreeWidget> tree_;
    QPointer<QLabel> caption_;
    QHash<QString, QTreeWidgetItem *> items_; // owned by the tree
    bool dragDrop_ = false;
    bool dragging_ = false;
    QString newParent_;
    bool dragSuccessful_ = false;
    bool changedSincePress_ = false; // the press of the click under way made a node current
};
