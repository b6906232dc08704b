// The file control record (page 0, or the current copy of pages 0/1 in 6.x
// files): what kind of file this is, its record geometry and its keys.
#pragma once

#include "bytes.h"
#include "filehandle.h"
#include "keydef.h"

#include <cstdint>
#include <string>
#include <vector>

namespace recman {

enum class Format { V5, V6 };

// File flags of the control record.
namespace fileflag {
constexpr std::uint16_t Variable = 0x0001;
constexpr std::uint16_t BlankTruncation = 0x0002;
constexpr std::uint16_t Compression = 0x0008;
constexpr std::uint16_t KeyOnly = 0x0010;
constexpr std::uint16_t ReserveDuplicates = 0x0100;
constexpr std::uint16_t SystemData = 0x0200;
constexpr std::uint16_t Vat = 0x0800;
} // namespace fileflag

// Control-record offsets shared by the reader and the writer.
namespace fcr {
constexpr std::size_t Usage = 0x04;
constexpr std::size_t PageSize = 0x08;
constexpr std::size_t FreeHead = 0x10;
constexpr std::size_t KeyCount = 0x14;
constexpr std::size_t RecordLength = 0x16;
constexpr std::size_t PhysicalLength = 0x18;
constexpr std::size_t RecordCount = 0x1A;
constexpr std::size_t PagesInUse = 0x26;
constexpr std::size_t VariableByte = 0x38;
constexpr std::size_t AcsName = 0x3C;
constexpr std::size_t Version = 0x4A;
constexpr std::size_t DuplicateOffset = 0x72;
constexpr std::size_t DuplicateCount = 0x74;
constexpr std::size_t KeyCountAgain = 0x76;
constexpr std::size_t SegmentCount = 0x77;
constexpr std::size_t KatOffset = 0x78;
constexpr std::size_t CreatorTag = 0xE0; // our own mark; zero in files of the record manager
constexpr std::size_t FileFlags = 0x106;
constexpr std::size_t SegmentSpecs = 0x110;
constexpr std::size_t SegmentSpecSize = 30;
} // namespace fcr

// Written at fcr::CreatorTag by this engine, so it knows which files it may
// insert into and delete from.
inline constexpr char creatorTag[8] = {'K', 'O', 'R', 'A', 'R', 'M', '0', '1'};

struct FileHeader {
    Format format = Format::V5;
    std::uint16_t versionWord = 0; // 6.x: 0x0600, 0x0610 ...; 5.x: major version 3..5
    bool ownerProtected = false;
    std::uint32_t pageSize = 0;
    std::uint32_t usage = 0; // 6.x: usage count of the current copy
    int currentCopy = 0;     // 6.x: physical page of the current copy (0 or 1)
    std::uint32_t freeHead = 0xFFFFFFFF;
    std::uint32_t recordLength = 0;   // fixed part (0 in compressed files)
    std::uint32_t physicalLength = 0; // slot length on data pages
    std::uint32_t recordCount = 0;
    std::uint32_t pagesInUse = 0;
    std::uint16_t fileFlags = 0;
    std::string acsName;
    std::uint32_t userOffset = 0; // bytes before the user record in a slot (2 in 6.x)
    bool variable = false;
    bool compressed = false;
    bool createdByEngine = false;
    std::vector<KeyDefinition> keys;
    std::vector<std::uint8_t> page; // raw bytes of the current control record

    std::string formatName() const { return format == Format::V5 ? "5.x" : "6.x"; }
};

// Reads and checks the control record. Throws FormatError (with a message
// naming what was found) for anything the engine cannot read safely.
FileHeader readHeader(const FileHandle &file);

} // namespace recman
