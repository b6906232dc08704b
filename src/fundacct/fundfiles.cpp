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

namespace {

QString dataLocation(const QString &root, const QString &fundPath, const QString &fundDataPath,
                     const QString &yearFolderName, int year)
{
    const QString yearFolder = fundDataPath + u'\\' + yearFolderName;
    if (year >= 2002)
        return fundPath;
    if (year == 2001) {
        const auto rootFolder = fundRootFolder(root);
        return rootFolder && findFundFile(*rootFolder, yearFolder + QStringLiteral("\\building.btr")) ? yearFolder
                                                                                                      : fundPath;
    }
    return yearFolder;
}

} // namespace

QString GetFundDataLocation(int year)
{
    return dataLocation(gstrRootPath, gstrFundPath, gstrFundDataPath, gstrYear, year);
}

QString fundDataLocationUnder(const QString &root, int year)
{
    return dataLocation(root, root + QStringLiteral("\\FUND"), root + QStringLiteral("\\FUND\\DATA"),
                        QString::number(year), year);
}
