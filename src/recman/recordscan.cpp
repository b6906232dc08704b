#include "recordscan.h"

#include <algorithm>
#include <unordered_set>

namespace recman {

namespace {

// A record address names a page and an offset in it (physical page in 5.x,
// logical page in 6.x).
struct SlotAddress {
    std::uint32_t page;
    std::uint32_t offset;
};

SlotAddress splitAddress(const FileHeader &header, std::uint32_t address)
{
    return {address / header.pageSize, address % header.pageSize};
}

// The page if it is a data page, else null.
CachedPage dataPage(const FileHeader &header, const PageMap &pages, std::uint32_t logical)
{
    if (header.format == Format::V6)
        return pages.typeOf(logical) == pagetype::Data ? pages.page(logical, pagetype::Data) : nullptr;
    auto page = pages.page(logical, 0);
    // Bit 15 marks data pages. A usage word of exactly 0x8000 does not mean
    // the page is empty: real files hold live records on such pages, so its
    // slots are judged one by one like any other page's.
    return (bytes::u16(*page, 4) & 0x8000) != 0 ? page : nullptr;
}

struct FreeSlots {
    std::unordered_set<std::uint32_t> addresses;
    bool chainComplete = true; // false when the chain broke off and cannot be trusted alone
};

FreeSlots freeSlots(const FileHeader &header, const PageMap &pages, std::vector<std::string> &warnings)
{
    FreeSlots result;
    auto &free = result.addresses;
    const std::uint64_t maxSlots = std::uint64_t{pages.logicalPageEnd()} * slotsPerPage(header);
    for (std::uint32_t address = header.freeHead; address != 0xFFFFFFFFu;) {
        const auto where = splitAddress(header, address);
        if (free.size() > maxSlots || free.count(address) != 0) {
            warnings.push_back("free-slot chain loops; stopped following it");
            result.chainComplete = false;
            break;
        }
        if (where.page == 0 || where.page >= pages.logicalPageEnd() || where.offset < 6 ||
            (where.offset - 6) % header.physicalLength != 0 || where.offset + header.physicalLength > header.pageSize) {
            warnings.push_back("free-slot chain points at an impossible address; stopped following it");
            result.chainComplete = false;
            break;
        }
        free.insert(address);
        const auto page = pages.page(where.page, header.format == Format::V6 ? pagetype::Data : 0);
        address = bytes::ws32(*page, where.offset);
    }
    return result;
}

bool allZero(Bytes bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b == 0; });
}

// 5.x slots carry no usage count. With a whole free chain, a slot is free when
// the chain names it or it was never written (all zero); a live record may well
// be zero after its first four bytes. Only a broken chain falls back to taking
// every "pointer, then zeros" slot as free.
bool v5SlotIsFree(const FileHeader &header, bool chainComplete, Bytes slot)
{
    if (chainComplete)
        return allZero(slot);
    if (!allZero(slot.subspan(4)))
        return false;
    const auto next = bytes::ws32(slot, 0);
    return next == 0 || next == 0xFFFFFFFFu || (next % header.pageSize) >= 6;
}

// Follows a chain of variable-page fragments and appends their bytes.
class TailReader {
public:
    TailReader(const FileHeader &header, const PageMap &pages) : header_(header), pages_(pages) {}

    void append(bytes::VariablePointer pointer, std::vector<std::uint8_t> &out)
    {
        // Each hop consumes at least one fragment of one page, so the page and
        // fragment counts of the file bound the loop.
        const std::uint64_t maxHops = std::uint64_t{pages_.logicalPageEnd()} * (header_.pageSize / 2);
        const std::uint64_t maxBytes = std::uint64_t{pages_.logicalPageEnd()} * header_.pageSize;
        for (std::uint64_t hop = 0; !pointer.none; ++hop) {
            if (hop > maxHops || out.size() > maxBytes)
                throw FormatError("variable-record fragment chain loops");
            pointer = appendFragment(pointer, out);
        }
    }

private:
    bytes::VariablePointer appendFragment(bytes::VariablePointer pointer, std::vector<std::uint8_t> &out)
    {
        const auto held = pages_.page(pointer.page, header_.format == Format::V6 ? pagetype::Variable : 0);
        const Bytes page(*held);
        const std::uint32_t count = bytes::u16(page, 10);
        const std::uint32_t fragment = pointer.fragment;
        const std::uint32_t directoryLimit = (header_.pageSize - 12) / 2;
        if (count > directoryLimit)
            throw FormatError("variable page " + std::to_string(pointer.page) + " claims " + std::to_string(count) +
                              " fragments, more than fit");
        if (fragment >= count)
            throw FormatError("variable-record pointer names fragment " + std::to_string(fragment) + " of page " +
                              std::to_string(pointer.page) + ", which has " + std::to_string(count));
        const auto entry = bytes::u16(page, header_.pageSize - 2 * (fragment + 1));
        if (entry == 0xFFFF)
            throw FormatError("variable-record pointer names a deleted fragment");
        const std::uint32_t start = entry & 0x7FFF;
        std::uint32_t end = 0;
        for (std::uint32_t next = fragment + 1; next <= count && next < directoryLimit; ++next) {
            const auto nextEntry = bytes::u16(page, header_.pageSize - 2 * (next + 1));
            if (nextEntry != 0xFFFF) {
                end = nextEntry & 0x7FFF;
                break;
            }
        }
        const std::uint32_t directoryStart = header_.pageSize - 2 * (count + 1);
        if (start < 12 || end < start || end > directoryStart)
            throw FormatError("variable-record fragment with impossible bounds on page " +
                              std::to_string(pointer.page));
        Bytes data = page.subspan(start, end - start);
        bytes::VariablePointer next;
        // 6.x fragments always start with the next pointer; 5.x only when bit 15 says so.
        if (header_.format == Format::V6 || (entry & 0x8000) != 0) {
            next = bytes::vp24(data, 0);
            data = data.subspan(4);
        }
        out.insert(out.end(), data.begin(), data.end());
        return next;
    }

