#include "classstatusbar.h"

#include "twips.h"
#include "wrappererror.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QStatusBar>

#include <algorithm>

namespace {

QString source(const char *member)
{
    return QStringLiteral("classStatusbar.") + QLatin1String(member);
}

Qt::Alignment qtAlignment(PanelAlignment alignment)
{
    switch (alignment) {
    case PanelAlignment::Centre:
        return Qt::AlignCenter;
    case PanelAlignment::Right:
        return Qt::AlignRight | Qt::AlignVCenter;
    case PanelAlignment::Left:
        break;
    }
    return Qt::AlignLeft | Qt::AlignVCenter;
}

// A text panel. Every panel but the first draws one line at its left, so
// neighbours are parted by a single divider.
class PanelLabel : public QLabel {
public:
    using QLabel::QLabel;
    void setDivider(bool on)
    {
        divider_ = on;
        update();
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QLabel::paintEvent(event);
        if (!divider_)
            return;
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(0, 0, 0, height() - 1);
    }

private:
    bool divider_ = false;
};

} // namespace

classStatusbar::classStatusbar(QObject *parent) : QObject(parent)
{
}

classStatusbar::~classStatusbar() = default;

void classStatusbar::Init(QStatusBar *bar)
{
    bar_ = bar;
    bar_->setSizeGripEnabled(false);
    bar_->installEventFilter(this);
    auto *progress = new QProgressBar(bar_);
    progress->setObjectName(QStringLiteral("Progress"));
    progress->setMaximumWidth(twipsToPixels(2400));
    progress->setTextVisible(false);
    progress->hide();
    bar_->addPermanentWidget(progress);
    progress_ = progress;
}

void classStatusbar::Reset()
{
    ClearPanels();
    HideProgress();
}

void classStatusbar::ClearPanels()
{
    for (Panel &p : panels_)
        delete p.label.data(); // the bar owns the label; deleting removes it
    panels_.clear();
    if (bar_)
        keepPanelsWhole();
}

void classStatusbar::RemovePanel(const QString &key)
{
    const int index = KeyToIndex(key);
    if (index == 0)
        throw WrapperError(invalidPropertyValueError, source("RemovePanel"), invalidKeyText());
    delete panels_[std::size_t(index - 1)].label.data();
    panels_.erase(panels_.begin() + index - 1);
    rebuild();
}

bool classStatusbar::Visible() const
{
    return bar_ && !bar_->isHidden();
}

void classStatusbar::setVisible(bool on)
{
    if (bar_)
        bar_->setVisible(on);
}

void classStatusbar::AddPanel(int index, const QString &key, const QString &tag, const QString &text,
                              PanelAlignment alignment, PanelAutoSize autoSize, int minWidthTwips,
                              const QString &toolTip)
{
    if (key.isEmpty() || !bar_)
        throw WrapperError(invalidPropertyValueError, source("AddPanel"), invalidKeyText());
    if (KeyToIndex(key) != 0)
        throw WrapperError(duplicateKeyError, source("AddPanel"), duplicateKeyText());
    if (index < 0 || index > Count() + 1)
        throw WrapperError(invalidArrayIndexError, source("AddPanel"), QStringLiteral("Invalid panel index value"));
    auto *label = new PanelLabel(text, bar_);
    label->setObjectName(key);
    label->setAlignment(qtAlignment(alignment));
    label->setToolTip(toolTip);
    // Keeps a panel sized to its text from running the text into its divider.
    label->setContentsMargins(4, 0, 4, 0);
    label->installEventFilter(this);
    const std::size_t at = index == 0 ? panels_.size() : std::size_t(index - 1);
    panels_.insert(panels_.begin() + std::ptrdiff_t(at),
                   Panel{key, tag, label, autoSize == PanelAutoSize::Spring ? 1 : 0, minWidthTwips});
    rebuild();
}

void classStatusbar::rebuild()
{
    // The bar keeps its widgets in insertion order, so a panel inserted in
    // the middle means laying all of them out again.
    for (const Panel &p : panels_)
        bar_->removeWidget(p.label);
    for (const Panel &p : panels_) {
        static_cast<PanelLabel *>(p.label.data())->setDivider(&p != &panels_.front());
        fitText(p);
        bar_->addWidget(p.label, p.stretch);
        p.label->show();
    }
    keepPanelsWhole();
}

// The window cannot be made narrower than the panels' texts.
void classStatusbar::keepPanelsWhole()
{
    bar_->setMinimumWidth(0);
    bar_->setMinimumWidth(bar_->minimumSizeHint().width());
}

// A panel is never narrower than its text, so the bar (and the window
// holding it) cannot be shrunk until a text is cut.
void classStatusbar::fitText(const Panel &p)
{
    p.label->setMinimumWidth(std::max(twipsToPixels(p.minTwips), p.label->minimumSizeHint().width()));
}

int classStatusbar::KeyToIndex(const QString &key) const
{
    const auto found = std::find_if(panels_.begin(), panels_.end(), [&](const Panel &p) { return p.key == key; });
    return found == panels_.end() ? 0 : int(found - panels_.begin()) + 1;
}

QString classStatusbar::PanelText(const QString &key) const
{
    return panel(key, "PanelText.Get").label->text();
}

void classStatusbar::setPanelText(const QString &key, const QString &text)
{
    const Panel &p = panel(key, "PanelText.Let");
    p.label->setText(text);
    fitText(p);
    keepPanelsWhole();
}

QString classStatusbar::PanelTooltip(const QString &key) const
{
    return panel(key, "PanelTooltip.Get").label->toolTip();
}

void classStatusbar::setPanelTooltip(const QString &key, const QString &text)
{
    panel(key, "PanelTooltip.Let").label->setToolTip(text);
}

QString classStatusbar::PanelTag(const QString &key) const
{
    return panel(key, "PanelTag").tag;
}

void classStatusbar::ShowProgress(int maximum)
{
    if (!progress_)
        return;
    progress_->setRange(0, std::max(0, maximum));
    progress_->setValue(0);
    progress_->show();
}

void classStatusbar::SetProgress(int value)
{
    if (progress_)
        progress_->setValue(std::clamp(value, progress_->minimum(), progress_->maximum()));
}

void classStatusbar::ShowStep(const QString &key, const QString &text, int done)
{
    setPanelText(key, text);
    SetProgress(done);
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void classStatusbar::HideProgress()
{
    if (progress_)
        progress_->hide();
}

bool classStatusbar::ProgressVisible() const
{
    return progress_ && !progress_->isHidden();
}

int classStatusbar::ProgressValue() const
{
    return progress_ ? progress_->value() : 0;
}

bool classStatusbar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == bar_) {
        if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
            emit visibilityChanged();
        else if (event->type() == QEvent::Resize)
            emit resized();
        return false;
    }
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto found =
            std::find_if(panels_.begin(), panels_.end(), [&](const Panel &p) { return p.label.data() == watched; });
        if (found != panels_.end())
            emit panelClicked(found->key);
    }
    return false;
}

const classStatusbar::Panel &classStatusbar::panel(const QString &key, const char *member) const
{
    const int index = KeyToIndex(key);
    if (index == 0)
        throw WrapperError(invalidPropertyValueError, source(member), invalidKeyText());
    return panels_[std::size_t(index - 1)];
}
