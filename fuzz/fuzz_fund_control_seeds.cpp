// fuzz_fund_control_seeds OUTDIR: one seed per table of the sample
// installation (the table's number, then its data file as written).
#include "fundfuzz.h"

#include <fstream>
#include <iostream>
#include <iterator>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::cerr << "usage: fuzz_fund_control_seeds OUTDIR\n";
        return 2;
    }
    const auto &tables = installationTables();
    for (std::size_t i = 0; i < tables.size(); ++i) {
        std::ifstream in(fundfuzz::dataFile(tables[i]), std::ios::binary);
        std::string seed(1, static_cast<char>(i));
        seed.append(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        fuzzsupport::writeFile(std::filesystem::path(argv[1]) / ("table" + std::to_string(i)),
                               reinterpret_cast<const std::uint8_t *>(seed.data()), seed.size());
    }
    return 0;
}
