#pragma once

#include "budgetdbconfig.h"
#include "storageimages.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class formErrorDialog;
class formErrorLog;
class mdiParent;

struct StartupSettings {
    // The program's arguments after its name, joined by single blanks: "USER ROOT".
    QString commandLine;
    BudgetDbConfig config;
    // Called as soon as the error dialog exists, so the running program can
    // show its messages in it.
    std::function<void(formErrorDialog &)> errorDialogLoaded;
};

// The main window's load (start-up) and unload (shut-down). Load fills the
// application globals, the status bar and the menu locks; closing the frame
// unloads and ends the application.
class MainWindowLoad : public QObject {
public:
    explicit MainWindowLoad(mdiParent &frame);
    ~MainWindowLoad() override;
    MainWindowLoad(const MainWindowLoad &) = delete;
    MainWindowLoad &operator=(const MainWindowLoad &) = delete;

    // False when start-up ended the application; the user has been told why.
    bool Load(const StartupSettings &settings);
    // Releases gcolForms, unloads the shared windows, then every window still
    // open, closes the database and ends the event loop. Runs once.
    void Unload();

    formErrorLog *ErrorLog() const { return errorLog_.get(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void loadSharedForms(const StartupSettings &settings);
    void addStatusPanels();

    mdiParent &frame_;
    formStorageImages images_;
    std::unique_ptr<formErrorLog> errorLog_;
    std::unique_ptr<formErrorDialog> errorDialog_;
    bool unloaded_ = false;
};

// The frame that finished start-up; null before and after.
mdiParent *ParentWindow();
