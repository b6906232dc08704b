#include "patternmatch.h"

namespace {

bool sameLetter(QChar a, QChar b)
{
    return a == b || a.toCaseFolded() == b.toCaseFolded();
}

// A bracket list starting at pattern[at] == '['. Returns the index after
// the closing ']', or -1 when there is none; `hit` says whether c is accepted.
qsizetype matchBracket(const QString &pattern, qsizetype at, QChar c, bool &hit)
{
    qsizetype i = at + 1;
    const bool negate = i < pattern.size() && pattern[i] == u'!';
    if (negate)
        ++i;
    bool found = false;
    const QChar folded = c.toCaseFolded();
    for (; i < pattern.size() && pattern[i] != u']'; ++i) {
        if (i + 2 < pattern.size() && pattern[i + 1] == u'-' && pattern[i + 2] != u']') {
            const QChar low = pattern[i].toCaseFolded();
            const QChar high = pattern[i + 2].toCaseFolded();
            found = found || (folded >= low && folded <= high) || (c >= pattern[i] && c <= pattern[i + 2]);
            i += 2;
        } else {
            found = found || sameLetter(c, pattern[i]);
        }
    }
    if (i >= pattern.size())
        return -1;
    hit = found != negate;
    return i + 1;
}

// Matches one non-star pattern element at p against text[t]; returns the
// pattern index after the element, or -1 when it does not match.
qsizetype matchOne(const QString &pattern, qsizetype p, QChar c)
{
    const QChar element = pattern[p];
    if (element == u'?')
        return p + 1;
    if (element == u'#')
        return (c >= u'0' && c <= u'9') ? p + 1 : -1;
    if (element == u'[') {
        bool hit = false;
        const qsizetype next = matchBracket(pattern, p, c, hit);
        return next >= 0 && hit ? next : -1;
    }
    return sameLetter(c, element) ? p + 1 : -1;
}

bool bracketsClosed(const QString &pattern)
{
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != u'[')
            continue;
        const qsizetype close = pattern.indexOf(u']', i + 1 + (i + 1 < pattern.size() && pattern[i + 1] == u'!'));
        if (close < 0)
            return false;
        i = close;
    }
    return true;
}

} // namespace

bool matchesPattern(const QString &text, const QString &pattern)
{
    if (!bracketsClosed(pattern))
        return false;
    // Greedy walk with one back-track point: the last star seen and the text
    // position it has swallowed up to. Linear in practice, never exponential.
    qsizetype t = 0;
    qsizetype p = 0;
    qsizetype starPattern = -1;
    qsizetype starText = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            starPattern = ++p;
            starText = t;
            continue;
        }
        if (p < pattern.size()) {
            const qsizetype next = matchOne(pattern, p, text[t]);
            if (next >= 0) {
                p = next;
                ++t;
                continue;
            }
        }
        if (starPattern < 0)
            return false;
        p = starPattern;
        t = ++starText;
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}
