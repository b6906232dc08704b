// Ordering of key values the way the record manager orders them. Each key value
// is turned into a "sort image" whose plain byte order (memcmp) equals the
// record manager's order: typed segments, descending segments, case folding and
// alternate collating sequences are all folded into that image once, so the
// indexes compare with memcmp only.
#pragma once

#include "bytes.h"
#include "keydef.h"

#include <cstdint>
#include <vector>

namespace recman {

// Appends the sort image of one key value (the segments' bytes, concatenated
// in segment order, KeyDefinition::length() bytes) to out.
void appendSortImage(const KeyDefinition &key, Bytes keyValue, std::vector<std::uint8_t> &out);

// Length of the sort image of a key (fixed per key).
std::size_t sortImageLength(const KeyDefinition &key);

// The key value of a record: its segments' bytes, concatenated (zeros for
// bytes a short record does not have).
void appendKeyValue(const KeyDefinition &key, Bytes record, std::vector<std::uint8_t> &out);

// The sort image of a record's key value.
std::vector<std::uint8_t> sortImageOfRecord(const KeyDefinition &key, Bytes record);

// True when the record is left out of the key because of the null-key flags.
bool isNullKey(const KeyDefinition &key, Bytes keyValue);

// True when the record's bytes cover every segment of the key.
bool recordCoversKey(const KeyDefinition &key, std::size_t recordLength);

} // namespace recman
