#pragma once

class QWidget;

// A dialog's window: a title bar with its close box only. Without the
// customize hint a window manager may add minimise and maximise buttons,
// which a dialog that blocks the program must not offer.
void setDialogFrame(QWidget &dialog);
