#include "fundfieldvalue.h"

#include "currency.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <optional>

namespace {

using recman::DataType;

std::atomic<const recman::CodePage *> installationCodePage{&recman::CodePage::windows1252()};

// Amounts travel as Currency. A Currency meets a text field as plain decimal
// text; the other way round, an amount read as text, a whole number or a float
// still answers value<Currency>() with its amount (rounded to four places only
// where the stored value has more).
const int currencyConverters = [] {
    QMetaType::registerConverter<Currency, QString>(&Currency::toSqlText);
    QMetaType::registerConverter<QString, Currency>(
        [](const QString &text) { return Currency::parse(text).value_or(Currency()); });
    QMetaType::registerConverter<double, Currency>(
        [](double number) { return Currency::fromDouble(number).value_or(Currency()); });
    QMetaType::registerConverter<qlonglong, Currency>([](qlonglong whole) { return Currency::fromUnits(whole); });
    return 0;
}();

bool isText(DataType type)
{
    return type == DataType::String || type == DataType::ZString || type == DataType::LString;
}

// An exact decimal with at most four places as Currency; nullopt when it has
// more places than that or is out of range.
std::optional<Currency> exactAmount(const recman::Decimal &decimal)
{
    std::int64_t raw = decimal.unscaled;
    int scale = decimal.scale;
    for (; scale > 4; --scale) {
        if (raw % 10 != 0)
            return std::nullopt;
        raw /= 10;
    }
    for (; scale < 4; ++scale) {
        if (raw > std::numeric_limits<std::int64_t>::max() / 10 || raw < std::numeric_limits<std::int64_t>::min() / 10)
            return std::nullopt;
        raw *= 10;
    }
    return Currency::fromRaw(raw);
}

QVariant toVariant(const recman::Value &value)
{
    if (const auto *text = std::get_if<std::string>(&value))
        return QString::fromStdString(*text);
    if (const auto *number = std::get_if<std::int64_t>(&value))
        return QVariant::fromValue<qlonglong>(*number);
    // Whole numbers in decimal types (counters, IDs) stay integers; any
    // decimal places make an amount, whatever the field's type.
    if (const auto *decimal = std::get_if<recman::Decimal>(&value)) {
        if (decimal->scale == 0)
            return QVariant::fromValue<qlonglong>(decimal->unscaled);
        if (const auto amount = exactAmount(*decimal))
            return QVariant::fromValue(*amount);
    }
    if (const auto *real = std::get_if<double>(&value))
        return *real;
    return QString::fromStdString(recman::toText(value));
}

recman::Value toValue(const QVariant &value, bool textField)
{
    if (textField)
        return value.toString().toStdString();
    if (value.metaType() == QMetaType::fromType<Currency>())
        return recman::Decimal{value.value<Currency>().raw(), 4};
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return std::int64_t{value.toLongLong()};
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble();
    default:
        break;
    }
    const QString text = value.toString();
    return text.trimmed().isEmpty() ? recman::Value{recman::Null{}} : recman::Value{text.toStdString()};
}

} // namespace

const recman::CodePage &fundCodePage()
{
    return *installationCodePage.load();
}

bool setFundCodePage(const QString &name)
{
    const recman::CodePage *page = recman::CodePage::byName(name.trimmed().toStdString());
    if (page)
        installationCodePage.store(page);
    return page != nullptr;
}

bool readFundField(const recman::FieldDef &field, recman::Bytes record, const recman::CodePage &codePage,
                   QVariant &value, QString &message)
{
    recman::Value decoded;
    std::string why;
    if (!recman::decodeField(field, record, codePage, decoded, why)) {
        message = QString::fromStdString(why);
        return false;
    }
    value = toVariant(decoded);
    return true;
}

bool writeFundField(const recman::FieldDef &field, const QVariant &value, recman::MutableBytes record,
                    const recman::CodePage &codePage, char pad, QString &message)
{
    const recman::Value stored = toValue(value, isText(field.type));
    std::string why;
    if (!recman::encodeField(field, stored, record, codePage, why)) {
        message = QString::fromStdString(why);
        return false;
    }
    if (field.type == DataType::String && pad != ' ') {
        std::string legacy;
        codePage.fromUtf8(std::get<std::string>(stored), legacy);
        const auto bytes = record.subspan(field.offset, field.size);
        std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(legacy.size()), bytes.end(),
                  static_cast<std::uint8_t>(pad));
    }
    return true;
}
