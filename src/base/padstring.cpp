#include "padstring.h"

#include <cmath>

QString PadLeft(const QString &text, std::int16_t width)
{
    if (width < 1)
        return text;
    return (QString(width, u' ') + text).right(width);
}

QString CollapseBlanks(const QString &text)
{
    QString result;
    result.reserve(text.size());
    QChar previous;
    for (const QChar c : text) {
        if (!(c == u' ' && previous == u' '))
            result.append(c);
        previous = c;
    }
    return result;
}

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// The longest leading piece of `text` that reads as a decimal number:
// [sign] digits [. digits] [E|D [sign] digits]. An exponent without digits is
// not taken.
QString leadingNumber(const QString &text)
{
    qsizetype i = 0;
    const auto digitsFrom = [&](qsizetype at) {
        while (at < text.size() && isDigit(text.at(at)))
            ++at;
        return at;
    };
    if (i < text.size() && (text.at(i) == u'+' || text.at(i) == u'-'))
        ++i;
    i = digitsFrom(i);
    if (i < text.size() && text.at(i) == u'.')
        i = digitsFrom(i + 1);
    if (i < text.size() && QStringLiteral("eEdD").contains(text.at(i))) {
        qsizetype exponent = i + 1;
        if (exponent < text.size() && (text.at(exponent) == u'+' || text.at(exponent) == u'-'))
            ++exponent;
        const qsizetype end = digitsFrom(exponent);
        if (end > exponent)
            i = end;
    }
    QString number = text.left(i);
    number.replace(u'd', u'e').replace(u'D', u'e');
    return number;
}

} // namespace

double AmountFromText(const QString &text, bool absolute)
{
    QString cleaned;
    cleaned.reserve(text.size());
    for (const QChar c : text) {
        // Val() skips blanks, tabs and line feeds wherever they stand.
        if (c != u',' && c != u'$' && c != u' ' && c != u'\t' && c != u'\n')
            cleaned.append(c);
    }
    bool ok = false;
    double value = leadingNumber(cleaned).toDouble(&ok);
    if (!ok || !std::isfinite(value))
        value = 0.0;
    return absolute ? std::fabs(value) : value;
}
