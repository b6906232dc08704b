#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <utility>
#include <vector>

#include <QComboBox>
#include <QLabel>
#include <QListWidget>

// The drop-down wrapper: one or more captioned drop-down lists (or list
// boxes) laid out side by side in a host widget, each addressed by its key.
// Entries carry a key, a text and a number (ItemData); indexes are 0-based
// and -1 means "none", as in the list controls.
class classDropDown : public QObject {
    Q_OBJECT
public:
    explicit classDropDown(QObject *parent = nullptr);
    ~classDropDown() override;

    void Init(QWidget *host);
    void Reset();
    bool Visible() const;
    void setVisible(bool on);
    int Count() const { return int(lists_.size()); }
    // Sizes the list's control to a share (1 to 100) of the host's width and
    // keeps that share when the host is resized.
    void Percentage(const QString &list, int percent);

    // Each returns the new list's position among the lists.
    int AddDropDown(const QString &key, const QString &caption, const QString &toolTip = {}, int widthTwips = 2400);
    int AddListBox(const QString &key, const QString &caption, const QString &toolTip = {}, int widthTwips = 2400,
                   int heightTwips = 1500, bool multiSelect = false);
    QWidget *control(const QString &list) const;
    QLabel *captionLabel(const QString &list) const;

    int KeyToIndex(const QString &list, const QString &itemKey) const;
    void Clear(const QString &list);
    void AddItem(const QString &list, const QString &itemKey, const QString &text, qint64 itemData = 0);
    // An entry for an item with a status: the name padded to the width of 20
    // "W" and " - Open" (O), " - Closed " (C) or " - Closing..." (P).
    void AddItemSchedule(const QString &list, const QString &itemKey, const QString &name, const QString &status,
                         qint64 itemData = 0);
    QString List(const QString &list, int index) const;
    void setList(const QString &list, int index, const QString &text);
    qint64 ItemData(const QString &list, int index) const;
    void setItemData(const QString &list, int index, qint64 value);
    int ListIndex(const QString &list) const;
    void setListIndex(const QString &list, int index);
    void RemoveItem(const QString &list, int index);
    int ListCount(const QString &list) const;
    int SelListCount(const QString &list) const;
    bool Selected(const QString &list, int index) const;
    void setSelected(const QString &list, int index, bool on);
    QString GetSelectedByKey(const QString &list) const; // empty when none
    int GetSelectedByIndexNo(const QString &list) const { return ListIndex(list); }
    int FindItemData(const QString &list, qint64 value) const; // -1 when absent
    QString ItemKey(const QString &list, int index) const;

signals:
    // The user picked an entry; carries the list's key.
    void selectionChanged(const QString &list);
    void visibilityChanged();
    void resized();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Entry {
        QString key;
        QPointer<QWidget> box; // frame holding caption and control
        QPointer<QLabel> label;
        QPointer<QComboBox> combo;
        QPointer<QListWidget> listBox;
        int percent = 0; // 0: the fixed width given when it was added
    };
    const Entry &entry(const QString &list, const char *member) const;
    Entry &entry(const QString &list, const char *member)
    {
        return const_cast<Entry &>(std::as_const(*this).entry(list, member));
    }
    int checkedIndex(const Entry &e, int index, const char *member) const;
    void applyPercentages();
    void addList(const QString &key, const QString &caption, const QString &toolTip, QWidget *control);

    QPointer<QWidget> host_;
    std::vector<Entry> lists_;
    bool updating_ = false;
};

// The text of a scheduled entry, for callers that build their own lists.
QString scheduleSuffix(const QString &status);
