#include "classdropdown.h"

#include "padwidth.h"
#include "twips.h"
#include "wrappererror.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int keyRole = Qt::UserRole;
constexpr int dataRole = Qt::UserRole + 1;
constexpr std::int16_t scheduleWidth = 20;

QString source(const char *member)
{
    return QStringLiteral("classDropDown.") + QLatin1String(member);
}

} // namespace

QString scheduleSuffix(const QString &status)
{
    if (status == QLatin1String("O"))
        return QStringLiteral(" - Open");
    if (status == QLatin1String("C"))
        return QStringLiteral(" - Closed ");
    if (status == QLatin1String("P"))
        return QStringLiteral(" - Closing...");
    return {};
}

classDropDown::classDropDown(QObject *parent) : QObject(parent)
{
}

classDropDown::~classDropDown() = default;

void classDropDown::Init(QWidget *host)
{
    host_ = host;
    if (!host_->layout()) {
        auto *layout = new QHBoxLayout(host_);
        layout->setContentsMargins(4, 2, 4, 2);
        layout->addStretch();
    }
    host_->installEventFilter(this);
}

void classDropDown::Reset()
{
    for (Entry &e : lists_)
        delete e.box.data(); // the host owns the box; removing it from the window
    lists_.clear();
}

bool classDropDown::Visible() const
{
    return host_ && !host_->isHidden();
}

void classDropDown::setVisible(bool on)
{
    if (host_)
        host_->setVisible(on);
}

int classDropDown::AddDropDown(const QString &key, const QString &caption, const QString &toolTip, int widthTwips)
{
    auto *combo = new QComboBox;
    combo->setFixedWidth(twipsToPixels(widthTwips));
    addList(key, caption, toolTip, combo);
    Entry &added = lists_.back();
    added.combo = combo;
    connect(combo, &QComboBox::activated, this, [this, key] { emit selectionChanged(key); });
    return Count() - 1;
}

int classDropDown::AddListBox(const QString &key, const QString &caption, const QString &toolTip, int widthTwips,
                              int heightTwips, bool multiSelect)
{
    auto *list = new QListWidget;
    list->setFixedSize(twipsToPixels(widthTwips), twipsToPixels(heightTwips));
    list->setSelectionMode(multiSelect ? QAbstractItemView::MultiSelection : QAbstractItemView::SingleSelection);
    addList(key, caption, toolTip, list);
    lists_.back().listBox = list;
    connect(list, &QListWidget::itemSelectionChanged, this, [this, key] {
        if (!updating_)
            emit selectionChanged(key);
    });
    return Count() - 1;
}

void classDropDown::addList(const QString &key, const QString &caption, const QString &toolTip, QWidget *control)
{
    if (key.isEmpty() || !host_) {
        delete control;
        throw WrapperError(invalidPropertyValueError, source("AddDropDown"), invalidKeyText());
    }
    if (std::any_of(lists_.begin(), lists_.end(), [&](const Entry &e) { return e.key == key; })) {
        delete control;
        throw WrapperError(duplicateKeyError, source("AddDropDown"), duplicateKeyText());
    }
    auto *box = new QWidget(host_);
    auto *layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    auto *label = new QLabel(caption, box);
    label->setBuddy(control);
    layout->addWidget(label);
    layout->addWidget(control);
    control->setParent(box);
    control->setObjectName(key);
    control->setToolTip(toolTip);
    auto *hostLayout = qobject_cast<QBoxLayout *>(host_->layout());
    if (hostLayout)
        hostLayout->insertWidget(hostLayout->count() - 1, box); // before the closing stretch
    Entry e;
    e.key = key;
    e.box = box;
    e.label = label;
    lists_.push_back(e);
}

void classDropDown::Percentage(const QString &list, int percent)
{
    Entry &found = entry(list, "Percentage");
    if (percent < 1 || percent > 100)
        throw WrapperError(invalidPropertyValueError, source("Percentage"), QStringLiteral("Invalid property value"));
    found.percent = percent;
    applyPercentages();
}

void classDropDown::applyPercentages()
{
    if (!host_)
        return;
    const QMargins margins =
        host_->contentsMargins() + (host_->layout() ? host_->layout()->contentsMargins() : QMargins());
    const int width = host_->width() - margins.left() - margins.right();
    for (const Entry &e : lists_) {
        if (e.percent > 0)
            control(e.key)->setFixedWidth(std::max(1, width * e.percent / 100));
    }
}

QWidget *classDropDown::control(const QString &list) const
{
    const Entry &e = entry(list, "control");
    return e.combo ? static_cast<QWidget *>(e.combo.data()) : e.listBox.data();
}

QLabel *classDropDown::captionLabel(const QString &list) const
{
    return entry(list, "captionLabel").label;
}

int classDropDown::KeyToIndex(const QString &list, const QString &itemKey) const
{
    const Entry &e = entry(list, "KeyToIndex");
    for (int i = 0; i < ListCount(list); ++i) {
        const QVariant key = e.combo ? e.combo->itemData(i, keyRole) : e.listBox->item(i)->data(keyRole);
        if (key.toString() == itemKey)
            return i;
    }
    return -1;
}

void classDropDown::Clear(const QString &list)
{
    const Entry &e = entry(list, "Clear");
    const QSignalBlocker blockCombo(e.combo.data());
    updating_ = true;
    if (e.combo)
        e.combo->clear();
    else
        e.listBox->clear();
    updating_ = false;
}

