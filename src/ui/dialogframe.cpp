#include "dialogframe.h"

#include <QWidget>

void setDialogFrame(QWidget &dialog)
{
    dialog.setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowCloseButtonHint);
}
