#pragma once

#include <QString>
#include <QStringList>

#include <vector>

// One CSV record (RFC 4180): fields separated by commas, quoted fields in
// double quotes with inner quotes doubled; a field that must be quoted (a
// comma, quote or line break in it) always is.
QString csvRecord(const QStringList &fields, const std::vector<bool> &quoted);

// Writes the records whole or not at all (the file is replaced only when
// every byte is written); the error text comes back in `error`.
bool writeCsvFile(const QString &path, const QString &records, QString &error);
