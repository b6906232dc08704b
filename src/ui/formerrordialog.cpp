#include "formerrordialog.h"

#include "dialogframe.h"
#include "formerrorlog.h"
#include "twips.h"

#include "errobject.h"
#include "messageservice.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

#include <algorithm>

namespace {

constexpr int margin = 240;
constexpr int dialogWidth = 6000;
constexpr int iconSize = 480;
constexpr int buttonWidth = 1200;
constexpr int buttonHeight = 375;

QIcon iconForMode(int mode)
{
    switch (mode) {
    case 1:
        return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
    case 2:
        return QApplication::style()->standardIcon(QStyle::SP_MessageBoxCritical);
    case 3:
        return QApplication::style()->standardIcon(QStyle::SP_MessageBoxQuestion);
    case 4:
        return QApplication::style()->standardIcon(QStyle::SP_MessageBoxInformation);
    default:
        return {};
    }
}

} // namespace

formErrorDialog::formErrorDialog(QWidget *parent) : QDialog(parent)
{
    setDialogFrame(*this);
    icon_ = new QLabel(this);
    icon_->setObjectName(QStringLiteral("imgIcon"));
    message_ = new QLabel(this);
    message_->setObjectName(QStringLiteral("lblMessage"));
    message_->setWordWrap(true);
    message_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    ok_ = new QPushButton(QStringLiteral("OK"), this);
    ok_->setObjectName(QStringLiteral("cmdOK"));
    ok_->setDefault(true);
    viewLog_ = new QPushButton(QStringLiteral("&View Log"), this);
    viewLog_->setObjectName(QStringLiteral("cmdViewLog"));
    connect(ok_, &QPushButton::clicked, this, &QDialog::hide);
    connect(viewLog_, &QPushButton::clicked, this, [this] {
        if (log_)
            log_->ShowDialog();
    });
    Prepare(0, QString(), QString(), false);
}

void formErrorDialog::Prepare(int mode, const QString &title, const QString &message, bool showLog)
{
    mode_ = mode;
    const QIcon icon = iconForMode(mode);
    icon_->setPixmap(icon.isNull() ? QPixmap() : icon.pixmap(twipsToPixels(iconSize)));
    icon_->setVisible(!icon.isNull());
    const QString caption = title.trimmed();
    setWindowTitle(caption.isEmpty() ? QStringLiteral("Program Error") : caption);
    message_->setText(message);
    viewLog_->setVisible(showLog);
    viewLog_->setEnabled(showLog);
    layOut();
}

void formErrorDialog::Display(int mode, const QString &title, const QString &message, bool showLog)
{
    Prepare(mode, title, message, showLog);
    messages().beep();
    exec();
}

ErrorDialogRequest formErrorDialog::criticalRequest()
{
    return {1, QLatin1String(applicationTitle),
            QStringLiteral("Unable to complete requested command.  Please see error log for details.  If error occurs "
                           "again please contact technical support."),
            true};
}

void formErrorDialog::DisplayCritical()
{
    const ErrorDialogRequest request = criticalRequest();
    Display(request.mode, request.title, request.text, request.showLog);
}

QString formErrorDialog::Message() const
{
    return message_->text();
}

void formErrorDialog::layOut()
{
    const int inner = twipsToPixels(dialogWidth);
    const int gap = twipsToPixels(margin);
    int left = gap;
    int width = inner - 2 * gap;
    if (icon_->isVisibleTo(this)) {
        icon_->setGeometry(gap, gap, twipsToPixels(iconSize), twipsToPixels(iconSize));
        left = icon_->geometry().right() + 1 + gap;
        width = inner - left - gap;
    }
    const int textHeight = std::max(message_->heightForWidth(width), twipsToPixels(iconSize));
    message_->setGeometry(left, gap, width, textHeight);
    const int buttonsTop = gap + textHeight + gap;
    const int w = twipsToPixels(buttonWidth);
    const int h = std::max(twipsToPixels(buttonHeight), ok_->sizeHint().height());
    ok_->setGeometry(inner - gap - w, buttonsTop, w, h);
    viewLog_->setGeometry(inner - 2 * (gap + w) + gap / 2, buttonsTop, w + gap / 2, h);
    setFixedSize(inner, buttonsTop + h + gap);
}
