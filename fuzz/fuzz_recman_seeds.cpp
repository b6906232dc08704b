// fuzz_recman_seeds OUTDIR: writes a dictionary-fuzzer seed built from a real
// dictionary written by the engine.
#include "dictionary.h"
#include "fuzzsupport.h"

#include <iostream>
#include <iterator>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::cerr << "usage: fuzz_recman_seeds OUTDIR\n";
        return 2;
    }
    recman::TableDef table;
    table.name = "Funds";
    table.location = "C:\\KORA\\FUND\\Funds.btr";
    table.fields = {{"ID", recman::DataType::String, 0, 4, 0, 0},    {"Amount", recman::DataType::Decimal, 4, 6, 2, 0},
                    {"When", recman::DataType::Date, 10, 4, 0, 0},   {"Count", recman::DataType::Integer, 14, 2, 0, 0},
                    {"Rate", recman::DataType::BFloat, 16, 4, 0, 0}, {"Num", recman::DataType::Numeric, 20, 5, 1, 0}};
    table.indexes = {recman::IndexDef{{{"ID"}}, false, true, false}};
    const auto &directory = fuzzsupport::scratchDirectory();
    std::string message;
    if (recman::createDictionary(directory, {table}, message) != recman::Status::Success) {
        std::cerr << message << "\n";
        return 1;
    }
    std::string seed;
    for (const char *name : {"FILE.DDF", "FIELD.DDF", "INDEX.DDF"}) {
        std::ifstream in(directory / name, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        const auto length = static_cast<std::uint32_t>(bytes.size());
        for (int shift = 0; shift < 32; shift += 8)
            seed.push_back(static_cast<char>(length >> shift));
        seed += bytes;
    }
    seed += std::string("A   \x12\x34\x5F\x00\x00\x0C\x01\x07\xD2\x07\x05\x00\x00\x00\x00\x81"
                        "0012J",
                        25);
    std::ofstream(std::filesystem::path(argv[1]) / "dictionary.seed", std::ios::binary) << seed;
    std::filesystem::remove_all(directory);
    return 0;
}
