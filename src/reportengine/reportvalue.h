#pragma once

#include "currency.h"

#include <QDate>
#include <QString>

// A value of the report formula language: nothing, an exact number (four
// decimals, the same as amounts), text, a truth value or a date.
class ReportValue {
public:
    enum class Type { Null, Number, Text, Boolean, Date };

    ReportValue() = default;
    static ReportValue number(Currency value);
    static ReportValue text(const QString &value);
    static ReportValue boolean(bool value);
    static ReportValue date(const QDate &value);

    Type type() const { return type_; }
    bool isNull() const { return type_ == Type::Null; }
    Currency asNumber() const { return number_; } // 0 unless Number
    const QString &asText() const { return text_; } // "" unless Text
    bool asBoolean() const { return boolean_; }     // false unless Boolean
    const QDate &asDate() const { return date_; }   // null unless Date

    // How the value reads when joined into text: numbers as plain decimals
    // without trailing zeros, dates "MM/dd/yyyy", truth "True"/"False", null "".
    QString toText() const;

    friend bool operator==(const ReportValue &, const ReportValue &) = default;

private:
    Type type_ = Type::Null;
    Currency number_;
    QString text_;
    bool boolean_ = false;
    QDate date_;
};