    const FileHeader &header_;
    const PageMap &pages_;
};

// Alternating literal and repeat runs, each with a 16-bit count.
std::vector<std::uint8_t> expand(Bytes stream)
{
    constexpr std::size_t maxRecord = 1 << 20;
    std::vector<std::uint8_t> out;
    std::size_t at = 0;
    for (bool literal = true; at < stream.size(); literal = !literal) {
        const std::size_t count = bytes::u16(stream, at);
        at += 2;
        if (literal) {
            bytes::require(stream, at, count, "compressed literal run");
            out.insert(out.end(), stream.begin() + static_cast<std::ptrdiff_t>(at),
                       stream.begin() + static_cast<std::ptrdiff_t>(at + count));
            at += count;
        } else {
            out.insert(out.end(), count, bytes::u8(stream, at));
            ++at;
        }
        if (out.size() > maxRecord)
            throw FormatError("compressed record expands beyond 1 MiB");
    }
    return out;
}

// A record from its slot: the fixed part, its variable tail appended, or a
// compressed record expanded.
void assemble(const FileHeader &header, TailReader &tails, Bytes slot, std::vector<std::uint8_t> &out)
{
    out.clear();
    if (header.compressed) {
        std::vector<std::uint8_t> stream;
        tails.append(bytes::vp24(slot, 0), stream);
        out = expand(stream);
        return;
    }
    const auto fixed = slot.subspan(header.userOffset, header.recordLength);
    out.assign(fixed.begin(), fixed.end());
    if (header.variable)
        tails.append(bytes::vp24(slot, header.userOffset + header.recordLength), out);
}

} // namespace

SlotWalk::SlotWalk(const FileHeader &header, const PageMap &pages)
    : header_(header), pages_(pages), perPage_(slotsPerPage(header))
{
    auto free = freeSlots(header, pages, warnings_);
    free_ = std::move(free.addresses);
    chainComplete_ = free.chainComplete;
}

SlotWalk::State SlotWalk::state(std::uint32_t address, Bytes slot) const
{
    if (!free_.empty() && free_.count(address) != 0)
        return State::Free;
    if (header_.format == Format::V6)
        return bytes::u16(slot, 0) == 0 ? State::Unused : State::Live;
    return v5SlotIsFree(header_, chainComplete_, slot) ? State::Free : State::Live;
}

Bytes SlotWalk::page(std::uint32_t logical)
{
    if (!pinned_ || pinnedLogical_ != logical || pinnedEpoch_ != pages_.cacheEpoch()) {
        pinned_ = dataPage(header_, pages_, logical);
        pinnedLogical_ = logical;
        pinnedEpoch_ = pages_.cacheEpoch();
    }
    return pinned_ ? Bytes(*pinned_) : Bytes();
}

std::optional<SlotWalk::Slot> SlotWalk::at(std::uint32_t logical, std::uint32_t slot)
{
    const Bytes view = page(logical);
    if (view.empty())
        return std::nullopt;
    const auto offset = slotOffset(header_, slot);
    const std::uint32_t address = logical * header_.pageSize + offset;
    const Bytes bytesOfSlot = view.subspan(offset, header_.physicalLength);
    if (state(address, bytesOfSlot) != State::Live)
        return std::nullopt;
    last_ = {address, logical, slot};
    return Slot{address, bytesOfSlot};
}

