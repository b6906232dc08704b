// Alternate collating sequences of a file: 5.x files keep one on page 1, 6.x
// files one page per table, named by the key segments that use them.
#pragma once

#include "header.h"
#include "pagemap.h"

namespace recman {

// Loads the tables the keys use and attaches them to their segments. Throws
// FormatError when a key asks for a table the file does not hold.
void attachCollatingSequences(FileHeader &header, const PageMap &pages);

} // namespace recman
