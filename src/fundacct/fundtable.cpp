#include "fundtable.h"

#include "currency.h"
#include "dataaccesscontrol.h"
#include "file.h"

#include <QDir>

#include <cstring>

namespace fs = std::filesystem;

const FundField *FundTable::field(const QString &name) const
{
    const auto found = byName_.constFind(name.trimmed().toCaseFolded());
    return found == byName_.cend() ? nullptr : &fields[static_cast<std::size_t>(*found)];
}

void FundTable::index()
{
    byName_.clear();
    recordLength = 0;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        byName_.insert(fields[i].name.toCaseFolded(), static_cast<int>(i));
        recordLength = std::max(recordLength, fields[i].offset + fields[i].size);
    }
}

namespace {

QStringList pathParts(const QString &path)
{
    QString normal = path.trimmed();
    normal.replace(u'\\', u'/');
    return normal.split(u'/', Qt::SkipEmptyParts);
}

bool hasDrive(const QString &path)
{
    return path.size() >= 2 && path[1] == u':' && path[0].isLetter();
}

// Walks the parts from `base`, each matched exactly or else case-insensitively.
std::optional<fs::path> walk(fs::path base, const QStringList &parts)
{
    for (const QString &part : parts) {
        if (part == QLatin1String("."))
            continue;
        const fs::path exact = base / part.toStdString();
        std::error_code error;
        if (fs::exists(exact, error)) {
            base = exact;
            continue;
        }
        std::optional<fs::path> match;
        for (const auto &entry : fs::directory_iterator(base, error)) {
            if (QString::fromStdString(entry.path().filename().string()).compare(part, Qt::CaseInsensitive) == 0) {
                match = entry.path();
                break;
            }
        }
        if (!match)
            return std::nullopt;
        base = *match;
    }
    return base;
}

std::optional<fs::path> resolveFolder(const QString &folder)
{
    QStringList parts = pathParts(folder);
    if (hasDrive(folder))
        parts.removeFirst();
    const bool absolute = hasDrive(folder) || folder.startsWith(u'/') || folder.startsWith(u'\\');
    return walk(absolute ? fs::path("/") : fs::current_path(), parts);
}

} // namespace

std::optional<fs::path> resolveFundPath(const QString &ddfPath, const QString &location)
{
    QStringList ddfParts = pathParts(ddfPath);
    QStringList parts = pathParts(location);
    const bool underDictionary = parts.size() > ddfParts.size() && [&] {
        for (qsizetype i = 0; i < ddfParts.size(); ++i) {
            if (parts[i].compare(ddfParts[i], Qt::CaseInsensitive) != 0)
                return false;
        }
        return true;
    }();
    const bool absolute = hasDrive(location) || location.startsWith(u'/') || location.startsWith(u'\\');
    if (underDictionary || !absolute) {
        const auto base = resolveFolder(ddfPath.isEmpty() ? QStringLiteral(".") : ddfPath);
        if (!base)
            return std::nullopt;
        if (underDictionary)
            parts = parts.mid(ddfParts.size());
        else if (hasDrive(location))
            parts.removeFirst();
        const auto found = walk(*base, parts);
        return found && fs::is_regular_file(*found) ? found : std::nullopt;
    }
    const auto found = resolveFolder(location);
    return found && fs::is_regular_file(*found) ? found : std::nullopt;
}

namespace {

std::int64_t readSigned(recman::Bytes bytes)
{
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        value = value << 8 | bytes[i];
    const unsigned bits = static_cast<unsigned>(bytes.size() * 8);
    if (bits < 64 && (value >> (bits - 1)) != 0)
        value |= ~std::uint64_t{0} << bits;
    return static_cast<std::int64_t>(value);
}

void writeSigned(recman::MutableBytes bytes, std::int64_t value)
{
    auto raw = static_cast<std::uint64_t>(value);
    for (auto &byte : bytes) {
        byte = static_cast<std::uint8_t>(raw);
        raw >>= 8;
    }
}

bool fitsSigned(std::int64_t value, int size)
{
    if (size >= 8)
        return true;
    const std::int64_t limit = std::int64_t{1} << (size * 8 - 1);
    return value >= -limit && value < limit;
}

const int currencyConverter = [] {
    QMetaType::registerConverter<Currency, QString>(&Currency::toSqlText);
    return 0;
}();

std::optional<Currency> toCurrency(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<Currency>())
        return value.value<Currency>();
    if (value.typeId() == QMetaType::Int || value.typeId() == QMetaType::LongLong)
        return Currency::fromUnits(value.toLongLong());
    const QString text = value.toString().trimmed();
    return text.isEmpty() ? Currency{} : Currency::parse(text);
}

std::optional<std::int64_t> toInteger(const QVariant &value)
{
    const QString text = value.toString().trimmed();
    if (text.isEmpty())
        return 0;
    bool ok = false;
    const std::int64_t number = text.toLongLong(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

} // namespace

QVariant decodeFundField(const FundField &field, recman::Bytes record)
{
    const auto bytes = record.subspan(static_cast<std::size_t>(field.offset), static_cast<std::size_t>(field.size));
    switch (field.type) {
    case recman::DataType::String: {
        std::size_t length = bytes.size();
        while (length > 0 && (bytes[length - 1] == ' ' || bytes[length - 1] == 0))
            --length;
        return QString::fromLatin1(reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(length));
    }
    case recman::DataType::Integer:
    case recman::DataType::AutoIncrement:
        return QVariant::fromValue<qlonglong>(readSigned(bytes));
    case recman::DataType::Currency:
        return QVariant::fromValue(Currency::fromRaw(readSigned(bytes)));
    default:
        return {};
    }
}

bool encodeFundField(const FundField &field, const QVariant &value, recman::MutableBytes record, char pad,
                     QString &message)
{
    auto bytes = record.subspan(static_cast<std::size_t>(field.offset), static_cast<std::size_t>(field.size));
    switch (field.type) {
    case recman::DataType::String: {
        const QString text = value.toString();
        const QByteArray latin = text.toLatin1();
        if (latin.size() > field.size) {
            message = QStringLiteral("%1 characters do not fit in %2").arg(latin.size()).arg(field.size);
            return false;
        }
        std::fill(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(pad));
        std::memcpy(bytes.data(), latin.constData(), static_cast<std::size_t>(latin.size()));
        return true;
    }
    case recman::DataType::Integer:
    case recman::DataType::AutoIncrement: {
        const auto number = toInteger(value);
        if (!number || !fitsSigned(*number, field.size)) {
            message = QStringLiteral("\"%1\" is not a %2-byte integer").arg(value.toString()).arg(field.size);
            return false;
        }
        writeSigned(bytes, *number);
        return true;
    }
    case recman::DataType::Currency: {
        const auto amount = toCurrency(value);
        if (!amount) {
            message = QStringLiteral("\"%1\" is not an amount").arg(value.toString());
            return false;
        }
        writeSigned(bytes, amount->raw());
        return true;
    }
    default:
        message = QStringLiteral("data type %1 is not supported").arg(static_cast<int>(field.type));
        return false;
    }
}
