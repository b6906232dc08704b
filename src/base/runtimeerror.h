#pragma once

#include <QString>

#include <stdexcept>

// The classic numbers of the errors the keyed collections raise.
inline constexpr int indexOutOfRangeError = 9;
inline constexpr int nullKeyError = 327;
inline constexpr int keyNotOptionalError = 449;
inline constexpr int duplicateKeyError = 457;

// A run-time error raised by a utility procedure: the classic error number
// (13 type mismatch, 9 index out of range, ...) and its description. Callers
// that show it put both into an error object.
class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int number, const QString &description)
        : std::runtime_error(description.toStdString()), number_(number), description_(description)
    {
    }

    int number() const { return number_; }
    const QString &description() const { return description_; }

private:
    int number_;
    QString description_;
};
