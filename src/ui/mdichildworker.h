#pragma once

#include "childworker.h"
#include "mdichild.h"

#include <QPointer>

// A worker whose window is one mdiChild: it opens the window with its
// commands routed here, brings it to the front, and lets it go when it unloads.
class MdiChildWorker : public ChildWorker {
    Q_OBJECT
public:
    using ChildWorker::ChildWorker;

    void ShowChild() override;
    mdiChild *child() const { return child_; }

    // A command of the window; none reaches the worker once the window is gone.
    void mwfrmChild_Command(const QString &command);

protected:
    // Creates the window under its caption, routes its commands, and initialises it.
    mdiChild &openChild(const QString &caption);
    // Every command but the window's unload, while the window is there.
    virtual void doCommand(const QString &command) = 0;

    QPointer<mdiChild> child_;
};
