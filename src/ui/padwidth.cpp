#include "padwidth.h"

#include "twips.h"

#include <QFontMetrics>

namespace {
constexpr int toleranceTwips = 30;
}

formPadWidth::formPadWidth(const QFont &font) : font_(font)
{
}

int formPadWidth::widthInTwips(const QString &text) const
{
    return pixelsToTwips(QFontMetrics(font_).horizontalAdvance(text));
}

QString formPadWidth::PadWidth(const QString &text, std::int16_t n) const
{
    const int target = widthInTwips(QString(qMax<int>(n, 0), QLatin1Char('W')));
    QString padded = text;
    for (;;) {
        const int width = widthInTwips(padded);
        if (width >= target || target - width < toleranceTwips)
            return padded;
        padded += QLatin1Char(' ');
    }
}
