// One page of a key's B-tree, as the record manager writes it: a 16-byte
// header (own page number, usage, entry count, rightmost child, leftmost
// child; all ones in leaves) and entries of [key bytes][record address]
// [last duplicate's address, linked-duplicate keys only][child pointer].
// The child after entry i holds the keys between entry i and entry i + 1;
// the last entry's right child is in the header.
#pragma once

#include "header.h"
#include "keydef.h"
#include "pagemap.h"

#include <cstdint>
#include <string>

namespace recman {

// Whether this engine reads the key's index entries, and if not, why not.
bool indexLayoutReadable(const FileHeader &header, const KeyDefinition &key, std::string &problem);

// Pages 1 .. limit-1 may be index pages.
std::uint32_t indexPageLimit(const PageMap &pages, const FileHeader &header);

class IndexPage {
public:
    static constexpr std::uint32_t None = 0xFFFFFFFF;

    // Reads and checks the page: inside the file, naming itself with the
    // key's tag, an index page (5.x usage bit 15 clear), its entries fitting.
    // Throws FormatError naming the page otherwise.
    IndexPage(const PageMap &pages, const FileHeader &header, const KeyDefinition &key, std::uint32_t number);

    std::uint32_t number() const { return number_; }
    std::size_t count() const { return count_; }
    bool leaf() const { return childBefore(0) == None; }
    Bytes keyBytes(std::size_t entry) const { return entryBytes(entry).first(keyLength_); }
    std::uint32_t record(std::size_t entry) const;
    // The chain's last record (linked-duplicate keys), else record().
    std::uint32_t lastDuplicate(std::size_t entry) const;
    // The child holding the keys below entry i (i == count(): above the last).
    std::uint32_t childBefore(std::size_t entry) const;

private:
    Bytes entryBytes(std::size_t entry) const;
    std::uint32_t pointer(std::size_t offset) const;

    CachedPage held_;
    const FileHeader &header_;
    std::uint32_t number_;
    std::size_t count_ = 0;
    std::size_t entryLength_;
    std::size_t keyLength_;
    bool linked_;
};

} // namespace recman
