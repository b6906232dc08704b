#include "formerrordialog.h"
#include "formerrorlog.h"
#include "twips.h"
#include "widgetmessages.h"

#include "guiapplication.h"
#include "recordingmessages.h"

#include <QApplication>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPrinter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

class ErrorLogTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override { guiApplication(); }
    ScopedMessages shown;
    formErrorLog log;
};

TEST_F(ErrorLogTest, KeepsTheNewestEntriesUpToItsMaximum)
{
    EXPECT_EQ(log.MaxEntries(), 100);
    for (int i = 1; i <= 101; ++i)
        log.AddError("modMain", "Load", i, QString("error %1").arg(i));
    EXPECT_EQ(log.Count(), 100);
    EXPECT_EQ(log.Row(0)[4], "error 2");
    EXPECT_EQ(log.Row(99).mid(1), QStringList({"modMain", "Load", "101", "error 101"}));

    log.setMaxEntries(3);
    EXPECT_EQ(log.Count(), 3);
    EXPECT_EQ(log.Row(0)[3], "99");
    for (const int refused : {0, -7}) {
        log.setMaxEntries(refused);
        EXPECT_EQ(log.MaxEntries(), 100) << refused;
    }
}

TEST_F(ErrorLogTest, PrintsToTheChosenPrinter)
{
    QTemporaryDir dir;
    const QString pdf = dir.filePath("log.pdf");
    log.setPrinterFactory([pdf] {
        auto printer = std::make_unique<QPrinter>();
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(pdf);
        return printer;
    });

    log.findChild<QPushButton *>("cmdPrint")->click(); // nothing to print: a beep
    ASSERT_EQ(shown->shown().size(), 1u);
    EXPECT_EQ(shown->shown()[0].kind, RecordingMessages::Shown::Kind::Beep);
    EXPECT_FALSE(QFileInfo::exists(pdf));

    for (int i = 0; i < 120; ++i) // more than one page
        log.AddError("clsProposal", "Retrieve", 999, "Record not Found.");
    log.findChild<QPushButton *>("cmdPrint")->click();
    EXPECT_GT(QFileInfo(pdf).size(), 1000);
    EXPECT_EQ(shown->shown().back().message.text, "Done printing.");
    EXPECT_EQ(shown->shown().back().message.title, "Print Error Log");
}

TEST_F(ErrorLogTest, ClearingAsksFirst)
{
    log.findChild<QPushButton *>("cmdClear")->click();
    EXPECT_EQ(shown->shown().back().kind, RecordingMessages::Shown::Kind::Beep);

    log.AddError("m", "p", 1, "d");
    shown->answer(MsgAnswer::No);
    log.Clear();
    EXPECT_EQ(log.Count(), 1);
    const MessageRequest &asked = shown->shown().back().message;
    EXPECT_EQ(asked.text, "Are you sure?");
    EXPECT_EQ(asked.title, "Clear error log");
    EXPECT_EQ(asked.buttons, MsgButtons::YesNo);
    EXPECT_EQ(asked.defaultAnswer, MsgAnswer::No);

    shown->answer(MsgAnswer::Yes);
    log.Clear();
    EXPECT_EQ(log.Count(), 0);
}

class ErrorDialogTest : public ::testing::Test {
protected:
    GuiApplicationGuard app;
    void SetUp() override { guiApplication(); }
    ScopedMessages shown;
    formErrorDialog dialog;
};

TEST_F(ErrorDialogTest, ABlankTitleReadsProgramError)
{
    for (const auto &[given, shown] : {std::pair("   ", "Program Error"), std::pair("", "Program Error"),
                                       std::pair("  Active Proposal ", "Active Proposal")}) {
        dialog.Prepare(1, given, "x", false);
        EXPECT_EQ(dialog.windowTitle(), shown) << given;
    }
}

