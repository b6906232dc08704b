#pragma once

#include <QString>

class classDialog;

// The status bar "sbrStatus" at the foot of a worker's dialog, with the one
// text panel in which the worker says what it is doing.
void addStatusBar(classDialog &dialog);
void setStatusText(classDialog &dialog, const QString &text);
