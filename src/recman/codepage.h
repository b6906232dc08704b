// Legacy single-byte code pages <-> UTF-8, by our own tables. Text in the
// fund-accounting files is never UTF-8; which code page it is in is a setting
// of the installation (Windows-1252 by default).
#pragma once

#include "bytes.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace recman {

class CodePage {
public:
    static const CodePage &windows1252();
    static const CodePage &dos437();
    static const CodePage &latin1();
    static const CodePage &dos866();
    static const CodePage &windows1251();
    // "1252"/"windows-1252", "437"/"cp437", "latin1"/"iso-8859-1", "866"/"cp866",
    // "1251"/"windows-1251" (case-insensitive).
    static const CodePage *byName(std::string_view name);

    std::string_view name() const { return name_; }
    std::string toUtf8(Bytes text) const;
    // Converts UTF-8 to this code page. Characters it cannot hold (and invalid
    // UTF-8) become '?'; the result says whether everything converted.
    bool fromUtf8(std::string_view utf8, std::string &out) const;

private:
    CodePage(std::string_view name, std::string_view upperHalfUtf8);

    std::string_view name_;
    std::array<char32_t, 128> upper_{};
};

} // namespace recman
