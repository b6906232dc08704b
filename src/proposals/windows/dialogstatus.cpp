#include "dialogstatus.h"

#include "classdialog.h"
#include "classstatusbar.h"

namespace {

const QString barName = QStringLiteral("sbrStatus");
const QString panelKey = QStringLiteral("Status");

} // namespace

void addStatusBar(classDialog &dialog)
{
    dialog.AddControl(DialogControlKind::StatusBar, barName)
        .Statusbar()
        .AddPanel(0, panelKey, panelKey, QString(), PanelAlignment::Left, PanelAutoSize::Spring);
}

void setStatusText(classDialog &dialog, const QString &text)
{
    dialog.Control(barName).Statusbar().setPanelText(panelKey, text);
}
