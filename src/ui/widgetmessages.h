#pragma once

#include "messageservice.h"

#include <QPointer>

#include "formerrordialog.h"

// The message service of the running program: message boxes, input boxes,
// the save dialog and the application's error dialog on screen.
class WidgetMessages final : public MessageService {
public:
    explicit WidgetMessages(formErrorDialog *errorDialog = nullptr);

    MsgAnswer messageBox(const MessageRequest &request) override;
    std::optional<QString> inputBox(const QString &prompt, const QString &title, const QString &defaultText) override;
    std::optional<SaveFileAnswer> saveFileName(const SaveFileRequest &request) override;
    void errorDialog(const ErrorDialogRequest &request) override;
    void beep() override;

private:
    QPointer<formErrorDialog> errorDialog_;
};
