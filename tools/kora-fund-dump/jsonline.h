// Builds one JSON object on one line.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

class JsonLine {
public:
    JsonLine &key(std::string_view name)
    {
        separate();
        quoted(name);
        text_ += ':';
        fresh_ = true;
        return *this;
    }
    JsonLine &string(std::string_view value)
    {
        separate();
        quoted(value);
        return *this;
    }
    // A number, boolean or null already in JSON form.
    JsonLine &raw(std::string_view value)
    {
        separate();
        text_ += value;
        return *this;
    }
    JsonLine &number(std::int64_t value) { return raw(std::to_string(value)); }
    JsonLine &open(char bracket)
    {
        separate();
        text_ += bracket;
        fresh_ = true;
        return *this;
    }
    JsonLine &close(char bracket)
    {
        text_ += bracket;
        fresh_ = false;
        return *this;
    }
    const std::string &text() const { return text_; }

private:
    void quoted(std::string_view value)
    {
        text_ += '"';
        for (unsigned char c : value) {
            if (c == '"' || c == '\\') {
                text_ += '\\';
                text_ += static_cast<char>(c);
            } else if (c < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
                text_ += escaped;
            } else {
                text_ += static_cast<char>(c);
            }
        }
        text_ += '"';
    }
    void separate()
    {
        if (!fresh_ && !text_.empty())
            text_ += ',';
        fresh_ = false;
    }

    std::string text_;
    bool fresh_ = true;
};
