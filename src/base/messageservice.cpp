#include "messageservice.h"

#include <cstdio>

namespace {
class ConsoleMessages final : public MessageService {
public:
    MsgAnswer messageBox(const MessageRequest &request) override
    {
        write(request.title, request.text);
        return request.defaultAnswer;
    }
    std::optional<QString> inputBox(const QString &prompt, const QString &title, const QString &defaultText) override
    {
        write(title, prompt);
        return defaultText;
    }
    void errorDialog(const ErrorDialogRequest &request) override { write(request.title, request.text); }
    void beep() override {}

private:
    static void write(const QString &title, const QString &text)
    {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(title), qUtf8Printable(text));
    }
};

std::unique_ptr<MessageService> &installed()
{
    static std::unique_ptr<MessageService> service = std::make_unique<ConsoleMessages>();
    return service;
}
} // namespace

std::optional<SaveFileAnswer> MessageService::saveFileName(const SaveFileRequest &request)
{
    const auto name = inputBox(request.prompt, request.title, request.defaultName);
    if (!name)
        return std::nullopt;
    return SaveFileAnswer{*name, QString()};
}

MessageService &messages()
{
    return *installed();
}

std::unique_ptr<MessageService> setMessageService(std::unique_ptr<MessageService> service)
{
    if (!service)
        service = std::make_unique<ConsoleMessages>();
    installed().swap(service);
    return service;
}
