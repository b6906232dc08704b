#pragma once

#include "messageservice.h"

#include <deque>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

// A MessageService for tests: answers from a queue the test fills beforehand
// and records everything that was shown. Install it with ScopedMessages.
class RecordingMessages final : public MessageService {
public:
    struct Shown {
        enum class Kind { MessageBox, InputBox, ErrorDialog, Beep } kind;
        MessageRequest message;      // MessageBox, and InputBox (prompt in text)
        ErrorDialogRequest error;    // ErrorDialog
    };

    // Answers are taken in order; with none queued a box takes its default
    // answer and an input box is cancelled.
    void answer(MsgAnswer a) { answers_.emplace_back(a); }
    void answerText(std::optional<QString> text) { answers_.emplace_back(std::move(text)); }

    const std::vector<Shown> &shown() const { return shown_; }
    void clear() { shown_.clear(); answers_.clear(); }

    MsgAnswer messageBox(const MessageRequest &request) override
    {
        shown_.push_back({Shown::Kind::MessageBox, request, {}});
        if (!answers_.empty() && std::holds_alternative<MsgAnswer>(answers_.front())) {
            const MsgAnswer a = std::get<MsgAnswer>(answers_.front());
            answers_.pop_front();
            return a;
        }
        return request.defaultAnswer;
    }
    std::optional<QString> inputBox(const QString &prompt, const QString &title, const QString &defaultText) override
    {
        MessageRequest request;
        request.title = title;
        request.text = prompt;
        shown_.push_back({Shown::Kind::InputBox, request, {}});
        (void)defaultText;
        if (!answers_.empty() && std::holds_alternative<std::optional<QString>>(answers_.front())) {
            auto text = std::get<std::optional<QString>>(answers_.front());
            answers_.pop_front();
            return text;
        }
        return std::nullopt;
    }
    void errorDialog(const ErrorDialogRequest &request) override
    {
        shown_.push_back({Shown::Kind::ErrorDialog, {}, request});
    }
    void beep() override { shown_.push_back({Shown::Kind::Beep, {}, {}}); }

private:
    std::deque<std::variant<MsgAnswer, std::optional<QString>>> answers_;
    std::vector<Shown> shown_;
};

// Installs a RecordingMessages for the lifetime of the guard.
class ScopedMessages {
public:
    ScopedMessages()
    {
        auto recorder = std::make_unique<RecordingMessages>();
        recorder_ = recorder.get();
        previous_ = setMessageService(std::move(recorder));
    }
    ~ScopedMessages() { setMessageService(std::move(previous_)); }
    ScopedMessages(const ScopedMessages &) = delete;
    ScopedMessages &operator=(const ScopedMessages &) = delete;
    RecordingMessages *operator->() const { return recorder_; }
    RecordingMessages &get() const { return *recorder_; }

private:
    RecordingMessages *recorder_ = nullptr; // owned by the installed service slot
    std::unique_ptr<MessageService> previous_;
};
