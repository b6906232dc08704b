// Any bytes as a data dictionary (FILE/FIELD/INDEX.DDF) plus one record:
// reading the dictionary, resolving locations, deriving key specs and decoding
// every field must end in a status or an error text.
#include "dictionary.h"
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto input = fuzzsupport::splitDictionaryInput(data, size);
    const auto &directory = fuzzsupport::scratchDirectory();
    const char *names[] = {"FILE.DDF", "FIELD.DDF", "INDEX.DDF"};
    for (int i = 0; i < 3; ++i)
        fuzzsupport::writeFile(directory / names[i], reinterpret_cast<const std::uint8_t *>(input.parts[i].data()),
                               input.parts[i].size());
    recman::Dictionary dictionary;
    if (dictionary.open(directory) != recman::Status::Success)
        return 0;
    std::vector<std::uint8_t> record(input.record.begin(), input.record.end());
    for (const auto &table : dictionary.tables()) {
        dictionary.dataFilePath(table);
        recman::FileSpec spec;
        std::string message;
        recman::fileSpecFor(table, spec, message);
        for (const auto &field : table.fields) {
            recman::Value value;
            std::string error;
            if (recman::decodeField(field, record, dictionary.codePage(), value, error))
                recman::encodeField(field, value, record, dictionary.codePage(), error);
        }
    }
    return 0;
}
