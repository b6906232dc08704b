#include "budgetapplication.h"
#include "formerrordialog.h"
#include "formerrorlog.h"
#include "wrappererror.h"

#include "guiapplication.h"
#include "recordingmessages.h"

#include <QMouseEvent>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <utility>

namespace {

class BoundaryTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override { guiApplication().setErrorLog(&log); }
    void TearDown() override { guiApplication().setErrorLog(nullptr); }

    void click(QWidget &widget)
    {
        const QPointF at(widget.width() / 2.0, widget.height() / 2.0);
        QMouseEvent press(QEvent::MouseButtonPress, at, widget.mapToGlobal(at), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QMouseEvent release(QEvent::MouseButtonRelease, at, widget.mapToGlobal(at), Qt::LeftButton, Qt::NoButton,
                            Qt::NoModifier);
        QApplication::sendEvent(&widget, &press);
        QApplication::sendEvent(&widget, &release);
    }

    std::vector<ErrorDialogRequest> errorDialogs() const
    {
        std::vector<ErrorDialogRequest> shownDialogs;
        for (const auto &s : shown->shown()) {
            if (s.kind == RecordingMessages::Shown::Kind::ErrorDialog)
                shownDialogs.push_back(s.error);
        }
        return shownDialogs;
    }

    ScopedMessages shown;
    formErrorLog log;
};

TEST_F(BoundaryTest, AnErrorFromAClickedSlotIsShownLoggedAndTheProgramGoesOn)
{
    QPushButton button("Go");
    button.setObjectName("cmdGo");
    button.resize(80, 30);
    button.show();
    int clicks = 0;
    QObject::connect(&button, &QPushButton::clicked, [&] {
        if (++clicks == 1)
            throw WrapperError(invalidPropertyValueError, "classGrid.SetCell", "Invalid property key value");
    });

    click(button);

    const auto dialogs = errorDialogs();
    ASSERT_EQ(dialogs.size(), 1u);
    EXPECT_EQ(dialogs[0].mode, 1);
    EXPECT_EQ(dialogs[0].title, "Kora-Budget");
    EXPECT_TRUE(dialogs[0].showLog);
    EXPECT_TRUE(dialogs[0].text.startsWith("Unable to complete requested command.  Please see error log"));
    ASSERT_EQ(log.Count(), 1);
    EXPECT_EQ(log.Row(0).mid(1), QStringList({"classGrid", "SetCell", "380", "Invalid property key value"}));

    // The button and the loop still work.
    click(button);
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(log.Count(), 1);
}

TEST_F(BoundaryTest, ErrorsFromTimersAndOtherExceptionsAreCaughtToo)
{
    QObject context;
    context.setObjectName("worker");
    bool ranAfter = false;
    QTimer::singleShot(0, &context, [] { throw RuntimeError(13, "Type mismatch"); });
    QTimer::singleShot(0, &context, [] { throw std::out_of_range("vector index"); });
    QTimer::singleShot(0, &context, [] { throw 42; });
    QTimer::singleShot(0, &context, [&] { ranAfter = true; });
    for (int i = 0; i < 20 && !ranAfter; ++i)
        QApplication::processEvents(QEventLoop::AllEvents, 50);

    EXPECT_TRUE(ranAfter);
    ASSERT_EQ(log.Count(), 3);
    EXPECT_EQ(log.Row(0)[3], "13");
    EXPECT_EQ(log.Row(0)[4], "Type mismatch");
    EXPECT_EQ(log.Row(1)[4], "vector index");
    EXPECT_EQ(log.Row(2)[4], "Unknown error");
    EXPECT_EQ(errorDialogs().size(), 3u);
}

// A service whose dialog, while open, meets another failing event (a handler
// that fails on every repaint does that).
class ReenteringMessages final : public MessageService {
public:
    std::function<void()> whileOpen;
    int dialogs = 0;
    MsgAnswer messageBox(const MessageRequest &request) override { return request.defaultAnswer; }
    std::optional<QString> inputBox(const QString &, const QString &, const QString &) override { return {}; }
    void errorDialog(const ErrorDialogRequest &) override
    {
        ++dialogs;
        if (whileOpen)
            whileOpen();
    }
    void beep() override {}
};

TEST_F(BoundaryTest, AnErrorWhileTheDialogIsOpenIsLoggedWithoutAnotherDialog)
{
    auto service = std::make_unique<ReenteringMessages>();
    ReenteringMessages &reentering = *service;
    auto previous = setMessageService(std::move(service));
    QPushButton button("Go");
    button.resize(80, 30);
    QObject::connect(&button, &QPushButton::clicked, [] { throw RuntimeError(5, "Invalid procedure call"); });
    bool reentered = false;
    reentering.whileOpen = [&] {
        if (!std::exchange(reentered, true))
            click(button);
    };
    click(button);
    const auto ours = setMessageService(std::move(previous)); // still read below

    EXPECT_EQ(reentering.dialogs, 1);
    EXPECT_EQ(log.Count(), 2);
}

} // namespace
