// A small JSON reader for answer-key files in tests (objects, arrays, strings
// without escapes beyond \" and \\, numbers, true/false/null).
#pragma once

#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace testsupport {

struct Json {
    enum Kind { Null, Bool, Number, String, Array, Object } kind = Null;
    bool boolean = false;
    double number = 0;
    std::string text;
    std::vector<Json> items;
    std::map<std::string, Json> members;

    const Json &operator[](const std::string &name) const { return members.at(name); }
    const Json &operator[](std::size_t index) const { return items.at(index); }
    long long integer() const { return static_cast<long long>(number); }

    static Json parse(const std::string &source)
    {
        std::size_t at = 0;
        Json value = parseValue(source, at);
        return value;
    }

private:
    static void skip(const std::string &s, std::size_t &at)
    {
        while (at < s.size() && (s[at] == ' ' || s[at] == '\n' || s[at] == '\r' || s[at] == '\t'))
            ++at;
    }
    static std::string parseString(const std::string &s, std::size_t &at)
    {
        std::string out;
        for (++at; at < s.size() && s[at] != '"'; ++at) {
            if (s[at] == '\\')
                ++at;
            out.push_back(s[at]);
        }
        ++at;
        return out;
    }
    static Json parseValue(const std::string &s, std::size_t &at)
    {
        skip(s, at);
        Json value;
        if (at >= s.size())
            throw std::runtime_error("unexpected end of JSON");
        const char c = s[at];
        if (c == '{') {
            value.kind = Object;
            ++at;
            for (skip(s, at); s[at] != '}'; skip(s, at)) {
                const auto name = parseString(s, at);
                skip(s, at);
                ++at; // ':'
                value.members[name] = parseValue(s, at);
                skip(s, at);
                if (s[at] == ',')
                    ++at;
            }
            ++at;
        } else if (c == '[') {
            value.kind = Array;
            ++at;
            for (skip(s, at); s[at] != ']'; skip(s, at)) {
                value.items.push_back(parseValue(s, at));
                skip(s, at);
                if (s[at] == ',')
                    ++at;
            }
            ++at;
        } else if (c == '"') {
            value.kind = String;
            value.text = parseString(s, at);
        } else if (s.compare(at, 4, "true") == 0 || s.compare(at, 5, "false") == 0) {
            value.kind = Bool;
            value.boolean = c == 't';
            at += value.boolean ? 4 : 5;
        } else if (s.compare(at, 4, "null") == 0) {
            at += 4;
        } else {
            value.kind = Number;
            char *end = nullptr;
            value.number = std::strtod(s.c_str() + at, &end);
            at = static_cast<std::size_t>(end - s.c_str());
        }
        return value;
    }
};

} // namespace testsupport
