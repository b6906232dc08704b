#include "paths.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace recman {

namespace {

bool sameIgnoringCase(const std::string &a, const std::string &b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

std::vector<std::string> splitParts(std::string_view path)
{
    std::vector<std::string> parts;
    std::string part;
    for (char c : path) {
        if (c == '\\' || c == '/') {
            if (!part.empty() && part != ".")
                parts.push_back(part);
            part.clear();
        } else {
            part.push_back(c);
        }
    }
    if (!part.empty() && part != ".")
        parts.push_back(part);
    return parts;
}

std::optional<std::filesystem::path> matchPart(const std::filesystem::path &directory, const std::string &part)
{
    std::error_code error;
    if (part == "..")
        return directory.parent_path();
    const auto exact = directory / part;
    if (std::filesystem::exists(exact, error))
        return exact;
    for (std::filesystem::directory_iterator it(directory, error), end; !error && it != end; it.increment(error))
        if (sameIgnoringCase(it->path().filename().string(), part))
            return it->path();
    return std::nullopt;
}

std::optional<std::filesystem::path> matchParts(const std::filesystem::path &root,
                                                const std::vector<std::string> &parts, std::size_t first)
{
    auto current = root;
    for (std::size_t i = first; i < parts.size(); ++i) {
        auto next = matchPart(current, parts[i]);
        if (!next)
            return std::nullopt;
        current = *next;
    }
    return current;
}

} // namespace

std::optional<std::filesystem::path> resolveLegacyPath(std::string_view legacyPath, const std::filesystem::path &root)
{
    bool anchored = false;
    if (legacyPath.size() >= 2 && legacyPath[1] == ':' && std::isalpha(static_cast<unsigned char>(legacyPath[0]))) {
        legacyPath.remove_prefix(2);
        anchored = true;
    }
    if (!legacyPath.empty() && (legacyPath.front() == '\\' || legacyPath.front() == '/'))
        anchored = true;
    const auto parts = splitParts(legacyPath);
    if (parts.empty())
        return std::nullopt;
    const std::size_t lastStart = anchored ? parts.size() - 1 : 0;
    for (std::size_t first = 0; first <= lastStart; ++first)
        if (auto found = matchParts(root, parts, first))
            return found;
    return std::nullopt;
}

} // namespace recman
