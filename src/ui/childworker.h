#pragma once

#include <QObject>
#include <QString>

class QMdiArea;

// A task that lives in a child window of the frame until the user closes it.
// The frame keeps at most one of each name: a second request calls ShowChild.
class ChildWorker : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    static QString FormType() { return QStringLiteral("Worker"); }
    // Creates the child window inside the frame's area, builds and shows it.
    virtual void DoMDIChild(QMdiArea &area) = 0;
    // Brings the open child window to the front.
    virtual void ShowChild() = 0;

signals:
    // The child window has gone; the frame releases the worker.
    void unloaded();
};
