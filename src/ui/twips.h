#pragma once

class QWidget;

// Window positions and sizes are given in twips (1/1440 inch) and scaled by
// the screen's logical resolution, so a layout keeps its proportions on any
// monitor.
int twipsToPixels(int twips);
int pixelsToTwips(int pixels);

// Moves and sizes a widget by twips; a negative size keeps the current one.
void placeInTwips(QWidget &widget, int left, int top, int width = -1, int height = -1);
