#pragma once

#include <QString>

// The district's name for report headings: the organisation record's report
// name. When the record cannot be opened or read the user is told why under
// "Kora-Fund" and the name is empty.
QString GetCustomerName(const QString &rootPath, const QString &fundPath);
