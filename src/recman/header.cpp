#include "header.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace recman {

namespace {

std::string hex(std::uint32_t value, int width)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%0*X", width, value);
    return text;
}

std::vector<std::uint8_t> readBytes(const FileHandle &file, std::uint64_t offset, std::size_t length)
{
    std::vector<std::uint8_t> data(length);
    if (!file.readAt(offset, data))
        throw FormatError("file ends inside its control record");
    return data;
}

bool validPageSize(std::uint32_t size)
{
    return size >= 512 && size <= 4096 && size % 512 == 0;
}

std::string trimmedName(Bytes raw)
{
    std::string name(raw.begin(), raw.end());
    while (!name.empty() && (name.back() == ' ' || name.back() == '\0'))
        name.pop_back();
    return name;
}

KeySegment readSegment(Bytes page, std::size_t at, const FileHeader &header, int key, int segmentNumber)
{
    bytes::require(page, at, fcr::SegmentSpecSize, "key segment definition");
    KeySegment segment;
    segment.key = key;
    segment.segment = segmentNumber;
    segment.flags = bytes::u16(page, at + 0x08);
    const std::uint32_t position = bytes::u16(page, at + 0x14);
    segment.length = bytes::u16(page, at + 0x16);
    segment.rawType = bytes::u8(page, at + 0x1C);
    segment.nullValue = bytes::u8(page, at + 0x1D);
    if (header.format == Format::V6)
        segment.acsPage = static_cast<std::uint32_t>(bytes::u8(page, at + 0x19)) << 16 |
                          static_cast<std::uint32_t>(bytes::u8(page, at + 0x1B)) << 8 | bytes::u8(page, at + 0x1A);
    // Uncompressed 6.x slots start with a 2-byte usage count that key positions include.
    if (position < header.userOffset)
        throw FormatError("key " + std::to_string(key) + " segment " + std::to_string(segmentNumber) +
                          " starts before the user record (position " + std::to_string(position) + ")");
    segment.offset = position - header.userOffset;
    if (segment.length == 0)
        throw FormatError("key " + std::to_string(key) + " has a zero-length segment");
    return segment;
}

// Which bytes of the control record hold the first segment of each key.
std::vector<std::size_t> firstSegmentOffsets(Bytes page, const FileHeader &header, std::uint16_t keyCount)
{
    std::vector<std::size_t> offsets;
    if (header.format == Format::V5) {
        std::size_t at = fcr::SegmentSpecs;
        for (std::uint16_t key = 0; key < keyCount; ++key) {
            offsets.push_back(at);
            // Walk this key's segments to find where the next key starts.
            for (int guard = 0; guard < 120; ++guard) {
                const auto flags = bytes::u16(page, at + 0x08);
                at += fcr::SegmentSpecSize;
                if ((flags & keyflag::Segmented) == 0)
                    break;
            }
        }
        return offsets;
    }
    const std::size_t kat = bytes::u16(page, fcr::KatOffset);
    for (std::uint16_t key = 0; key < keyCount; ++key)
        offsets.push_back(bytes::u16(page, kat + 2u * key));
    return offsets;
}

void readKeys(Bytes page, FileHeader &header, std::uint16_t keyCount)
{
    if (keyCount > 119)
        throw FormatError("control record claims " + std::to_string(keyCount) + " keys");
    const auto offsets = firstSegmentOffsets(page, header, keyCount);
    std::size_t totalSegments = 0;
    for (std::uint16_t number = 0; number < keyCount; ++number) {
        KeyDefinition key;
        key.number = number;
        std::size_t at = offsets[number];
        key.duplicatePointerOffset = bytes::u16(page, at + 0x12);
        key.indexRoot = header.format == Format::V5 ? bytes::ws32(page, at) : bytes::pp24(page, at);
        if (bytes::u32(page, at) == 0xFFFFFFFFu)
            key.indexRoot = 0xFFFFFFFF;
        key.uniqueValues = bytes::ws32(page, at + 0x04);
        key.indexEntryLength = bytes::u16(page, at + 0x0C);
        for (int segmentNumber = 0;; ++segmentNumber) {
            if (++totalSegments > 119)
                throw FormatError("more than 119 key segments");
            key.segments.push_back(readSegment(page, at, header, number, segmentNumber));
            if (!key.segments.back().has(keyflag::Segmented))
                break;
            at += fcr::SegmentSpecSize;
        }
        header.keys.push_back(std::move(key));
    }
}

