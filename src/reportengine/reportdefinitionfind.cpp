#include "reportdefinition.h"

#include "fundlocation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

// The file of that name in the folder, matched without regard to case; "" when there is none.
QString fileInFolder(const QString &folder, const QString &fileName)
{
    const QDir dir(folder);
    if (folder.isEmpty() || !dir.exists())
        return QString();
    for (const QString &entry : dir.entryList(QDir::Files)) {
        if (entry.compare(fileName, Qt::CaseInsensitive) == 0)
            return dir.filePath(entry);
    }
    return QString();
}

} // namespace

QString findReportDefinition(const QString &installPath, const QString &fileName)
{
    // The caller may pass the name with the folder the installation keeps it in.
    QString name = fileName;
    name.replace(u'\\', u'/');
    name = name.section(u'/', -1);
    if (name.isEmpty())
        return QString();
    if (!installPath.trimmed().isEmpty()) {
        if (const auto root = fundRootFolder(installPath)) {
            if (const auto file = findFundFile(*root, QStringLiteral("reports\\budget\\") + name))
                return QString::fromStdString(file->string());
        }
    }
    const QString installed = fileInFolder(
        QCoreApplication::applicationDirPath() + QStringLiteral("/../share/kora-budget/reports/budget"), name);
    if (!installed.isEmpty())
        return QFileInfo(installed).absoluteFilePath();
#ifdef KORA_REPORTS_SOURCE_DIR
    return fileInFolder(QStringLiteral(KORA_REPORTS_SOURCE_DIR), name);
#else
    return QString();
#endif
}
