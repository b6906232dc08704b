// The real record-manager files must read exactly as the answer key says:
// geometry, every key segment and every record's bytes.
#include "file.h"
#include "minijson.h"
#include "recmantest.h"
#include "sha256.h"

#include <gtest/gtest.h>
#include <unistd.h>

using recman::File;
using recman::Status;
using testsupport::Json;

namespace {

const Json &answerKey()
{
    static const Json key = Json::parse(recmantest::readText(recmantest::fixture("expected.json")));
    return key;
}

class FixtureTest : public ::testing::TestWithParam<std::string> {};

TEST_P(FixtureTest, AgreesWithAnswerKey)
{
    const auto &expected = answerKey()[GetParam()];
    File file;
    ASSERT_EQ(file.open(recmantest::fixture(GetParam() + ".DAT")), Status::Success) << file.lastMessage();
    const auto &info = file.info();
    EXPECT_EQ(info.recordLength, expected["record_length"].integer());
    EXPECT_EQ(info.physicalRecordLength, expected["physical_record_length"].integer());
    EXPECT_EQ(info.pageSize, expected["page_length"].integer());
    EXPECT_EQ(info.variable, expected["variable_length_records"].boolean);
    EXPECT_EQ(info.recordCount, expected["record_count"].integer());
    EXPECT_TRUE(info.warnings.empty()) << info.warnings.front();

    std::vector<const recman::KeySegment *> segments;
    for (const auto &key : info.keys)
        for (const auto &segment : key.segments)
            segments.push_back(&segment);
    const auto &keys = expected["keys"];
    ASSERT_EQ(segments.size(), keys.items.size());
    for (std::size_t i = 0; i < segments.size(); ++i) {
        SCOPED_TRACE("segment " + std::to_string(i));
        EXPECT_EQ(segments[i]->key, keys[i]["number"].integer());
        EXPECT_EQ(segments[i]->segment, keys[i]["segment"].integer());
        EXPECT_EQ(segments[i]->flags, keys[i]["attributes"].integer());
        EXPECT_EQ(segments[i]->rawType, keys[i]["data_type"].integer());
        EXPECT_EQ(segments[i]->offset, keys[i]["offset"].integer());
        EXPECT_EQ(segments[i]->length, keys[i]["length"].integer());
        EXPECT_EQ(segments[i]->nullValue, keys[i]["null_value"].integer());
    }

    const auto &hashes = expected["record_sha256"];
    std::size_t n = 0;
    for (auto status = file.stepFirst(); status == Status::Success; status = file.stepNext(), ++n) {
        ASSERT_LT(n, hashes.items.size());
        EXPECT_EQ(testsupport::sha256Hex(file.record()), hashes[n].text) << "record " << n;
    }
    EXPECT_EQ(n, hashes.items.size());
}

INSTANTIATE_TEST_SUITE_P(RealFiles, FixtureTest, ::testing::Values("MBBSEMU", "VARIABLE", "GALTELA", "MULTIACS"));

} // namespace