// Linked-duplicate keys carry an 8-byte pointer pair in every slot.
std::uint32_t linkedDuplicateKeys(const FileHeader &header)
{
    return static_cast<std::uint32_t>(std::count_if(header.keys.begin(), header.keys.end(), [](const auto &key) {
        return key.allowsDuplicates() && (key.flags() & keyflag::RepeatingDuplicates) == 0;
    }));
}

void checkSlotBalance(const FileHeader &header)
{
    std::uint32_t expected = 8 * linkedDuplicateKeys(header);
    if (header.compressed)
        expected += header.format == Format::V5 ? 5 : 0;
    else
        expected += header.userOffset + header.recordLength + (header.variable ? 4 : 0);
    const bool reserved = (header.fileFlags & fileflag::ReserveDuplicates) != 0;
    const bool balances = header.physicalLength == expected ||
                          (reserved && header.physicalLength > expected && (header.physicalLength - expected) % 8 == 0);
    if (!balances)
        throw FormatError("record slot length " + std::to_string(header.physicalLength) +
                          " does not match record length " + std::to_string(header.recordLength) + " (expected " +
                          std::to_string(expected) +
                          "); the file may carry system data or another feature this engine does not read");
}

void refuseUnsupported(const FileHeader &header, std::uint8_t variableByte)
{
    if (header.fileFlags & fileflag::Vat)
        throw FormatError("file uses variable-tail allocation tables (file flags " + hex(header.fileFlags, 4) +
                          "), which this engine does not read");
    const bool truncation = (header.fileFlags & fileflag::BlankTruncation) != 0 || variableByte == 0xFD;
    if (truncation && !header.compressed)
        throw FormatError("file uses blank truncation (file flags " + hex(header.fileFlags, 4) +
                          "), whose layout is not confirmed; refused rather than risk wrong records");
    if (header.compressed && header.format == Format::V6)
        throw FormatError("compressed 6.x file: its slot layout is not confirmed; refused");
    if (header.fileFlags & fileflag::KeyOnly)
        throw FormatError("key-only file (no data pages); not supported");
}

void parseCommon(Bytes page, FileHeader &header)
{
    header.freeHead = bytes::ws32(page, fcr::FreeHead);
    const auto keyCount = bytes::u16(page, fcr::KeyCount);
    header.recordLength = bytes::u16(page, fcr::RecordLength);
    header.physicalLength = bytes::u16(page, fcr::PhysicalLength);
    header.recordCount = bytes::ws32(page, fcr::RecordCount);
    header.pagesInUse = bytes::ws32(page, fcr::PagesInUse);
    header.fileFlags = bytes::u16(page, fcr::FileFlags);
    const auto variableByte = bytes::u8(page, fcr::VariableByte);
    header.acsName = trimmedName(page.subspan(fcr::AcsName, 8));
    header.compressed = (header.fileFlags & fileflag::Compression) != 0;
    header.variable = (header.fileFlags & fileflag::Variable) != 0 || variableByte == 0xFF || variableByte == 0xFD;
    header.userOffset = (header.format == Format::V6 && !header.compressed) ? 2 : 0;
    header.createdByEngine = std::memcmp(page.data() + fcr::CreatorTag, creatorTag, sizeof creatorTag) == 0;
    refuseUnsupported(header, variableByte);
    if (header.physicalLength == 0 || header.physicalLength > header.pageSize - 6)
        throw FormatError("record slot length " + std::to_string(header.physicalLength) + " does not fit a " +
                          std::to_string(header.pageSize) + "-byte page");
    if (!header.compressed && header.recordLength == 0)
        throw FormatError("record length 0 in an uncompressed file");
    readKeys(page, header, keyCount);
    checkSlotBalance(header);
    for (const auto &key : header.keys)
        for (const auto &segment : key.segments)
            if (!header.compressed && (segment.offset + segment.length > header.recordLength))
                throw FormatError("key " + std::to_string(key.number) + " segment " + std::to_string(segment.segment) +
                                  " lies beyond the record length");
}

