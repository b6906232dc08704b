#include "indexpage.h"

namespace recman {

namespace {
constexpr std::size_t EntriesStart = 16;
}

bool indexLayoutReadable(const FileHeader &header, const KeyDefinition &key, std::string &problem)
{
    if (header.createdByEngine) {
        problem = "file keeps no index pages of its own";
        return false;
    }
    const std::size_t expectedEntry = key.length() + 8 + (key.duplicatePointerOffset != 0 ? 4 : 0);
    if (key.indexEntryLength != expectedEntry ||
        (header.format == Format::V6 && (key.flags() & keyflag::RepeatingDuplicates) != 0)) {
        problem = "index entries of key " + std::to_string(key.number) + " have a layout this engine does not read";
        return false;
    }
    return true;
}

std::uint32_t indexPageLimit(const PageMap &pages, const FileHeader &header)
{
    return header.format == Format::V5 ? pages.physicalPageCount() : pages.logicalPageEnd();
}

IndexPage::IndexPage(const PageMap &pages, const FileHeader &header, const KeyDefinition &key, std::uint32_t number)
    : header_(header), number_(number), entryLength_(key.indexEntryLength), keyLength_(key.length()),
      linked_(key.duplicatePointerOffset != 0)
{
    const auto name = "index page " + std::to_string(number) + " of key " + std::to_string(key.number);
    if (number == 0 || number >= indexPageLimit(pages, header))
        throw FormatError(name + " lies outside the file");
    const bool v6 = header.format == Format::V6;
    held_ = pages.page(number, v6 ? static_cast<std::uint8_t>(pagetype::IndexBase + key.number) : std::uint8_t{0});
    if (!v6 && (bytes::u16(*held_, 4) & 0x8000) != 0)
        throw FormatError(name + " is a data page");
    count_ = bytes::u16(*held_, 6);
    if (EntriesStart + count_ * entryLength_ > held_->size())
        throw FormatError(name + " claims more entries than it holds");
}

std::uint32_t IndexPage::pointer(std::size_t offset) const
{
    if (bytes::u32(*held_, offset) == None)
        return None;
    return header_.format == Format::V5 ? bytes::ws32(*held_, offset) : bytes::pp24(*held_, offset);
}

Bytes IndexPage::entryBytes(std::size_t entry) const
{
    return Bytes(*held_).subspan(EntriesStart + entry * entryLength_, entryLength_);
}

std::uint32_t IndexPage::record(std::size_t entry) const
{
    return bytes::ws32(entryBytes(entry), keyLength_);
}

std::uint32_t IndexPage::lastDuplicate(std::size_t entry) const
{
    return linked_ ? bytes::ws32(entryBytes(entry), keyLength_ + 4) : record(entry);
}

std::uint32_t IndexPage::childBefore(std::size_t entry) const
{
    if (entry == 0)
        return pointer(12);
    if (entry == count_)
        return pointer(8);
    return pointer(EntriesStart + entry * entryLength_ - 4);
}

} // namespace recman