void classDropDown::AddItem(const QString &list, const QString &itemKey, const QString &text, qint64 itemData)
{
    const Entry &e = entry(list, "AddItem");
    if (e.combo) {
        const QSignalBlocker block(e.combo.data());
        const int before = e.combo->currentIndex(); // adding never picks an entry
        e.combo->addItem(text);
        const int at = e.combo->count() - 1;
        e.combo->setItemData(at, itemKey, keyRole);
        e.combo->setItemData(at, itemData, dataRole);
        e.combo->setCurrentIndex(before);
        return;
    }
    auto *item = new QListWidgetItem(text, e.listBox);
    item->setData(keyRole, itemKey);
    item->setData(dataRole, itemData);
}

void classDropDown::AddItemSchedule(const QString &list, const QString &itemKey, const QString &name,
                                    const QString &status, qint64 itemData)
{
    const formPadWidth measure(control(list)->font());
    AddItem(list, itemKey, measure.PadWidth(name, scheduleWidth) + scheduleSuffix(status), itemData);
}

QString classDropDown::List(const QString &list, int index) const
{
    const Entry &e = entry(list, "List.Get");
    const int i = checkedIndex(e, index, "List.Get");
    return e.combo ? e.combo->itemText(i) : e.listBox->item(i)->text();
}

void classDropDown::setList(const QString &list, int index, const QString &text)
{
    const Entry &e = entry(list, "List.Let");
    const int i = checkedIndex(e, index, "List.Let");
    if (e.combo)
        e.combo->setItemText(i, text);
    else
        e.listBox->item(i)->setText(text);
}

qint64 classDropDown::ItemData(const QString &list, int index) const
{
    const Entry &e = entry(list, "ItemData.Get");
    const int i = checkedIndex(e, index, "ItemData.Get");
    return (e.combo ? e.combo->itemData(i, dataRole) : e.listBox->item(i)->data(dataRole)).toLongLong();
}

void classDropDown::setItemData(const QString &list, int index, qint64 value)
{
    const Entry &e = entry(list, "ItemData.Let");
    const int i = checkedIndex(e, index, "ItemData.Let");
    if (e.combo)
        e.combo->setItemData(i, value, dataRole);
    else
        e.listBox->item(i)->setData(dataRole, value);
}

QString classDropDown::ItemKey(const QString &list, int index) const
{
    const Entry &e = entry(list, "ItemKey");
    const int i = checkedIndex(e, index, "ItemKey");
    return (e.combo ? e.combo->itemData(i, keyRole) : e.listBox->item(i)->data(keyRole)).toString();
}

int classDropDown::ListIndex(const QString &list) const
{
    const Entry &e = entry(list, "ListIndex.Get");
    return e.combo ? e.combo->currentIndex() : e.listBox->currentRow();
}

void classDropDown::setListIndex(const QString &list, int index)
{
    const Entry &e = entry(list, "ListIndex.Let");
    if (index != -1)
        checkedIndex(e, index, "ListIndex.Let");
    if (e.combo) {
        e.combo->setCurrentIndex(index);
        return;
    }
    updating_ = true;
    e.listBox->setCurrentRow(index);
    updating_ = false;
}

void classDropDown::RemoveItem(const QString &list, int index)
{
    const Entry &e = entry(list, "RemoveItem");
    const int i = checkedIndex(e, index, "RemoveItem");
    if (e.combo)
        e.combo->removeItem(i);
    else
        delete e.listBox->takeItem(i);
}

int classDropDown::ListCount(const QString &list) const
{
    const Entry &e = entry(list, "ListCount");
    return e.combo ? e.combo->count() : e.listBox->count();
}

int classDropDown::SelListCount(const QString &list) const
{
    const Entry &e = entry(list, "SelListCount");
    if (e.combo)
        return e.combo->currentIndex() >= 0 ? 1 : 0;
    return int(e.listBox->selectedItems().size());
}

bool classDropDown::Selected(const QString &list, int index) const
{
    const Entry &e = entry(list, "Selected.Get");
    const int i = checkedIndex(e, index, "Selected.Get");
    return e.combo ? e.combo->currentIndex() == i : e.listBox->item(i)->isSelected();
}

void classDropDown::setSelected(const QString &list, int index, bool on)
{
    const Entry &e = entry(list, "Selected.Let");
    const int i = checkedIndex(e, index, "Selected.Let");
    if (e.combo) {
        if (on)
            e.combo->setCurrentIndex(i);
        return;
    }
    updating_ = true;
    e.listBox->item(i)->setSelected(on);
    updating_ = false;
}

QString classDropDown::GetSelectedByKey(const QString &list) const
{
    const int index = ListIndex(list);
    return index < 0 ? QString() : ItemKey(list, index);
}

int classDropDown::FindItemData(const QString &list, qint64 value) const
{
    for (int i = 0; i < ListCount(list); ++i) {
        if (ItemData(list, i) == value)
            return i;
    }
    return -1;
}

bool classDropDown::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == host_) {
        if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
            emit visibilityChanged();
        else if (event->type() == QEvent::Resize) {
            applyPercentages();
            emit resized();
        }
    }
    return false;
}

const classDropDown::Entry &classDropDown::entry(const QString &list, const char *member) const
{
    const auto found = std::find_if(lists_.begin(), lists_.end(), [&](const Entry &e) { return e.key == list; });
    if (found == lists_.end() || (!found->combo && !found->listBox))
        throw WrapperError(invalidPropertyValueError, source(member), invalidKeyText());
    return *found;
}

int classDropDown::checkedIndex(const Entry &e, int index, const char *member) const
{
    const int count = e.combo ? e.combo->count() : e.listBox->count();
    if (index < 0 || index >= count)
        throw WrapperError(invalidArrayIndexError, source(member), QStringLiteral("Invalid list index value"));
    return index;
}
