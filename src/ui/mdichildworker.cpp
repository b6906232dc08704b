#include "mdichildworker.h"

void MdiChildWorker::ShowChild()
{
    if (child_)
        child_->BringToFront();
}

void MdiChildWorker::mwfrmChild_Command(const QString &command)
{
    if (!child_)
        return;
    if (command == u"_Unload") {
        child_->deleteLater();
        child_ = nullptr;
        emit unloaded();
        return;
    }
    doCommand(command);
}

mdiChild &MdiChildWorker::openChild(const QString &caption)
{
    child_ = new mdiChild;
    child_->setWindowTitle(caption);
    connect(child_, &mdiChild::Command, this, &MdiChildWorker::mwfrmChild_Command);
    child_->InitForm();
    return *child_;
}
