#include "twips.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <cmath>

namespace {

constexpr double twipsPerInch = 1440.0;

double logicalDpi()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->logicalDotsPerInchX() : 96.0;
}

} // namespace

int twipsToPixels(int twips)
{
    return static_cast<int>(std::lround(twips * logicalDpi() / twipsPerInch));
}

int pixelsToTwips(int pixels)
{
    return static_cast<int>(std::lround(pixels * twipsPerInch / logicalDpi()));
}

void placeInTwips(QWidget &widget, int left, int top, int width, int height)
{
    const int w = width < 0 ? widget.width() : twipsToPixels(width);
    const int h = height < 0 ? widget.height() : twipsToPixels(height);
    widget.setGeometry(twipsToPixels(left), twipsToPixels(top), w, h);
}
