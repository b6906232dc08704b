#include "benchinstallation.h"

#include "benchdatabase.h"
#include "fundinstallation.h"

#include <QTemporaryDir>

#include <stdexcept>

const QString &benchInstallation(const SampleOptions &options)
{
    static QTemporaryDir folder;
    static const QString root = [&options] {
        QString message;
        if (createSampleInstallation(folder.path(), demo::sampleDistrictOf(BenchDatabase::sqlite()->district()),
                                     options, message) != 0)
            throw std::runtime_error(message.toStdString());
        return folder.path();
    }();
    return root;
}
