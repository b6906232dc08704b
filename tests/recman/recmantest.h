// Shared helpers of the record-manager tests.
#pragma once

#include "file.h"
#include "indexwalk.h"
#include "keyindex.h"
#include "openfile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
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

// A file opened below the File API, for tests that look at its pages.
inline std::shared_ptr<recman::OpenFile> openInternals(const std::filesystem::path &path)
{
    std::shared_ptr<recman::OpenFile> file;
    std::string message;
    EXPECT_EQ(recman::openShared(path, recman::OpenMode::ReadOnly, file, message), recman::Status::Success) << message;
    return file;
}

// Record addresses in the order an index built by sorting the records gives:
// the oracle for orders read from the file's own index pages.
inline std::vector<std::uint32_t> sortedOrder(recman::OpenFile &file, std::size_t key)
{
    const recman::KeyIndex index(file.info.keys[key], file.records);
    std::vector<std::uint32_t> addresses;
    for (std::size_t i = 0; i < index.size(); ++i)
        addresses.push_back(file.records.address(index.ordinalAt(i)));
    return addresses;
}

// The key's order read from the file's own index pages is the sorted order,
// and the records agree with it.
inline void expectIndexPagesMatchSort(recman::OpenFile &file, std::size_t key)
{
    SCOPED_TRACE("key " + std::to_string(key));
    std::string problem;
    const auto walked = recman::walkKeyIndex(*file.pages, file.header, file.info.keys[key], problem);
    ASSERT_TRUE(walked) << problem;
    EXPECT_EQ(walked->addresses, sortedOrder(file, key));
    EXPECT_TRUE(recman::ordinalsInWalkOrder(file.records, file.info.keys[key], *walked, problem)) << problem;
}

} // namespace recmantest
