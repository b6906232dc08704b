#pragma once

#include <QString>

class classDialog;

// The one-panel status bar "sbrStatus" that the budget-figure dialogs show
// their progress in.
void addStatusText(classDialog &dialog);
void showStatusText(classDialog &dialog, const QString &text);
