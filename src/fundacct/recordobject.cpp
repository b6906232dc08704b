#include "recordobject.h"

#include "errobject.h"

int bindFundFile(DataAccessControl &control, const QString &ddfPath, const QString &dataFolder, const FundFileDef &file)
{
    control.setDdfPath(ddfPath);
    control.setFileName(QString::fromLatin1(file.recordName));
    control.setLocation(dataFolder + QString::fromLatin1(file.fileName));
    return control.Open();
}

QString fundStatusMessage(int status, const QString &controlMessage)
{
    clsErrObject error;
    error.setErrorNumber(status);
    error.setErrorText(controlMessage.isEmpty() ? QStringLiteral("Status %1").arg(status) : controlMessage);
    return error.ErrorText();
}
