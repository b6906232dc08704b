// Any bytes as a data file: opening, stepping and keyed reads must end in a
// status, never a crash, hang or unbounded allocation. Half the inputs are
// opened as big files are, without listing their records: steps then walk
// the pages and keyed reads go down the index pages.
#include "file.h"
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto path = fuzzsupport::scratchDirectory() / "input.dat";
    fuzzsupport::writeFile(path, data, size);
    static const std::uint64_t listLimit = recman::listAtOpenLimit();
    recman::setListAtOpenLimit(size > 0 && (data[size - 1] & 1) != 0 ? 0 : listLimit);
    recman::File file;
    if (file.open(path) != recman::Status::Success)
        return 0;
    std::size_t steps = 0;
    for (auto s = file.stepLast(); s == recman::Status::Success && steps < 10000; s = file.stepPrevious())
        ++steps;
    const recman::Bytes probe(data, size);
    for (int key = 0; key < static_cast<int>(file.keyCount()); ++key) {
        std::size_t visited = 0;
        for (auto s = file.getFirst(key); s == recman::Status::Success && visited < 10000; s = file.getNext(key))
            ++visited;
        // Search with bytes taken from the input itself.
        file.getGreaterOrEqual(key, probe.subspan(size / 2));
        file.getLess(key, probe);
        if (file.getEqual(key, probe.subspan(size / 3)) == recman::Status::Success)
            file.getPrevious(key);
    }
    return 0;
}
