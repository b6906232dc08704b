#pragma once

#include "../storetest.h"

#include "classdialog.h"
#include "classgrid.h"
#include "guiapplication.h"
#include "proposalpanel.h"
#include "recordingmessages.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QTimer>

#include <functional>
#include <memory>

// A budget database per backend, the widgets' application and a message
// service that answers from a script, for the budget-figure windows.
class WindowTest : public StoreTest {
protected:
    void SetUp() override
    {
        guiApplication();
        StoreTest::SetUp();
    }
    void TearDown() override
    {
        dialog.reset(); // the window goes before its worker and the database
        worker.reset();
        StoreTest::TearDown();
    }

    // Builds the worker's window on the test database, as shown to the user.
    template <typename Worker, typename... Args> Worker &openWindow(Args &&...args)
    {
        return showWindow(std::make_unique<Worker>(db(), std::forward<Args>(args)...));
    }
    // The same for a worker the test has set up first.
    template <typename Worker> Worker &showWindow(std::unique_ptr<Worker> made)
    {
        dialog.reset();
        Worker &opened = *made;
        worker = std::move(made);
        dialog = std::make_unique<classDialog>(opened);
        dialog->Build();
        return opened;
    }
    classGrid &grid() const { return dialog->Control("AcctGrid").Grid(); }
    // What the main window's proposal panel was told.
    ProposalPanel panelRecorder()
    {
        return [this](const QString &text) { panel << text; };
    }

    // The messages and error dialogs shown, as "title|text".
    QStringList shownTexts() const
    {
        QStringList texts;
        for (const RecordingMessages::Shown &shown : recorder->shown()) {
            if (shown.kind == RecordingMessages::Shown::Kind::ErrorDialog)
                texts << shown.error.title + '|' + shown.error.text;
            else if (shown.kind == RecordingMessages::Shown::Kind::MessageBox)
                texts << shown.message.title + '|' + shown.message.text;
        }
        return texts;
    }

    // A toolbar button or command button pressed by the user.
    static void press(classDialog &dialog, const char *name)
    {
        if (auto *action = dialog.findChild<QAction *>(name))
            action->trigger();
        else
            dialog.findChild<QAbstractButton *>(name)->click();
    }

    // What a user's typing (text) or click on a check box (bool) does to a
    // cell: it becomes current and takes the value. False when the cell refused it.
    static bool userEdits(classGrid &grid, int row, const QString &key, const QVariant &value)
    {
        int column = 0;
        while (grid.ColumnKey(column + 1) != key)
            ++column;
        QAbstractItemModel *model = grid.view()->model();
        const QModelIndex at = model->index(row - 1, column);
        grid.view()->setCurrentIndex(at);
        if (value.typeId() == QMetaType::Bool)
            return model->setData(at, value.toBool() ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
        return model->setData(at, value, Qt::EditRole);
    }

    // Runs `act` on the next modal dialog that opens; records whether one did.
    void whenDialogOpens(std::function<void(classDialog &)> act)
    {
        QTimer::singleShot(0, [this, act] {
            if (auto *dialog = qobject_cast<classDialog *>(QApplication::activeModalWidget())) {
                opened = dialog->objectName();
                act(*dialog);
            }
        });
    }

    ScopedMessages recorder;
    QStringList panel;
    std::unique_ptr<DialogWorker> worker;
    std::unique_ptr<classDialog> dialog;
    QString opened; // the object name of the modal dialog whenDialogOpens met
};

#define KORA_WINDOW_BACKENDS(Suite)                                                                                    \
    INSTANTIATE_TEST_SUITE_P(Backends, Suite,                                                                          \
                             ::testing::Values(::testdb::Backend::SQLite, ::testdb::Backend::PostgreSQL),              \
                             ::testdb::paramName)
