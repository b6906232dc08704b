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
    for (QWidget *top : QApplication::topLevelWidgets()) {
        for (QMdiArea *area : top->findChildren<QMdiArea *>()) {
            if (QMdiSubWindow *sub = area->activeSubWindow())
                return qobject_cast<mdiChild *>(sub->widget());
        }
    }
    return nullptr;
}

} // namespace

void SetWaiting(bool waiting)
{
    if (waiting && !cursorOverridden()) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        cursorOverridden() = true;
    } else if (!waiting && cursorOverridden()) {
        QApplication::restoreOverrideCursor();
        cursorOverridden() = false;
    }
    if (mdiChild *child = activeChild())
        child->setWaiting(waiting);
}
