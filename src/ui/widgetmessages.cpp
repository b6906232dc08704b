#include "widgetmessages.h"

#include "formerrordialog.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>

#include <utility>
#include <vector>

namespace {

using Pair = std::pair<MsgAnswer, QMessageBox::StandardButton>;

const std::vector<Pair> &answerButtons()
{
    static const std::vector<Pair> pairs{
        {MsgAnswer::OK, QMessageBox::Ok},         {MsgAnswer::Cancel, QMessageBox::Cancel},
        {MsgAnswer::Yes, QMessageBox::Yes},       {MsgAnswer::No, QMessageBox::No},
        {MsgAnswer::Abort, QMessageBox::Abort},   {MsgAnswer::Retry, QMessageBox::Retry},
        {MsgAnswer::Ignore, QMessageBox::Ignore},
    };
    return pairs;
}

QMessageBox::StandardButtons buttonsFor(MsgButtons buttons)
{
    switch (buttons) {
    case MsgButtons::OK:
        return QMessageBox::Ok;
    case MsgButtons::OKCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case MsgButtons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case MsgButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MsgButtons::RetryCancel:
        return QMessageBox::Retry | QMessageBox::Cancel;
    case MsgButtons::AbortRetryIgnore:
        return QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon iconFor(MsgIcon icon)
{
    switch (icon) {
    case MsgIcon::Critical:
        return QMessageBox::Critical;
    case MsgIcon::Question:
        return QMessageBox::Question;
    case MsgIcon::Exclamation:
        return QMessageBox::Warning;
    case MsgIcon::Information:
        return QMessageBox::Information;
    case MsgIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

} // namespace

WidgetMessages::WidgetMessages(formErrorDialog *errorDialog) : errorDialog_(errorDialog)
{
}

MsgAnswer WidgetMessages::messageBox(const MessageRequest &request)
{
    QMessageBox box(iconFor(request.icon), request.title, request.text, buttonsFor(request.buttons),
                    QApplication::activeWindow());
    for (const auto &[answer, button] : answerButtons()) {
        if (answer == request.defaultAnswer && box.button(button))
            box.setDefaultButton(button);
    }
    const auto pressed = static_cast<QMessageBox::StandardButton>(box.exec());
    for (const auto &[answer, button] : answerButtons()) {
        if (button == pressed)
            return answer;
    }
    // Closed with the window's close box: the box's escape answer.
    return request.buttons == MsgButtons::YesNo ? MsgAnswer::No
           : request.buttons == MsgButtons::OK  ? MsgAnswer::OK
                                                : MsgAnswer::Cancel;
}

std::optional<QString> WidgetMessages::inputBox(const QString &prompt, const QString &title, const QString &defaultText)
{
    bool ok = false;
    const QString text =
        QInputDialog::getText(QApplication::activeWindow(), title, prompt, QLineEdit::Normal, defaultText, &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

std::optional<SaveFileAnswer> WidgetMessages::saveFileName(const SaveFileRequest &request)
{
    QString filter = request.filters.value(0);
    const QString path = QFileDialog::getSaveFileName(QApplication::activeWindow(), request.title, request.defaultName,
                                                      request.filters.join(QStringLiteral(";;")), &filter);
    if (path.isEmpty())
        return std::nullopt;
    return SaveFileAnswer{path, filter};
}

void WidgetMessages::errorDialog(const ErrorDialogRequest &request)
{
    if (errorDialog_) {
        errorDialog_->Display(request.mode, request.title, request.text, request.showLog);
        return;
    }
    formErrorDialog dialog(QApplication::activeWindow());
    dialog.Display(request.mode, request.title, request.text, request.showLog);
}

void WidgetMessages::beep()
{
    QApplication::beep();
}
