#pragma once

#include <QFont>
#include <QString>

#include <cstdint>

// The hidden measuring window: pads codes with blanks so that they line up
// in a proportional font. Measure with the font of the control the padded
// text will be shown in.
class formPadWidth {
public:
    explicit formPadWidth(const QFont &font = QFont());

    // Appends blanks until the text is as wide as `n` letters "W", stopping
    // once less than 30 twips are missing so one blank too many is never added.
    QString PadWidth(const QString &text, std::int16_t n) const;
    // A fund code padded to the width of two "W".
    QString PadFundID(const QString &text) const { return PadWidth(text, 2); }

    int widthInTwips(const QString &text) const;

private:
    QFont font_;
};
