#include "statustext.h"

#include "classdialog.h"
#include "classstatusbar.h"

namespace {
const QString statusBarName = QStringLiteral("sbrStatus");
const QString panelKey = QStringLiteral("Status");
} // namespace

void addStatusText(classDialog &dialog)
{
    dialog.AddControl(DialogControlKind::StatusBar, statusBarName)
        .Statusbar()
        .AddPanel(0, panelKey, {}, {}, PanelAlignment::Left, PanelAutoSize::Spring);
}

void showStatusText(classDialog &dialog, const QString &text)
{
    dialog.Control(statusBarName).Statusbar().setPanelText(panelKey, text);
}
