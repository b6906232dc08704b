// Where the data-access control's Windows paths (DdfPath, Location) lie on
// this machine, found by the engine's legacy-path resolution.
#pragma once

#include <QString>

#include <filesystem>
#include <optional>

// The existing folder a DdfPath names (any case, either slash, drive letter
// dropped); the working folder when empty. nullopt when there is none.
std::optional<std::filesystem::path> fundRootFolder(const QString &ddfPath);

// The existing data file a location names: below the dictionary folder
// (relative, or a path whose tail lies there), else as an absolute path.
std::optional<std::filesystem::path> findFundFile(const std::filesystem::path &root, const QString &location);
