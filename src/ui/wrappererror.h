#pragma once

#include "grouping.h" // the collection error numbers
#include "runtimeerror.h"

#include <QString>

// Wrong use of a control wrapper: the classic error number, the member that
// refused ("classGrid.MultiLineValueConstant.Get") and the text. The wrapper's
// state is unchanged when one is thrown.
class WrapperError : public RuntimeError {
public:
    WrapperError(int number, const QString &source, const QString &text) : RuntimeError(number, text), source_(source)
    {
    }
    const QString &source() const { return source_; }

private:
    QString source_;
};

inline constexpr int invalidPropertyValueError = 380;
inline constexpr int invalidArrayIndexError = 381;
inline constexpr int wrongModeError = 5;

// The texts the wrappers use for the usual mistakes.
inline QString invalidKeyText()
{
    return QStringLiteral("Invalid property key value");
}
inline QString invalidRowText()
{
    return QStringLiteral("Invalid row index value");
}
inline QString invalidCountText()
{
    return QStringLiteral("Invalid row count value");
}
inline QString duplicateKeyText()
{
    return QStringLiteral("Duplicate Key");
}
