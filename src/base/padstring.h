#pragma once

#include <QString>

#include <cstdint>

// Text helpers for aligned codes and typed amounts.

// Right-aligns `text` in `width` characters; a longer text keeps only its
// right end. A width below 1 leaves the text as it is.
QString PadLeft(const QString &text, std::int16_t width);

// Each run of blanks becomes one blank.
QString CollapseBlanks(const QString &text);

// The leading number of `text` once every "," and "$" is removed, read the
// way the old BASIC Val() reads it: blanks skipped, sign, digits, decimal
// point, exponent; no number gives 0. The absolute value when `absolute`.
// A double because callers use it for rates as well as for amounts.
double AmountFromText(const QString &text, bool absolute);