FileHeader readOldFormat(const FileHandle &file, Bytes first)
{
    FileHeader header;
    header.format = Format::V5;
    const auto versionByte = static_cast<std::int8_t>(first[7]);
    const int major = versionByte < 0 ? -versionByte : versionByte;
    if (first[6] != 0 || major < 3 || major > 5)
        throw FormatError("unknown old-format version bytes " + hex(first[6], 2) + " " + hex(first[7], 2));
    header.versionWord = static_cast<std::uint16_t>(major);
    header.ownerProtected = versionByte < 0;
    header.pageSize = bytes::u16(first, fcr::PageSize);
    if (!validPageSize(header.pageSize))
        throw FormatError("page size " + std::to_string(header.pageSize) + " is not a multiple of 512 in 512..4096");
    if (bytes::u16(first, 0x22) == 0xFFFF)
        throw FormatError("file is marked inconsistent (needs recovery by the record manager)");
    header.page = readBytes(file, 0, header.pageSize);
    parseCommon(header.page, header);
    return header;
}

FileHeader readNewFormat(const FileHandle &file, Bytes first)
{
    FileHeader header;
    header.format = Format::V6;
    header.versionWord = bytes::u16(first, fcr::Version);
    if (header.versionWord >= 0x0800)
        throw FormatError("format version " + hex(header.versionWord, 4) +
                          " (8.x or later) has a different page layout; not supported");
    header.pageSize = bytes::u16(first, fcr::PageSize);
    if (!validPageSize(header.pageSize))
        throw FormatError("page size " + std::to_string(header.pageSize) + " is not a multiple of 512 in 512..4096");
    // Two shadow copies: the one with the larger usage count is current. A copy
    // never written is all zeros (no signature).
    std::vector<std::uint8_t> copies[2] = {readBytes(file, 0, header.pageSize), {}};
    std::uint32_t usage[2] = {bytes::u32(copies[0], fcr::Usage), 0};
    if (file.size() >= 2ull * header.pageSize) {
        copies[1] = readBytes(file, header.pageSize, header.pageSize);
        const bool signed1 = copies[1][0] == 'F' && copies[1][1] == 'C' && copies[1][2] == 0 && copies[1][3] == 0;
        if (signed1 && bytes::u16(copies[1], fcr::PageSize) == header.pageSize)
            usage[1] = bytes::u32(copies[1], fcr::Usage);
    }
    header.currentCopy = usage[1] > usage[0] ? 1 : 0;
    header.usage = usage[header.currentCopy];
    header.page = std::move(copies[header.currentCopy]);
    if (bytes::u16(header.page, fcr::Version) != header.versionWord)
        header.versionWord = bytes::u16(header.page, fcr::Version);
    if (header.versionWord >= 0x0800 || header.versionWord < 0x0600)
        throw FormatError("unknown 6.x/7.x format version " + hex(header.versionWord, 4));
    parseCommon(header.page, header);
    if (bytes::u8(header.page, fcr::KeyCountAgain) != header.keys.size())
        throw FormatError("control record disagrees with itself on the number of keys");
    return header;
}

} // namespace

FileHeader readHeader(const FileHandle &file)
{
    if (file.size() < 512)
        throw FormatError("file is " + std::to_string(file.size()) + " bytes, shorter than one page");
    const auto first = readBytes(file, 0, 512);
    if (first[0] == 0 && first[1] == 0 && first[2] == 0 && first[3] == 0)
        return readOldFormat(file, first);
    if (first[0] == 'F' && first[1] == 'C' && first[2] == 0 && first[3] == 0)
        return readNewFormat(file, first);
    throw FormatError("unknown signature " + hex(bytes::u32(first, 0), 8) +
                      " (neither an old-format nor an \"FC\" control record)");
}

} // namespace recman
