#include "recordobject.h"

#include "errobject.h"

int bindFundFile(DataAccessControl &control, const QString &ddfPath, const QString &dataFolder, const FundFileDef &file)
{
    control.setDdfPath(ddfPath);
    control.setFileName(QString::fromLatin1(file.recordName));
    control.setLocation(dataFolder + QString::fromLatin1(file.fileName));
    const int status = control.Open();
    // A header count that disagrees is logged by the control; every record is still there.
    return status == DataAccessControl::StatusRecordCountMismatch ? 0 : status;
}

QString installationFolder(const QString &ddfPath)
{
    return ddfPath + QStringLiteral("\\FUND");
}

QString fundStatusMessage(int status, const QString &controlMessage)
{
    clsErrObject error;
    error.setErrorNumber(status);
    error.setErrorText(controlMessage.isEmpty() ? QStringLiteral("Status %1").arg(status) : controlMessage);
    return error.ErrorText();
}

QString reportMissingFields(const DataAccessControl &control, const QStringList &missing)
{
    if (missing.isEmpty())
        return {};
    const QString message = QStringLiteral("the data dictionary's table \"%1\" has no field \"%2\"; left empty")
                                .arg(control.FileName(), missing.join(QStringLiteral("\", \"")));
    clsErrObject log;
    log.set(DataAccessControl::StatusUnknownField, control.FileName() + QStringLiteral(".Init"), message);
    log.LogError();
    return message;
}
