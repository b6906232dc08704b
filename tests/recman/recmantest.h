// Shared helpers of the record-manager tests.
#pragma once

#include "file.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace recmantest {

inline std::filesystem::path fixture(const std::string &name)
{
    return std::filesystem::path(KORA_FIXTURES_DIR) / "recman" / name;
}

inline std::string readText(const std::filesystem::path &path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline std::vector<std::uint8_t> readBytes(const std::filesystem::path &path)
{
    const auto text = readText(path);
    return {text.begin(), text.end()};
}

inline void writeBytes(const std::filesystem::path &path, const std::vector<std::uint8_t> &data)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char *>(data.data()), static_cast<std::streamsize>(data.size()));
}

// A fresh directory under the system temp dir, removed when the object dies.
class TempDir {
public:
    TempDir()
    {
        const auto base = std::filesystem::temp_directory_path();
        for (int i = 0;; ++i) {
            path_ = base / ("recman-test-" + std::to_string(::getpid()) + "-" + std::to_string(i));
            if (std::filesystem::create_directory(path_))
                break;
        }
    }
    ~TempDir() { std::filesystem::remove_all(path_); }
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    const std::filesystem::path &path() const { return path_; }
    std::filesystem::path operator/(const std::string &name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

// A copy of a fixture in `dir` that the test may write (the originals are read-only).
inline std::filesystem::path writableFixture(const TempDir &dir, const std::string &name)
{
    const auto path = dir / name;
    std::filesystem::copy_file(fixture(name), path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
    return path;
}

} // namespace recmantest
