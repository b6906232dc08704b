#include "classtoolbar.h"

#include "storageimages.h"
#include "wrappererror.h"

#include <QAction>
#include <QEvent>
#include <QToolBar>

#include <algorithm>

namespace {

QString source(const char *member)
{
    return QStringLiteral("classToolbar.") + QLatin1String(member);
}

} // namespace

void classToolbarButton::Init(QAction *action, const QString &key, const QString &privKey)
{
    action_ = action;
    key_ = key;
    privKey_ = privKey;
}

bool classToolbarButton::Enabled() const
{
    return action_ && action_->isEnabled();
}

void classToolbarButton::setEnabled(bool on)
{
    if (action_)
        action_->setEnabled(on);
}

bool classToolbarButton::Visible() const
{
    return action_ && action_->isVisible();
}

void classToolbarButton::setVisible(bool on)
{
    if (action_)
        action_->setVisible(on);
}

void classToolbarButton::setImage(const QString &imageKey)
{
    image_ = imageKey;
    if (action_)
        action_->setIcon(formStorageImages::Image(imageKey));
}

QString classToolbarButton::ToolTipText() const
{
    return action_ ? action_->toolTip() : QString();
}

void classToolbarButton::setToolTipText(const QString &text)
{
    if (action_)
        action_->setToolTip(text);
}

ToolbarButtonStyle classToolbarButton::Style() const
{
    return action_ && action_->isCheckable() ? ToolbarButtonStyle::Check : ToolbarButtonStyle::Default;
}

void classToolbarButton::setStyle(ToolbarButtonStyle style)
{
    if (action_)
        action_->setCheckable(style == ToolbarButtonStyle::Check);
}

bool classToolbarButton::Value() const
{
    return action_ && action_->isChecked();
}

void classToolbarButton::setValue(bool pressed)
{
    if (action_)
        action_->setChecked(pressed);
}

classToolbar::classToolbar(QObject *parent) : QObject(parent)
{
}

classToolbar::~classToolbar() = default;

void classToolbar::Init(QToolBar *toolbar)
{
    toolbar_ = toolbar;
    toolbar_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolbar_->installEventFilter(this);
}

void classToolbar::ClearButtons()
{
    buttons_.clear();
    if (toolbar_)
        toolbar_->clear();
}

classToolbarButton &classToolbar::Item(int index)
{
    if (index < 1 || index > Count())
        throw WrapperError(invalidArrayIndexError, source("Item"), QStringLiteral("Invalid button index value"));
    return *buttons_[std::size_t(index - 1)];
}

classToolbarButton &classToolbar::Item(const QString &key)
{
    return button(key, "Item");
}

bool classToolbar::Visible() const
{
    return toolbar_ && !toolbar_->isHidden();
}

void classToolbar::setVisible(bool on)
{
    if (toolbar_)
        toolbar_->setVisible(on);
}

void classToolbar::AddSeparator()
{
    if (toolbar_)
        toolbar_->addSeparator();
}

classToolbarButton &classToolbar::AddButton(const QString &key, const QString &privKey, const QString &imageKey,
                                            const QString &toolTip, ToolbarButtonStyle style, const QString &caption)
{
    if (key.isEmpty() || !toolbar_)
        throw WrapperError(invalidPropertyValueError, source("AddButton"), invalidKeyText());
    if (std::any_of(buttons_.begin(), buttons_.end(), [&](const auto &b) { return b->Key() == key; }))
        throw WrapperError(duplicateKeyError, source("AddButton"), duplicateKeyText());
    QAction *action = toolbar_->addAction(caption.isEmpty() ? key : caption);
    action->setObjectName(key);
    auto added = std::make_unique<classToolbarButton>();
    added->Init(action, key, privKey);
    added->setImage(imageKey);
    added->setToolTipText(toolTip);
    added->setStyle(style);
    connect(action, &QAction::triggered, this, [this, key] { emit buttonClicked(key); });
    buttons_.push_back(std::move(added));
    return *buttons_.back();
}

bool classToolbar::ButtonEnabled(const QString &key) const
{
    return button(key, "ButtonEnabled.Get").Enabled();
}

void classToolbar::setButtonEnabled(const QString &key, bool on)
{
    button(key, "ButtonEnabled.Let").setEnabled(on);
}

bool classToolbar::ButtonValue(const QString &key) const
{
    return button(key, "ButtonValue.Get").Value();
}

void classToolbar::setButtonValue(const QString &key, bool pressed)
{
    button(key, "ButtonValue.Let").setValue(pressed);
}

bool classToolbar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == toolbar_) {
        if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
            emit visibilityChanged();
        else if (event->type() == QEvent::Resize)
            emit resized();
    }
    return false;
}

classToolbarButton &classToolbar::button(const QString &key, const char *member) const
{
    const auto found = std::find_if(buttons_.begin(), buttons_.end(), [&](const auto &b) { return b->Key() == key; });
    if (found == buttons_.end())
        throw WrapperError(invalidPropertyValueError, source(member), invalidKeyText());
    return **found;
}
