// kora-fund-dump FILE [--ddf ROOT --table NAME] [--codepage NAME]
//
// Prints the file's facts as one JSON object, then one object per record in
// physical order: its bytes in hex and, with a dictionary, its decoded fields.
#include "dictionary.h"
#include "file.h"
#include "jsonline.h"

#include <cmath>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

namespace {

struct Options {
    std::string file;
    std::string ddfRoot;
    std::string table;
    std::string codePage = "windows-1252";
};

bool parseArguments(int argc, char **argv, Options &options, std::string &error)
{
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        auto value = [&](std::string &into) {
            if (i + 1 >= argc)
                return false;
            into = argv[++i];
            return true;
        };
        if (argument == "--ddf"     ? !value(options.ddfRoot)
            : argument == "--table" ? !value(options.table)
            : argument == "--codepage"
                ? !value(options.codePage)
                : !(options.file.empty() && argument.rfind("--", 0) != 0 && (options.file = argument, true))) {
            error = "unexpected or incomplete argument \"" + argument + "\"";
            return false;
        }
    }
    if (options.file.empty())
        error = "no data file given";
    else if (options.ddfRoot.empty() != options.table.empty())
        error = "--ddf and --table go together";
    return error.empty();
}

std::string hex(recman::Bytes data)
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(data.size() * 2);
    for (auto byte : data) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

void writeValue(JsonLine &line, const recman::Value &value)
{
    if (std::holds_alternative<recman::Null>(value))
        line.raw("null");
    else if (const auto *flag = std::get_if<bool>(&value))
        line.raw(*flag ? "true" : "false");
    else if (std::holds_alternative<std::int64_t>(value) || std::holds_alternative<recman::Decimal>(value))
        line.raw(recman::toText(value));
    else if (const auto *real = std::get_if<double>(&value); real && std::isfinite(*real))
        line.raw(recman::toText(value));
    else
        line.string(recman::toText(value));
}

std::string factsLine(const recman::FileInfo &info)
{
    JsonLine line;
    line.open('{');
    line.key("format").string(info.format);
    line.key("page_size").number(info.pageSize);
    line.key("record_length").number(info.recordLength);
    line.key("physical_record_length").number(info.physicalRecordLength);
    line.key("record_count").number(info.recordCount);
    line.key("header_record_count").number(info.headerRecordCount);
    line.key("variable").raw(info.variable ? "true" : "false");
    line.key("keys").open('[');
    for (const auto &key : info.keys)
        for (const auto &segment : key.segments) {
            line.open('{');
            line.key("number").number(segment.key);
            line.key("segment").number(segment.segment);
            line.key("flags").number(segment.flags);
            line.key("type").number(segment.rawType);
            line.key("offset").number(segment.offset);
            line.key("length").number(segment.length);
            line.key("null_value").number(segment.nullValue);
            line.close('}');
        }
    line.close(']');
    line.close('}');
    return line.text();
}

std::string recordLine(recman::Bytes record, const recman::TableDef *table, const recman::CodePage &codePage)
{
    JsonLine line;
    line.open('{');
    line.key("hex").string(hex(record));
    if (table) {
        std::vector<std::pair<std::string, std::string>> errors;
        line.key("fields").open('{');
        for (const auto &field : table->fields) {
            recman::Value value;
            std::string error;
            if (!recman::decodeField(field, record, codePage, value, error)) {
                errors.emplace_back(field.name, error);
                value = recman::Null{};
            }
            line.key(field.name);
            writeValue(line, value);
        }
        line.close('}');
        if (!errors.empty()) {
            line.key("errors").open('{');
            for (const auto &[name, error] : errors)
                line.key(name).string(error);
            line.close('}');
        }
    }
    line.close('}');
    return line.text();
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    std::string error;
    if (!parseArguments(argc, argv, options, error)) {
        std::cerr << "kora-fund-dump: " << error << "\nusage: kora-fund-dump FILE [--ddf ROOT --table NAME]"
                  << " [--codepage windows-1252|cp437|latin1]\n";
        return 2;
    }
    const auto *codePage = recman::CodePage::byName(options.codePage);
    if (!codePage) {
        std::cerr << "kora-fund-dump: unknown code page \"" << options.codePage << "\"\n";
        return 2;
    }
    recman::Dictionary dictionary(*codePage);
    const recman::TableDef *table = nullptr;
    if (!options.ddfRoot.empty()) {
        if (dictionary.open(options.ddfRoot) != recman::Status::Success) {
            std::cerr << "kora-fund-dump: " << dictionary.lastMessage() << "\n";
            return 1;
        }
        table = dictionary.table(options.table);
        if (!table) {
            std::cerr << "kora-fund-dump: " << dictionary.lastMessage() << "\n";
            return 1;
        }
    }
    recman::File file;
    // The first line gives the count the data pages hold, also for a file
    // big enough to be opened without listing its records.
    auto opened = file.open(options.file);
    if (opened == recman::Status::Success)
        opened = file.countRecords();
    if (opened != recman::Status::Success) {
        std::cerr << "kora-fund-dump: status " << recman::statusNumber(opened) << " (" << recman::statusText(opened)
                  << "): " << file.lastMessage() << "\n";
        return 1;
    }
    for (const auto &warning : file.info().warnings)
        std::cerr << "kora-fund-dump: warning: " << warning << "\n";
    std::string out = factsLine(file.info()) + "\n";
    for (auto status = file.stepFirst(); status == recman::Status::Success; status = file.stepNext()) {
        out += recordLine(file.record(), table, *codePage);
        out += '\n';
        if (out.size() > (1u << 16)) {
            std::fwrite(out.data(), 1, out.size(), stdout);
            out.clear();
        }
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
