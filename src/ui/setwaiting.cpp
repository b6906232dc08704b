#include "setwaiting.h"

#include "mdichild.h"

#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace {

bool &cursorOverridden()
{
    static bool overridden = false;
    return overridden;
}

mdiChild *activeChild()
{
    for (QWidget *widget : QApplication::allWidgets()) {
        auto *area = qobject_cast<QMdiArea *>(widget);
        if (QMdiSubWindow *sub = area ? area->activeSubWindow() : nullptr)
            return qobject_cast<mdiChild *>(sub->widget());
    }
    return nullptr;
}

} // namespace

void SetWaiting(bool waiting)
{
    if (waiting && !cursorOverridden()) {
        QApplication::setOverrideCursor(Qt::BusyCursor); // the arrow with an hourglass: the user may still point
        cursorOverridden() = true;
    } else if (!waiting && cursorOverridden()) {
        QApplication::restoreOverrideCursor();
        cursorOverridden() = false;
    }
    if (mdiChild *child = activeChild())
        child->setWaiting(waiting);
}
