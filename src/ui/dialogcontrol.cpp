#include "dialogcontrol.h"

#include "classdropdown.h"
#include "classgrid.h"
#include "classstatusbar.h"
#include "classtoolbar.h"
#include "twips.h"
#include "wrappererror.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

QString source(const char *member)
{
    return QStringLiteral("classDialog.Control.") + QLatin1String(member);
}

// A caption label stacked over its field, as text boxes show them.
QWidget *captioned(QWidget &container, QLabel *&label, QWidget *field, const QString &caption)
{
    auto *outer = new QWidget(&container);
    auto *layout = new QVBoxLayout(outer);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    label = new QLabel(caption, outer);
    label->setVisible(!caption.isEmpty());
    label->setBuddy(field);
    layout->addWidget(label);
    field->setParent(outer);
    layout->addWidget(field);
    return outer;
}

} // namespace

QString inputMaskFromClassic(const QString &mask)
{
    static const QString qtSpecial = QStringLiteral("AaNnXx90Dd#HhBb><!\\[]{};");
    QString converted;
    for (const QChar c : mask) {
        switch (c.unicode()) {
        case '#':
            converted += QLatin1Char('9');
            break;
        case '?':
            converted += QLatin1Char('a');
            break;
        case 'A':
            converted += QLatin1Char('n');
            break;
        case '&':
            converted += QLatin1Char('x');
            break;
        default:
            if (qtSpecial.contains(c))
                converted += QLatin1Char('\\');
            converted += c;
        }
    }
    return converted;
}

DialogControl::DialogControl(DialogControlKind kind, const QString &name, const QString &caption, QWidget &container)
    : kind_(kind), name_(name)
{
    QLabel *label = nullptr;
    switch (kind) {
    case DialogControlKind::Label:
        outer_ = field_ = new QLabel(caption, &container);
        break;
    case DialogControlKind::TextBox: {
        auto *edit = new QLineEdit;
        field_ = edit;
        outer_ = captioned(container, label, edit, caption);
        edit->setMinimumWidth(twipsToPixels(600));
        break;
    }
    case DialogControlKind::ComboBox:
    case DialogControlKind::ListBox: {
        auto *host = new QWidget(&container);
        auto *layout = new QHBoxLayout(host);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addStretch();
        dropDown_ = std::make_unique<classDropDown>();
        dropDown_->Init(host);
        if (kind == DialogControlKind::ComboBox)
            dropDown_->AddDropDown(name, caption);
        else
            dropDown_->AddListBox(name, caption);
        outer_ = host;
        field_ = dropDown_->control(name);
        label = dropDown_->captionLabel(name);
        label->setVisible(!caption.isEmpty());
        delete layout->takeAt(layout->count() - 1); // no stretch: the field takes the control's width
        break;
    }
    case DialogControlKind::CheckBox:
        outer_ = field_ = new QCheckBox(caption, &container);
        break;
    case DialogControlKind::OptionButton:
        outer_ = field_ = new QRadioButton(caption, &container);
        break;
    case DialogControlKind::Frame:
        outer_ = field_ = new QGroupBox(caption, &container);
        break;
    case DialogControlKind::CommandButton:
        outer_ = field_ = new QPushButton(caption, &container);
        break;
    case DialogControlKind::Grid: {
        auto *outer = new QWidget(&container);
        auto *layout = new QVBoxLayout(outer);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        auto *view = new QTableView(outer);
        auto *totals = new QTableView(outer);
        layout->addWidget(view, 1);
        layout->addWidget(totals);
        grid_ = std::make_unique<classGrid>();
        grid_->Init(view, totals);
        outer_ = outer;
        field_ = view;
        break;
    }
    case DialogControlKind::Toolbar: {
        auto *bar = new QToolBar(&container);
        toolbar_ = std::make_unique<classToolbar>();
        toolbar_->Init(bar);
        outer_ = field_ = bar;
        break;
    }
    case DialogControlKind::StatusBar: {
        auto *bar = new QStatusBar(&container);
        statusbar_ = std::make_unique<classStatusbar>();
        statusbar_->Init(bar);
        outer_ = field_ = bar;
        break;
    }
    }
    caption_ = label;
    field_->setObjectName(name);
    if (outer_ != field_)
        outer_->setObjectName(name + QStringLiteral("_frame"));
    outer_->resize(outer_->sizeHint());
}

// The wrappers let go of their views before the widgets go.
DialogControl::~DialogControl() = default;

QString DialogControl::Caption() const
{
    if (caption_)
        return caption_->text();
    if (auto *label = qobject_cast<QLabel *>(field_))
        return label->text();
    if (auto *button = qobject_cast<QAbstractButton *>(field_))
        return button->text();
    if (auto *frame = qobject_cast<QGroupBox *>(field_))
        return frame->title();
    return {};
}

