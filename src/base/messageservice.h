#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

// Every message box, input box and error dialog the program shows goes through
// the one MessageService installed here. The GUI installs a widget-backed
// service; tests install one that answers from a script and records what was
// shown; the default (no GUI) writes to stderr and takes the default answer.
enum class MsgButtons { OK, OKCancel, YesNo, YesNoCancel, RetryCancel, AbortRetryIgnore };
enum class MsgIcon { None, Critical, Question, Exclamation, Information };
enum class MsgAnswer { OK, Cancel, Yes, No, Abort, Retry, Ignore };

struct MessageRequest {
    QString title;
    QString text;
    MsgButtons buttons = MsgButtons::OK;
    MsgIcon icon = MsgIcon::None;
    MsgAnswer defaultAnswer = MsgAnswer::OK;
};

// The error dialog's request: mode 0 no icon, 1 error or warning, 3 and 4 the
// further icons (4 for what the fund-accounting product returned).
struct ErrorDialogRequest {
    int mode = 0;
    QString title;
    QString text;
    bool showLog = false;
};

// A save dialog: the name typed or picked and the filter chosen with it
// (empty when the service offers no filters).
struct SaveFileRequest {
    QString title;
    QString prompt;
    QString defaultName;
    QStringList filters;
};
struct SaveFileAnswer {
    QString path;
    QString filter;
};

class MessageService {
public:
    virtual ~MessageService() = default;
    virtual MsgAnswer messageBox(const MessageRequest &request) = 0;
    // nullopt when the user cancels; an empty string when OK is pressed on an empty field.
    virtual std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                            const QString &defaultText) = 0;
    // nullopt when the user cancels. Unless a service shows a file dialog,
    // the name is asked for with an input box and no filter comes back.
    virtual std::optional<SaveFileAnswer> saveFileName(const SaveFileRequest &request);
    virtual void errorDialog(const ErrorDialogRequest &request) = 0;
    virtual void beep() = 0;
};

// The installed service; never null.
MessageService &messages();
// Installs a service and returns the one it replaces (so a test can restore it).
std::unique_ptr<MessageService> setMessageService(std::unique_ptr<MessageService> service);
