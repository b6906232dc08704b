// State of an open File, shared by the navigation and the write code.
#pragma once

#include "file.h"
#include "filehandle.h"
#include "header.h"
#include "journal.h"
#include "keyindex.h"
#include "pagemap.h"
#include "recordstore.h"

#include <memory>
#include <optional>
#include <vector>

namespace recman {

struct File::Impl {
    FileHandle handle;
    std::filesystem::path path;
    OpenMode mode = OpenMode::ReadOnly;
    // A group of writes is open (beginGroup); its journal when the file is writable.
    bool inGroup = false;
    std::unique_ptr<Journal> journal;
    FileHeader header;
    std::unique_ptr<PageMap> pages;
    RecordStore records;
    KeyIndexes indexes;
    std::vector<std::uint32_t> unusedSlots;
    // Physical pages no current page uses (own files only; filled on first write).
    std::vector<std::uint32_t> freePhysical;
    bool freePhysicalKnown = false;
    FileInfo info;

    // Currency: the current record and, after a keyed operation, the key it was
    // reached by and that key's sort image at the time (so next/previous still
    // work after the record was deleted or changed).
    std::optional<std::uint32_t> current;
    int keyPath = -1;
    std::vector<std::uint8_t> keyImage;
};

// Writes; each returns Success or a status and sets message.
Status updateRecord(File::Impl &file, std::uint32_t ordinal, Bytes record, std::string &message);
Status insertRecord(File::Impl &file, Bytes record, std::uint32_t &ordinal, std::string &message);
Status deleteRecord(File::Impl &file, std::uint32_t ordinal, std::string &message);

} // namespace recman
