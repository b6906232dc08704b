#include "fundfiles.h"

#include "appglobals.h"
#include "fundlocation.h"

long OpenFundFile(std::unique_ptr<DataAccessControl> &control, const QString & /*ddfPath*/, const QString &fileName,
                  const QString &location)
{
    if (!control)
        control = std::make_unique<DataAccessControl>();
    control->setBlankChar(0);
    control->setDdfPath(gstrRootPath);
    control->setFileName(fileName);
    control->setLocation(location);
    control->Open();
    return control->Status();
}

QString GetFundDataLocation(int year)
{
    const QString yearFolder = gstrFundDataPath + u'\\' + gstrYear;
    if (year >= 2002)
        return gstrFundPath;
    if (year == 2001) {
        const auto root = fundRootFolder(gstrRootPath);
        return root && findFundFile(*root, yearFolder + QStringLiteral("\\building.btr")) ? yearFolder : gstrFundPath;
    }
    return yearFolder;
}