TEST_F(ErrorDialogTest, TheMessageMakesRoomForTheIcon)
{
    const int gap = twipsToPixels(240);
    dialog.Prepare(1, "t", "Error reading Proposal! 4Key value not found.", true);
    const QLabel *icon = dialog.iconBox();
    const QLabel *message = dialog.messageLabel();
    EXPECT_FALSE(icon->isHidden());
    EXPECT_EQ(message->x(), icon->geometry().right() + 1 + gap);
    EXPECT_EQ(message->x() + message->width() + gap, twipsToPixels(6000));
    EXPECT_FALSE(dialog.findChild<QPushButton *>("cmdViewLog")->isHidden());
    EXPECT_EQ(dialog.IconMode(), 1);

    dialog.Prepare(0, "t", "plain", false);
    EXPECT_TRUE(icon->isHidden());
    EXPECT_EQ(message->x(), gap);
    EXPECT_EQ(message->width(), twipsToPixels(6000) - 2 * gap);
    EXPECT_TRUE(dialog.findChild<QPushButton *>("cmdViewLog")->isHidden());
}

TEST_F(ErrorDialogTest, CriticalPointsToTheLogAndBeeps)
{
    QString title;
    QString text;
    bool viewLog = false;
    QTimer::singleShot(0, &dialog, [&] {
        title = dialog.windowTitle();
        text = dialog.Message();
        viewLog = !dialog.findChild<QPushButton *>("cmdViewLog")->isHidden();
        dialog.findChild<QPushButton *>("cmdOK")->click();
    });
    dialog.DisplayCritical();
    EXPECT_EQ(title, "Kora-Budget");
    EXPECT_EQ(text, "Unable to complete requested command.  Please see error log for details.  If error occurs "
                    "again please contact technical support.");
    EXPECT_TRUE(viewLog);
    ASSERT_EQ(shown->shown().size(), 1u);
    EXPECT_EQ(shown->shown()[0].kind, RecordingMessages::Shown::Kind::Beep);
    EXPECT_FALSE(dialog.isVisible());
}

// Answers the next message or input box that opens, as a user would.
void answerNextBox(std::function<void(QWidget *)> act)
{
    QTimer::singleShot(0, [act] {
        for (QWidget *top : QApplication::topLevelWidgets()) {
            if (top->isVisible() && (qobject_cast<QMessageBox *>(top) || qobject_cast<QInputDialog *>(top))) {
                act(top);
                return;
            }
        }
    });
}

TEST(WidgetMessagesTest, BoxesShowTheRequestAndGiveTheAnswer)
{
    GuiApplicationGuard app;
    WidgetMessages service;
    QString seenText;
    QString defaultButton;
    answerNextBox([&](QWidget *box) {
        auto *message = qobject_cast<QMessageBox *>(box);
        seenText = message->text();
        defaultButton = message->defaultButton()->text();
        message->button(QMessageBox::Yes)->click();
    });
    const MsgAnswer answer =
        service.messageBox({"Clear error log", "Are you sure?", MsgButtons::YesNo, MsgIcon::Question, MsgAnswer::No});
    EXPECT_EQ(answer, MsgAnswer::Yes);
    EXPECT_EQ(seenText, "Are you sure?");
    EXPECT_EQ(defaultButton, QMessageBox().addButton(QMessageBox::No)->text());

    answerNextBox([](QWidget *box) { qobject_cast<QInputDialog *>(box)->reject(); });
    EXPECT_EQ(service.inputBox("File?", "Grid Data Export", "c:\\data.csv"), std::nullopt);
    answerNextBox([](QWidget *box) { qobject_cast<QInputDialog *>(box)->accept(); });
    EXPECT_EQ(service.inputBox("File?", "Grid Data Export", "c:\\data.csv"), QString("c:\\data.csv"));
}

TEST(WidgetMessagesTest, ErrorsGoToTheApplicationsErrorDialog)
{
    GuiApplicationGuard app;
    formErrorDialog dialog;
    WidgetMessages service(&dialog);
    QString title;
    QTimer::singleShot(0, &dialog, [&] {
        title = dialog.windowTitle();
        dialog.findChild<QPushButton *>("cmdOK")->click();
    });
    service.errorDialog({4, "Error returned from Kora-Fund", "Cannot find current year.", false});
    EXPECT_EQ(title, "Error returned from Kora-Fund");
    EXPECT_EQ(dialog.IconMode(), 4);
}

} // namespace