SlotWalk::Place SlotWalk::placeOf(std::uint32_t address) const
{
    // A scan asks for the slot after the one it was just given: no division.
    if (address == last_.address)
        return last_;
    return {address, address / header_.pageSize, (address % header_.pageSize - 6) / header_.physicalLength};
}

std::optional<SlotWalk::Slot> SlotWalk::next(std::optional<std::uint32_t> after)
{
    std::uint32_t logical = 1, slot = 0;
    if (after) {
        const auto place = placeOf(*after);
        logical = place.logical;
        slot = place.slot + 1;
    }
    for (; logical < pages_.logicalPageEnd(); ++logical, slot = 0) {
        if (page(logical).empty())
            continue;
        for (; slot < perPage_; ++slot)
            if (auto found = at(logical, slot))
                return found;
    }
    return std::nullopt;
}

std::optional<SlotWalk::Slot> SlotWalk::previous(std::optional<std::uint32_t> before)
{
    if (pages_.logicalPageEnd() < 2)
        return std::nullopt; // no page but the control record
    std::uint32_t logical = pages_.logicalPageEnd() - 1, slot = perPage_;
    if (before && *before / header_.pageSize < pages_.logicalPageEnd()) {
        const auto place = placeOf(*before);
        logical = place.logical;
        slot = place.slot;
    }
    for (; logical >= 1; --logical, slot = perPage_) {
        if (page(logical).empty())
            continue;
        while (slot-- > 0)
            if (auto found = at(logical, slot))
                return found;
    }
    return std::nullopt;
}

void SlotWalk::record(Bytes slot, std::vector<std::uint8_t> &out) const
{
    if (!header_.compressed && !header_.variable) {
        const auto fixed = slot.subspan(header_.userOffset, header_.recordLength);
        out.assign(fixed.begin(), fixed.end());
        return;
    }
    TailReader tails(header_, pages_);
    assemble(header_, tails, slot, out);
}

ScanResult scanRecords(const FileHeader &header, const PageMap &pages)
{
    ScanResult result{RecordStore(pages, header), {}, {}};
    SlotWalk walk(header, pages);
    result.warnings = walk.warnings();
    const bool assembled = header.compressed || header.variable;
    std::vector<std::uint8_t> record;
    const auto perPage = slotsPerPage(header);
    std::uint32_t live = 0;
    // The control record's count is only trusted as far as the file could hold it.
    const std::uint64_t possible = std::uint64_t{pages.physicalPageCount()} * perPage;
    const std::uint64_t expected = std::min<std::uint64_t>(header.recordCount, possible);
    result.records.reserve(expected);
    // Every data page is read to its end: the control record's count is checked
    // against what the pages hold, never used to stop early.
    for (std::uint32_t logical = 1; logical < pages.logicalPageEnd(); ++logical) {
        const auto held = dataPage(header, pages, logical);
        if (!held)
            continue;
        const Bytes view(*held);
        for (std::uint32_t slot = 0; slot < perPage; ++slot) {
            const auto offset = slotOffset(header, slot);
            const auto address = logical * header.pageSize + offset;
            const Bytes bytesOfSlot = view.subspan(offset, header.physicalLength);
            const auto state = walk.state(address, bytesOfSlot);
            if (state == SlotWalk::State::Unused)
                result.unusedSlots.push_back(address);
            if (state != SlotWalk::State::Live)
                continue;
            if (!assembled) {
                result.records.appendOnPage(address);
            } else {
                walk.record(bytesOfSlot, record);
                result.records.append(record, address);
            }
            ++live;
        }
    }
    if (live != header.recordCount)
        result.warnings.push_back("control record counts " + std::to_string(header.recordCount) +
                                  " records, data pages hold " + std::to_string(live));
    return result;
}

void readRecordAt(const FileHeader &header, const PageMap &pages, std::uint32_t address, std::vector<std::uint8_t> &out)
{
    const auto where = splitAddress(header, address);
    const auto name = "record address " + std::to_string(address);
    if (where.page == 0 || where.page >= pages.logicalPageEnd() || where.offset < 6 ||
        (where.offset - 6) % header.physicalLength != 0 || where.offset + header.physicalLength > header.pageSize)
        throw FormatError(name + " is not a record slot of the file");
    const auto held = dataPage(header, pages, where.page);
    if (!held)
        throw FormatError(name + " is not on a data page");
    const Bytes slot = Bytes(*held).subspan(where.offset, header.physicalLength);
    if (header.format == Format::V6 ? bytes::u16(slot, 0) == 0 : allZero(slot))
        throw FormatError(name + " holds no record");
    TailReader tails(header, pages);
    assemble(header, tails, slot, out);
}

} // namespace recman
