#include "reportvalue.h"

ReportValue ReportValue::number(Currency value)
{
    ReportValue result;
    result.type_ = Type::Number;
    result.number_ = value;
    return result;
}

ReportValue ReportValue::text(const QString &value)
{
    ReportValue result;
    result.type_ = Type::Text;
    result.text_ = value;
    return result;
}

ReportValue ReportValue::boolean(bool value)
{
    ReportValue result;
    result.type_ = Type::Boolean;
    result.boolean_ = value;
    return result;
}

ReportValue ReportValue::date(const QDate &value)
{
    ReportValue result;
    result.type_ = Type::Date;
    result.date_ = value;
    return result;
}

QString ReportValue::toText() const
{
    switch (type_) {
    case Type::Null:
        return {};
    case Type::Number:
        return number_.toSqlText();
    case Type::Text:
        return text_;
    case Type::Boolean:
        return boolean_ ? QStringLiteral("True") : QStringLiteral("False");
    case Type::Date:
        return date_.toString(QStringLiteral("MM/dd/yyyy"));
    }
    return {};
}
