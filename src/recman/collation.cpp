#include "collation.h"

#include <map>

namespace recman {

namespace {

// ACS page: header, 0xAC at byte 6, 8-byte name at 7, 256-byte table at 0x0F.
std::shared_ptr<const CollatingSequence> readTable(const PageMap &pages, const FileHeader &header,
                                                   std::uint32_t logical)
{
    std::vector<std::uint8_t> page;
    pages.read(logical, header.format == Format::V6 ? pagetype::Acs : 0, page);
    if (page[6] != 0xAC)
        throw FormatError("page " + std::to_string(logical) + " should hold a collating sequence but has no 0xAC mark");
    auto acs = std::make_shared<CollatingSequence>();
    acs->name.assign(page.begin() + 7, page.begin() + 15);
    while (!acs->name.empty() && (acs->name.back() == ' ' || acs->name.back() == '\0'))
        acs->name.pop_back();
    std::copy(page.begin() + 0x0F, page.begin() + 0x0F + 256, acs->table.begin());
    return acs;
}

// 6.x: the default table is the one whose name the control record gives, else the first.
std::uint32_t defaultTablePage(const PageMap &pages, const FileHeader &header)
{
    std::uint32_t first = 0;
    for (std::uint32_t logical = 1; logical < pages.logicalPageEnd(); ++logical) {
        if (pages.typeOf(logical) != pagetype::Acs)
            continue;
        if (first == 0)
            first = logical;
        if (readTable(pages, header, logical)->name == header.acsName)
            return logical;
    }
    if (first == 0)
        throw FormatError("a key uses an alternate collating sequence but the file holds none");
    return first;
}

} // namespace

void attachCollatingSequences(FileHeader &header, const PageMap &pages)
{
    std::map<std::uint32_t, std::shared_ptr<const CollatingSequence>> loaded;
    std::uint32_t defaultPage = 0;
    for (auto &key : header.keys)
        for (auto &segment : key.segments) {
            if (!segment.has(keyflag::Acs))
                continue;
            std::uint32_t logical = segment.acsPage;
            if (header.format == Format::V5)
                logical = 1;
            else if (logical == 0)
                logical = defaultPage != 0 ? defaultPage : (defaultPage = defaultTablePage(pages, header));
            auto &table = loaded[logical];
            if (!table)
                table = readTable(pages, header, logical);
            segment.acs = table;
        }
}

} // namespace recman
