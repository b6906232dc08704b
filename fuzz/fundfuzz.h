// The control fuzzer's installation: the sample installation's dictionary and
// files in a scratch folder, and the input form (a table number, then the
// bytes of that table's data file).
#pragma once

#include "fuzzsupport.h"
#include "installationschema.h"
#include "sampleinstallation.h"

#include <QString>

#include <cstdlib>

namespace fundfuzz {

// Made once per process; every table's file lies under FUND.
inline const QString &installationRoot()
{
    static const QString root = [] {
        const QString folder = QString::fromStdString((fuzzsupport::scratchDirectory() / "install").string());
        QString message;
        if (createSampleInstallation(folder, smallSampleDistrict(), {}, message) != 0)
            std::abort();
        return folder;
    }();
    return root;
}

inline std::filesystem::path dataFile(const FundTableSpec &spec)
{
    return std::filesystem::path(installationRoot().toStdString()) / "FUND" / spec.fileName.toStdString();
}

} // namespace fundfuzz
