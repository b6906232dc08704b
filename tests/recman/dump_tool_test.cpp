// kora-fund-dump prints what the answer key says, decodes fields through a
// dictionary, and fails cleanly on bad input.
#include "dictionary.h"
#include "minijson.h"
#include "oldformatfile.h"
#include "recmantest.h"
#include "sha256.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sys/wait.h>

using testsupport::Json;

namespace {

struct Run {
    int exitCode = -1;
    std::vector<std::string> lines;
};

// stderr is dropped unless asked for; then its lines come first.
Run runDump(const std::string &arguments, bool withErrors = false)
{
    Run run;
    const std::string command = std::string(KORA_FUND_DUMP_PATH) + " " + arguments +
                                (withErrors ? " 2>&1 >/dev/null" : " 2>/dev/null");
    FILE *pipe = ::popen(command.c_str(), "r");
    std::string line;
    for (int c; (c = std::fgetc(pipe)) != EOF;) {
        if (c == '\n') {
            run.lines.push_back(line);
            line.clear();
        } else {
            line.push_back(static_cast<char>(c));
        }
    }
    const int status = ::pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

std::vector<std::uint8_t> fromHex(const std::string &hex)
{
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

TEST(DumpTool, FixturesMatchTheAnswerKey)
{
    const auto expected = Json::parse(recmantest::readText(recmantest::fixture("expected.json")));
    for (const auto &[name, answer] : expected.members) {
        SCOPED_TRACE(name);
        const auto run = runDump(recmantest::fixture(name + ".DAT").string());
        ASSERT_EQ(run.exitCode, 0);
        ASSERT_FALSE(run.lines.empty());
        const auto facts = Json::parse(run.lines[0]);
        EXPECT_EQ(facts["format"].text, name == "MBBSEMU" || name == "VARIABLE" ? "5.x" : "6.x");
        EXPECT_EQ(facts["page_size"].integer(), answer["page_length"].integer());
        EXPECT_EQ(facts["record_length"].integer(), answer["record_length"].integer());
        EXPECT_EQ(facts["physical_record_length"].integer(), answer["physical_record_length"].integer());
        EXPECT_EQ(facts["record_count"].integer(), answer["record_count"].integer());
        EXPECT_EQ(facts["variable"].boolean, answer["variable_length_records"].boolean);
        ASSERT_EQ(facts["keys"].items.size(), answer["keys"].items.size());
        for (std::size_t i = 0; i < answer["keys"].items.size(); ++i) {
            const auto &got = facts["keys"][i];
            const auto &want = answer["keys"][i];
            EXPECT_EQ(got["flags"].integer(), want["attributes"].integer());
            EXPECT_EQ(got["type"].integer(), want["data_type"].integer());
            EXPECT_EQ(got["offset"].integer(), want["offset"].integer());
            EXPECT_EQ(got["length"].integer(), want["length"].integer());
        }
        ASSERT_EQ(run.lines.size() - 1, answer["record_sha256"].items.size());
        for (std::size_t i = 1; i < run.lines.size(); ++i)
            EXPECT_EQ(testsupport::sha256Hex(fromHex(Json::parse(run.lines[i])["hex"].text)),
                      answer["record_sha256"][i - 1].text);
    }
}

TEST(DumpTool, DecodesFieldsThroughADictionary)
{
    recmantest::TempDir root;
    recman::TableDef table;
    table.name = "Years";
    table.location = "YEARS.BTR";
    table.fields = {{"YearNumber", recman::DataType::Integer, 0, 2, 0, 0},
                    {"Name", recman::DataType::ZString, 2, 10, 0, 0},
                    {"Budget", recman::DataType::Decimal, 12, 6, 2, 0}};
    table.indexes = {recman::IndexDef{{{"YearNumber"}}, false, false, false}};
    std::string message;
    ASSERT_EQ(recman::createDictionary(root.path(), {table}, message), recman::Status::Success) << message;
    std::vector<std::uint8_t> record(table.recordLength(), 0);
    std::string error;
    ASSERT_TRUE(
        recman::encodeField(table.fields[0], std::int64_t{2004}, record, recman::CodePage::windows1252(), error));
    ASSERT_TRUE(
        recman::encodeField(table.fields[1], std::string("FY \"04\""), record, recman::CodePage::windows1252(), error));
    ASSERT_TRUE(recman::encodeField(table.fields[2], recman::Decimal{-123456, 2}, record,
                                    recman::CodePage::windows1252(), error));
    bool given = false;
    ASSERT_EQ(recman::createDataFile(
                  root / "YEARS.BTR", table,
                  [&](std::vector<std::uint8_t> &out) { return given ? false : (out = record, given = true); },
                  message),
              recman::Status::Success);
    const auto run = runDump((root / "YEARS.BTR").string() + " --ddf " + root.path().string() + " --table years");
    ASSERT_EQ(run.exitCode, 0);
    ASSERT_EQ(run.lines.size(), 2u);
    const auto fields = Json::parse(run.lines[1])["fields"];
    EXPECT_EQ(fields["YearNumber"].integer(), 2004);
    EXPECT_EQ(fields["Name"].text, "FY \"04\"");
    EXPECT_DOUBLE_EQ(fields["Budget"].number, -1234.56);
}

TEST(DumpTool, SaysWhenTheHeaderCountDisagrees)
{
    recmantest::OldFile shape;
    shape.headerCount = 1;
    shape.pages.push_back({0x8000, {recmantest::oldRecord(1, 'a'), recmantest::oldRecord(2, 'b')}});
    recmantest::TempDir dir;
    recmantest::writeBytes(dir / "COUNT.DAT", shape.bytes());
    const auto run = runDump((dir / "COUNT.DAT").string());
    ASSERT_EQ(run.exitCode, 0);
    ASSERT_EQ(run.lines.size(), 3u);
    const auto facts = Json::parse(run.lines[0]);
    EXPECT_EQ(facts["record_count"].integer(), 2);
    EXPECT_EQ(facts["header_record_count"].integer(), 1);
    const auto errors = runDump((dir / "COUNT.DAT").string(), true);
    ASSERT_EQ(errors.lines.size(), 1u);
    EXPECT_NE(errors.lines[0].find("control record counts 1 records, data pages hold 2"), std::string::npos)
        << errors.lines[0];
}

TEST(DumpTool, BadInputExitsNonZero)
{
    recmantest::TempDir root;
    EXPECT_NE(runDump(recmantest::fixture("README.md").string()).exitCode, 0);
    EXPECT_NE(runDump((root / "missing.dat").string()).exitCode, 0);
    EXPECT_NE(runDump("").exitCode, 0);
    EXPECT_NE(
        runDump(recmantest::fixture("GALTELA.DAT").string() + " --ddf " + root.path().string() + " --table X").exitCode,
        0);
}

} // namespace
