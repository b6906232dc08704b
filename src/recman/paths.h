// Legacy Windows paths on a case-sensitive file system.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace recman {

// Finds the existing file or folder a legacy path names, below `root`.
//
// The path may use '\' or '/' and may start with a drive ("C:") or a
// separator; such a prefix is dropped, because installations move between
// drives and machines. Each part is matched case-insensitively (ASCII). If
// the whole path is not found below root, shorter and shorter tails of it are
// tried ("C:\KORA\FUND\Funds.btr" with root ".../KORA" finds
// ".../KORA/FUND/FUNDS.BTR"), so a dictionary written for another drive
// layout still resolves. A plain relative path is only tried as a whole.
std::optional<std::filesystem::path> resolveLegacyPath(std::string_view legacyPath, const std::filesystem::path &root);

} // namespace recman