void DialogControl::setCaption(const QString &text)
{
    if (caption_) {
        caption_->setText(text);
        caption_->setVisible(!text.isEmpty());
    } else if (auto *label = qobject_cast<QLabel *>(field_)) {
        label->setText(text);
    } else if (auto *button = qobject_cast<QAbstractButton *>(field_)) {
        button->setText(text);
    } else if (auto *frame = qobject_cast<QGroupBox *>(field_)) {
        frame->setTitle(text);
    }
}

QString DialogControl::Text() const
{
    if (auto *edit = qobject_cast<QLineEdit *>(field_))
        return edit->text();
    if (dropDown_) {
        const int index = dropDown_->ListIndex(name_);
        return index < 0 ? QString() : dropDown_->List(name_, index);
    }
    return Caption();
}

void DialogControl::setText(const QString &text)
{
    if (auto *edit = qobject_cast<QLineEdit *>(field_)) {
        edit->setText(text);
        return;
    }
    requireKind(kind_ == DialogControlKind::Label, "Text.Let");
    setCaption(text);
}

void DialogControl::setMaxLength(int characters)
{
    auto *edit = qobject_cast<QLineEdit *>(field_);
    requireKind(edit != nullptr, "MaxLength");
    edit->setMaxLength(characters > 0 ? characters : 32767);
}

void DialogControl::setMask(const QString &mask)
{
    auto *edit = qobject_cast<QLineEdit *>(field_);
    requireKind(edit != nullptr, "Mask");
    edit->setInputMask(inputMaskFromClassic(mask));
}

int DialogControl::Left() const
{
    return pixelsToTwips(outer_->x());
}

int DialogControl::Top() const
{
    return pixelsToTwips(outer_->y());
}

int DialogControl::Width() const
{
    return pixelsToTwips(outer_->width());
}

int DialogControl::Height() const
{
    return pixelsToTwips(outer_->height());
}

void DialogControl::setLeft(int twips)
{
    outer_->move(twipsToPixels(twips), outer_->y());
}

void DialogControl::setTop(int twips)
{
    outer_->move(outer_->x(), twipsToPixels(twips));
}

void DialogControl::setWidth(int twips)
{
    outer_->resize(twipsToPixels(twips), outer_->height());
    if (dropDown_)
        field_->setFixedWidth(outer_->width());
}

void DialogControl::setHeight(int twips)
{
    outer_->resize(outer_->width(), twipsToPixels(twips));
    if (dropDown_ && kind_ == DialogControlKind::ListBox)
        field_->setFixedHeight(std::max(0, outer_->height() - (caption_->isVisible() ? caption_->height() : 0)));
}

void DialogControl::Move(int left, int top, int width, int height)
{
    setLeft(left);
    setTop(top);
    if (width >= 0)
        setWidth(width);
    if (height >= 0)
        setHeight(height);
}

void DialogControl::AddItem(const QString &text, const QString &key, qint64 itemData)
{
    requireKind(dropDown_ != nullptr, "AddItem");
    dropDown_->AddItem(name_, key.isEmpty() ? text : key, text, itemData);
}

int DialogControl::ListIndex() const
{
    requireKind(dropDown_ != nullptr, "ListIndex.Get");
    return dropDown_->ListIndex(name_);
}

void DialogControl::setListIndex(int index)
{
    requireKind(dropDown_ != nullptr, "ListIndex.Let");
    dropDown_->setListIndex(name_, index);
}

bool DialogControl::Value() const
{
    auto *button = qobject_cast<QAbstractButton *>(field_);
    requireKind(button && button->isCheckable(), "Value.Get");
    return button->isChecked();
}

void DialogControl::setValue(bool on)
{
    auto *button = qobject_cast<QAbstractButton *>(field_);
    requireKind(button && button->isCheckable(), "Value.Let");
    button->setChecked(on);
}

bool DialogControl::Enabled() const
{
    return field_->isEnabled();
}

void DialogControl::setEnabled(bool on)
{
    field_->setEnabled(on);
    if (caption_)
        caption_->setEnabled(on);
}

bool DialogControl::Visible() const
{
    return !outer_->isHidden();
}

void DialogControl::setVisible(bool on)
{
    outer_->setVisible(on);
}

void DialogControl::setLocked(bool on)
{
    if (auto *edit = qobject_cast<QLineEdit *>(field_))
        edit->setReadOnly(on);
    else
        field_->setEnabled(!on);
}

classGrid &DialogControl::Grid() const
{
    requireKind(grid_ != nullptr, "Grid");
    return *grid_;
}

classDropDown &DialogControl::DropDown() const
{
    requireKind(dropDown_ != nullptr, "DropDown");
    return *dropDown_;
}

classToolbar &DialogControl::Toolbar() const
{
    requireKind(toolbar_ != nullptr, "Toolbar");
    return *toolbar_;
}

classStatusbar &DialogControl::Statusbar() const
{
    requireKind(statusbar_ != nullptr, "Statusbar");
    return *statusbar_;
}

void DialogControl::requireKind(bool ok, const char *member) const
{
    if (!ok)
        throw WrapperError(438, source(member), QStringLiteral("Object doesn't support this property or method"));
}
