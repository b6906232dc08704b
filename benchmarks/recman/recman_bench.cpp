// Record-manager engine figures on a transaction-like file (100-byte records,
// three keys, with their B-tree index pages as the record manager's files have
// them), created once per format (argument 5: 5.x, 6: 6.x) in a temporary
// folder. KORA_BENCH_RECORDS sets the number of records (default 1,000,000,
// about 155 MB; 10,000,000 make 1.5 GB).
//   BM_CreateFile      bulk creation time
//   BM_CatFile         plain sequential read of the file (the floor for a scan)
//   BM_Open            open alone; resident memory it adds
//   BM_ColdGetEqual    open, then one keyed lookup
//   BM_RandomGetEquals open, then 10,000 lookups by random unique ids; memory after
//   BM_OpenAndScan     open and step through all records
//   BM_GetEqual        one keyed lookup by a random unique id on an open file
#include "creator.h"
#include "file.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <malloc.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>

namespace {

const std::int32_t recordCount = [] {
    const char *text = std::getenv("KORA_BENCH_RECORDS");
    return text ? std::max(1, std::atoi(text)) : 1'000'000;
}();
constexpr std::uint32_t recordLength = 100;

// id (int32, unique), account code (12 chars), date (4), amount (currency 8),
// description (rest).
recman::FileSpec transactionSpec(recman::Format format)
{
    using namespace recman;
    FileSpec spec;
    spec.format = format;
    spec.indexPages = true;
    spec.recordLength = recordLength;
    auto segment = [](int key, int number, std::uint16_t flags, DataType type, std::uint32_t offset,
                      std::uint32_t length) {
        return KeySegment{key,
                          number,
                          static_cast<std::uint16_t>(flags | keyflag::Extended),
                          static_cast<std::uint8_t>(type),
                          offset,
                          length,
                          0,
                          {}};
    };
    KeyDefinition id{0, {segment(0, 0, 0, DataType::Integer, 0, 4)}, 0};
    KeyDefinition account{1,
                          {segment(1, 0, keyflag::Duplicates, DataType::String, 4, 12),
                           segment(1, 1, keyflag::Duplicates, DataType::Date, 16, 4)},
                          0};
    KeyDefinition amount{2, {segment(2, 0, keyflag::Duplicates | keyflag::Descending, DataType::Currency, 20, 8)}, 0};
    spec.keys = {id, account, amount};
    return spec;
}

void makeRecord(std::int32_t id, std::vector<std::uint8_t> &record)
{
    record.assign(recordLength, ' ');
    std::memcpy(record.data(), &id, 4);
    const std::int32_t scrambled = static_cast<std::int32_t>((static_cast<std::uint32_t>(id) * 2654435761u) % 5000);
    const std::string account = "A-" + std::to_string(1000 + scrambled);
    std::memcpy(record.data() + 4, account.data(), account.size());
    const std::uint8_t date[4] = {static_cast<std::uint8_t>(1 + id % 28), static_cast<std::uint8_t>(1 + id % 12), 0xD4,
                                  0x07};
    std::memcpy(record.data() + 16, date, 4);
    const std::int64_t amount = (static_cast<std::int64_t>(id) * 7919) % 10'000'000 - 5'000'000;
    std::memcpy(record.data() + 20, &amount, 8);
    const std::string text = "transaction " + std::to_string(id);
    std::memcpy(record.data() + 28, text.data(), text.size());
}

const std::filesystem::path &benchDirectory()
{
    static const std::filesystem::path directory = [] {
        const auto path = std::filesystem::temp_directory_path() / ("recman-bench-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path);
        return path;
    }();
    return directory;
}

recman::Format formatOf(const benchmark::State &state)
{
    return state.range(0) == 5 ? recman::Format::V5 : recman::Format::V6;
}

std::filesystem::path benchFile(const benchmark::State &state)
{
    return benchDirectory() / (formatOf(state) == recman::Format::V5 ? "TRANS5.BTR" : "TRANS6.BTR");
}

recman::Status createBenchFile(const benchmark::State &state, std::string &message)
{
    std::int32_t next = 0;
    return recman::createFile(
        benchFile(state), transactionSpec(formatOf(state)),
        [&](std::vector<std::uint8_t> &record) {
            if (next == recordCount)
                return false;
            makeRecord(next++, record);
            return true;
        },
        message, recman::CreateMode::Overwrite);
}

long statusKilobytes(const char *field)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(field, 0) == 0)
            return std::stol(line.substr(std::strlen(field)));
    return 0;
}

void BM_CreateFile(benchmark::State &state)
{
    for (auto _ : state) {
        std::string message;
        if (createBenchFile(state, message) != recman::Status::Success)
            state.SkipWithError(message.c_str());
    }
    state.counters["peak_rss_MB"] = static_cast<double>(statusKilobytes("VmHWM:")) / 1e3;
    // Hand the creation's sort buffers back, so that the resident memory the
    // later benchmarks add is theirs, not the heap this one left behind.
    ::malloc_trim(0);
    state.counters["records_per_s"] =
        benchmark::Counter(static_cast<double>(recordCount), benchmark::Counter::kIsIterationInvariantRate);
}

