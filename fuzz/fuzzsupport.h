// Helpers shared by the fuzz targets: a private scratch directory and file writes.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace fuzzsupport {

inline const std::filesystem::path &scratchDirectory()
{
    static const std::filesystem::path directory = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "recman-fuzz-XXXXXX").string();
        if (!::mkdtemp(pattern.data()))
            std::abort();
        return std::filesystem::path(pattern);
    }();
    return directory;
}

inline void writeFile(const std::filesystem::path &path, const std::uint8_t *data, std::size_t size)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
}

// Dictionary fuzz input: three length-prefixed parts (FILE, FIELD, INDEX), then a record.
struct DictionaryInput {
    std::string parts[3];
    std::string record;
};

inline DictionaryInput splitDictionaryInput(const std::uint8_t *data, std::size_t size)
{
    DictionaryInput input;
    std::size_t at = 0;
    for (auto &part : input.parts) {
        if (size - at < 4)
            return input;
        const std::uint32_t length =
            data[at] | data[at + 1] << 8 | data[at + 2] << 16 | std::uint32_t{data[at + 3]} << 24;
        at += 4;
        const std::size_t take = std::min<std::size_t>(length, size - at);
        part.assign(reinterpret_cast<const char *>(data + at), take);
        at += take;
    }
    input.record.assign(reinterpret_cast<const char *>(data + at), size - at);
    return input;
}

} // namespace fuzzsupport
