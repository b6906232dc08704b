#include "customername.h"

#include "messageservice.h"
#include "objectsysparams.h"

namespace {

QString failed(const QString &text, int status, const QString &message)
{
    QString detail = QString::number(status);
    if (!message.isEmpty())
        detail += QLatin1Char(' ') + message;
    messages().errorDialog({4, QStringLiteral("Kora-Fund"), text + detail, false});
    return {};
}

} // namespace

QString GetCustomerName(const QString &rootPath, const QString &fundPath)
{
    classObjectSysParams organisation;
    if (const int status = organisation.Init(rootPath, fundPath); status != 0)
        return failed(QStringLiteral("Cannot initialize system parameters. error:"), status, organisation.Message());
    if (const int status = organisation.Retrieve(); status != 0)
        return failed(QStringLiteral("Cannot retrieve system parameters settings. error:"), status,
                      organisation.Message());
    return organisation.ReportName.trimmed();
}
