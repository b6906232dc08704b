#include "csvrecord.h"

#include <QSaveFile>

namespace {

bool mustQuote(const QString &field)
{
    return field.contains(QLatin1Char(',')) || field.contains(QLatin1Char('"')) || field.contains(QLatin1Char('\n')) ||
           field.contains(QLatin1Char('\r'));
}

} // namespace

QString csvRecord(const QStringList &fields, const std::vector<bool> &quoted)
{
    QStringList out;
    for (int i = 0; i < fields.size(); ++i) {
        const QString &field = fields[i];
        const bool quote = (std::size_t(i) < quoted.size() && quoted[std::size_t(i)]) || mustQuote(field);
        out << (quote ? QLatin1Char('"') + QString(field).replace(QLatin1Char('"'), QStringLiteral("\"\"")) +
                            QLatin1Char('"')
                      : field);
    }
    return out.join(QLatin1Char(',')) + QStringLiteral("\r\n");
}

bool writeCsvFile(const QString &path, const QString &records, QString &error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        error = file.errorString();
        return false;
    }
    file.write(records.toUtf8());
    if (!file.commit()) {
        error = file.errorString();
        return false;
    }
    return true;
}
