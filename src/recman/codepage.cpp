#include "codepage.h"

#include <algorithm>
#include <cctype>

namespace recman {

namespace {

// Decodes one UTF-8 sequence at `at`; returns U+FFFD for anything malformed.
char32_t nextCodePoint(std::string_view text, std::size_t &at)
{
    const auto lead = static_cast<unsigned char>(text[at++]);
    if (lead < 0x80)
        return lead;
    int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
    if (extra < 0 || lead > 0xF4)
        return 0xFFFD;
    char32_t code = lead & (0x3F >> extra);
    for (; extra > 0; --extra) {
        if (at >= text.size() || (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80)
            return 0xFFFD;
        code = code << 6 | (static_cast<unsigned char>(text[at++]) & 0x3F);
    }
    return code;
}

void appendUtf8(char32_t code, std::string &out)
{
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0 | code >> 6));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | code >> 12));
        out.push_back(static_cast<char>(0x80 | (code >> 6 & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | code >> 18));
        out.push_back(static_cast<char>(0x80 | (code >> 12 & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code >> 6 & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
}

// Bytes 0x80..0xFF of each code page, written out as UTF-8. The five
// positions Windows-1252 leaves undefined map to the C1 controls of the same
// number, as Windows itself converts them, so every byte round-trips.
constexpr std::string_view windows1252Upper = "€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F\u0090‘’“”•–—˜™š›œ\u009DžŸ"
                                              "\u00A0¡¢£¤¥¦§¨©ª«¬\u00AD®¯°±²³´µ¶·¸¹º»¼½¾¿"
                                              "ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß"
                                              "àáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ";

constexpr std::string_view dos437Upper = "ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒ"
                                         "áíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
                                         "└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
                                         "αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0";

constexpr std::string_view latin1Upper =
    "\u0080\u0081\u0082\u0083\u0084\u0085\u0086\u0087\u0088\u0089\u008A\u008B\u008C\u008D\u008E\u008F"
    "\u0090\u0091\u0092\u0093\u0094\u0095\u0096\u0097\u0098\u0099\u009A\u009B\u009C\u009D\u009E\u009F"
    "\u00A0¡¢£¤¥¦§¨©ª«¬\u00AD®¯°±²³´µ¶·¸¹º»¼½¾¿"
    "ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞß"
    "àáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ";

// Cyrillic: DOS code page 866 (box drawing as in 437) and Windows-1251, whose
// one undefined position (0x98) maps to its C1 control like 1252's.
constexpr std::string_view dos866Upper = "АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ"
                                         "абвгдежзийклмноп░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
                                         "└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
                                         "рстуфхцчшщъыьэюяЁёЄєЇїЎў°∙·√№¤■\u00A0";

constexpr std::string_view windows1251Upper = "ЂЃ‚ѓ„…†‡€‰Љ‹ЊЌЋЏђ‘’“”•–—\u0098™љ›њќћџ"
                                              "\u00A0ЎўЈ¤Ґ¦§Ё©Є«¬\u00AD®Ї°±Ііґµ¶·ё№є»јЅѕї"
                                              "АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ"
                                              "абвгдежзийклмнопрстуфхцчшщъыьэюя";

bool sameName(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

} // namespace

CodePage::CodePage(std::string_view name, std::string_view upperHalfUtf8) : name_(name)
{
    std::size_t at = 0;
    for (auto &code : upper_)
        code = at < upperHalfUtf8.size() ? nextCodePoint(upperHalfUtf8, at) : 0xFFFD;
}

const CodePage &CodePage::windows1252()
{
    static const CodePage page("windows-1252", windows1252Upper);
    return page;
}

const CodePage &CodePage::dos437()
{
    static const CodePage page("cp437", dos437Upper);
    return page;
}

const CodePage &CodePage::latin1()
{
    static const CodePage page("iso-8859-1", latin1Upper);
    return page;
}

const CodePage &CodePage::dos866()
{
    static const CodePage page("cp866", dos866Upper);
    return page;
}

const CodePage &CodePage::windows1251()
{
    static const CodePage page("windows-1251", windows1251Upper);
    return page;
}

const CodePage *CodePage::byName(std::string_view name)
{
    for (auto alias : {"1252", "windows-1252", "cp1252"})
        if (sameName(name, alias))
            return &windows1252();
    for (auto alias : {"437", "cp437", "ibm437"})
        if (sameName(name, alias))
            return &dos437();
    for (auto alias : {"latin1", "iso-8859-1", "8859-1"})
        if (sameName(name, alias))
            return &latin1();
    for (auto alias : {"866", "cp866", "ibm866"})
        if (sameName(name, alias))
            return &dos866();
    for (auto alias : {"1251", "windows-1251", "cp1251"})
        if (sameName(name, alias))
            return &windows1251();
    return nullptr;
}

std::string CodePage::toUtf8(Bytes text) const
{
    std::string out;
    out.reserve(text.size());
    for (auto byte : text)
        appendUtf8(byte < 0x80 ? char32_t{byte} : upper_[byte - 0x80], out);
    return out;
}

bool CodePage::fromUtf8(std::string_view utf8, std::string &out) const
{
    out.clear();
    bool complete = true;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto code = nextCodePoint(utf8, at);
        if (code < 0x80) {
            out.push_back(static_cast<char>(code));
            continue;
        }
        const auto found = std::find(upper_.begin(), upper_.end(), code);
        if (found == upper_.end() || code == 0xFFFD) {
            out.push_back('?');
            complete = false;
        } else {
            out.push_back(static_cast<char>(0x80 + (found - upper_.begin())));
        }
    }
    return complete;
}

} // namespace recman