void BM_CatFile(benchmark::State &state)
{
    std::vector<char> buffer(1 << 20);
    for (auto _ : state) {
        const int fd = ::open(benchFile(state).c_str(), O_RDONLY);
        while (::read(fd, buffer.data(), buffer.size()) > 0) {
        }
        ::close(fd);
    }
    state.counters["MB_per_s"] =
        benchmark::Counter(static_cast<double>(std::filesystem::file_size(benchFile(state))) / 1e6,
                           benchmark::Counter::kIsIterationInvariantRate);
}

double rssMb()
{
    return static_cast<double>(statusKilobytes("VmRSS:")) / 1e3;
}

void BM_Open(benchmark::State &state)
{
    const double before = rssMb();
    double opened = 0;
    for (auto _ : state) {
        recman::File file;
        if (file.open(benchFile(state)) != recman::Status::Success)
            state.SkipWithError(file.lastMessage().c_str());
        opened = rssMb() - before;
    }
    state.counters["rss_growth_MB"] = opened;
}

recman::Status getById(recman::File &file, std::int32_t id)
{
    return file.getEqual(0, recman::Bytes(reinterpret_cast<const std::uint8_t *>(&id), 4));
}

// The time of the first lookup after an open, the open itself excluded.
void BM_ColdGetEqual(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        recman::File file;
        if (file.open(benchFile(state)) != recman::Status::Success)
            state.SkipWithError(file.lastMessage().c_str());
        state.ResumeTiming();
        if (getById(file, recordCount / 2) != recman::Status::Success)
            state.SkipWithError("key not found");
    }
}

void BM_RandomGetEquals(benchmark::State &state)
{
    const double before = rssMb();
    double after = 0;
    for (auto _ : state) {
        recman::File file;
        if (file.open(benchFile(state)) != recman::Status::Success)
            state.SkipWithError(file.lastMessage().c_str());
        std::mt19937 random(7);
        std::uniform_int_distribution<std::int32_t> ids(0, recordCount - 1);
        for (int i = 0; i < 10'000; ++i)
            if (getById(file, ids(random)) != recman::Status::Success)
                state.SkipWithError("key not found");
        after = rssMb() - before;
    }
    state.counters["rss_growth_MB"] = after;
}

void BM_OpenAndScan(benchmark::State &state)
{
    const long before = statusKilobytes("VmRSS:");
    long opened = 0;
    for (auto _ : state) {
        recman::File file;
        if (file.open(benchFile(state)) != recman::Status::Success)
            state.SkipWithError(file.lastMessage().c_str());
        opened = statusKilobytes("VmRSS:") - before;
        std::size_t records = 0;
        for (auto s = file.stepFirst(); s == recman::Status::Success; s = file.stepNext())
            ++records;
        benchmark::DoNotOptimize(records);
    }
    const double fileMb = static_cast<double>(std::filesystem::file_size(benchFile(state))) / 1e6;
    state.counters["MB_per_s"] = benchmark::Counter(fileMb, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["file_MB"] = fileMb;
    state.counters["rss_growth_MB"] = static_cast<double>(opened) / 1e3;
    state.counters["peak_rss_MB"] = static_cast<double>(statusKilobytes("VmHWM:")) / 1e3;
}

void BM_GetEqual(benchmark::State &state)
{
    static recman::File files[2];
    auto &file = files[formatOf(state) == recman::Format::V5 ? 0 : 1];
    if (!file.isOpen() && file.open(benchFile(state)) != recman::Status::Success)
        state.SkipWithError(file.lastMessage().c_str());
    std::mt19937 random(42);
    std::uniform_int_distribution<std::int32_t> ids(0, recordCount - 1);
    std::int32_t id = 0;
    for (auto _ : state) {
        id = ids(random);
        if (getById(file, id) != recman::Status::Success)
            state.SkipWithError("key not found");
    }
    state.counters["peak_rss_MB"] = static_cast<double>(statusKilobytes("VmHWM:")) / 1e3;
}

// Argument 5 or 6: the format of the file.
void bothFormats(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("v")->Arg(5)->Arg(6);
}

BENCHMARK(BM_CreateFile)->Apply(bothFormats)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_CatFile)->Apply(bothFormats)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Open)->Apply(bothFormats)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(BM_ColdGetEqual)->Apply(bothFormats)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(BM_RandomGetEquals)->Apply(bothFormats)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_OpenAndScan)->Apply(bothFormats)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3);
BENCHMARK(BM_GetEqual)->Apply(bothFormats)->Unit(benchmark::kMicrosecond)->Repetitions(5)->ReportAggregatesOnly(true);

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::filesystem::remove_all(benchDirectory());
    return 0;
}
