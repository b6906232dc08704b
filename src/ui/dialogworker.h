#pragma once

#include <QString>

class classDialog;

// What a modal worker answers to the run-time dialog. The dialog calls, in
// this order: FormBuild, SecurityLock, LoadData, LockControls; then
// UserAction for each action of the user; on save ValidateData and, when it
// agreed, SaveData. A false from either keeps the dialog open.
class DialogWorker {
public:
    virtual ~DialogWorker() = default;
    virtual void FormBuild(classDialog &dialog) = 0;
    virtual void SecurityLock(classDialog &) {}
    virtual void LoadData(classDialog &) {}
    virtual void LockControls(classDialog &) {}
    virtual void UserAction(classDialog &, const QString &) {}
    virtual bool ValidateData(classDialog &) { return true; }
    virtual bool SaveData(classDialog &) { return true; }
};

// A task run from the menu that shows a modal dialog and returns when it closes.
class ModalWorker {
public:
    virtual ~ModalWorker() = default;
    virtual void DoModalForm() = 0;
    virtual void RefreshData() {}
};
