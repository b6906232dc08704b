#include "fundlocation.h"

#include "paths.h"

namespace fs = std::filesystem;

namespace {

bool isAnchored(const QString &path)
{
    const QString trimmed = path.trimmed();
    const bool drive = trimmed.size() >= 2 && trimmed[1] == u':' && trimmed[0].isLetter();
    return drive || trimmed.startsWith(u'/') || trimmed.startsWith(u'\\');
}

std::optional<fs::path> existing(const QString &legacyPath, const fs::path &base, bool wantFolder)
{
    const auto found = recman::resolveLegacyPath(legacyPath.trimmed().toStdString(), base);
    std::error_code error;
    if (!found || (wantFolder ? !fs::is_directory(*found, error) : !fs::is_regular_file(*found, error)))
        return std::nullopt;
    return found;
}

} // namespace

std::optional<fs::path> fundRootFolder(const QString &ddfPath)
{
    std::error_code error;
    const fs::path current = fs::current_path(error);
    if (ddfPath.trimmed().isEmpty())
        return error ? std::nullopt : std::optional(current);
    return existing(ddfPath, isAnchored(ddfPath) ? fs::path("/") : current, true);
}

std::optional<fs::path> findFundFile(const fs::path &root, const QString &location)
{
    if (auto below = existing(location, root, false))
        return below;
    return isAnchored(location) ? existing(location, fs::path("/"), false) : std::nullopt;
}
