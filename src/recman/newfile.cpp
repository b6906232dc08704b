#include "newfile.h"

#include "pagebuild.h"
#include "pagemap.h"

namespace recman {

Layout planLayout(const FileSpec &spec)
{
    Layout layout;
    layout.format = spec.format;
    layout.pageSize = spec.pageSize;
    layout.userOffset = spec.format == Format::V6 ? 2 : 0;
    std::uint32_t slot = layout.userOffset + spec.recordLength;
    for (const auto &key : spec.keys) {
        layout.duplicateOffsets.push_back(key.allowsDuplicates() ? slot : 0);
        slot += key.allowsDuplicates() ? 8 : 0;
        for (const auto &segment : key.segments)
            if (segment.has(keyflag::Acs) && !layout.acsPages.count(segment.acs.get())) {
                layout.acsPages[segment.acs.get()] = static_cast<std::uint32_t>(layout.collations.size() + 1);
                layout.collations.push_back(segment.acs);
            }
    }
    layout.physicalLength = slot;
    layout.slotsPerPage = slot > spec.pageSize - 6 ? 0 : (spec.pageSize - 6) / slot;
    layout.katOffset = spec.pageSize >= 2048 ? spec.pageSize - 240 : spec.pageSize - 48;
    layout.firstIndexPage = static_cast<std::uint32_t>(layout.collations.size() + 1);
    layout.firstDataPage = layout.firstIndexPage + static_cast<std::uint32_t>(spec.indexPages ? 0 : spec.keys.size());
    return layout;
}

bool PageSink::put(std::uint32_t physical, Bytes page)
{
    if (!buffer_.empty() && physical != start_ + buffer_.size() / pageSize_ && !flush())
        return false;
    if (buffer_.empty())
        start_ = physical;
    buffer_.insert(buffer_.end(), page.begin(), page.end());
    return buffer_.size() < (1u << 20) || flush();
}

bool PageSink::flush()
{
    const bool ok = buffer_.empty() || file_.writeAt(std::uint64_t{start_} * pageSize_, buffer_);
    buffer_.clear();
    return ok;
}

NewFileWriter::NewFileWriter(FileHandle &file, const Layout &layout)
    : file_(file), format_(layout.format), pageSize_(layout.pageSize), sink_(file, layout.pageSize), physical_(1, 0),
      nextPhysical_(layout.format == Format::V6 ? 4 : 1)
{
}

// 6.x: the control record pair, then a PAT pair at the start of each group.
bool NewFileWriter::isPat(std::uint32_t physical) const
{
    return format_ == Format::V6 && (physical < 4 || (physical - 2) % (pageSize_ / 4) < 2);
}

bool NewFileWriter::addPage(std::uint32_t logical, Bytes page, std::uint8_t type)
{
    while (isPat(nextPhysical_))
        ++nextPhysical_;
    if (format_ == Format::V6) {
        const auto group = (logical - 1) / entriesPerPat();
        if (group >= pats_.size())
            pats_.push_back(pagebuild::emptyPatPage(pageSize_, 1));
        pagebuild::setPatEntry(pats_[group], logical - group * entriesPerPat(), nextPhysical_, type);
    }
    physical_.push_back(nextPhysical_);
    return sink_.put(nextPhysical_++, page);
}

bool NewFileWriter::readPage(std::uint32_t logical, MutableBytes page) const
{
    return file_.readAt(std::uint64_t{physical_.at(logical)} * pageSize_, page);
}

bool NewFileWriter::rewritePage(std::uint32_t logical, Bytes page)
{
    return file_.writeAt(std::uint64_t{physical_.at(logical)} * pageSize_, page);
}

bool NewFileWriter::finish(Bytes controlRecord)
{
    bool ok = sink_.flush();
    for (std::uint32_t g = 0; g < pats_.size(); ++g)
        for (std::uint32_t copy = 0; copy < 2; ++copy)
            ok = ok && sink_.put(2 + g * (pageSize_ / 4) + copy, pats_[g]);
    ok = ok && sink_.flush() && sink_.put(0, controlRecord);
    if (format_ == Format::V6)
        ok = ok && sink_.put(1, controlRecord);
    return ok && sink_.flush();
}

} // namespace recman
