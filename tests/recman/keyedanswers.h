// Keyed reads compared between two ways of reading one file.
#pragma once

#include "file.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace recmantest {

// Files opened while it lives have their records listed only when needed.
struct Unlisted {
    std::uint64_t saved = recman::listAtOpenLimit();
    Unlisted() { recman::setListAtOpenLimit(0); }
    ~Unlisted() { recman::setListAtOpenLimit(saved); }
};

inline std::uint32_t addressOf(const recman::File &file)
{
    std::uint32_t address = 0;
    EXPECT_EQ(file.position(address), recman::Status::Success);
    return address;
}

// Where each keyed operation lands, as (status, address) pairs: both
// directions whole, and from every stride-th value the file holds (and just
// beside it) each of the five gets followed by one step each way.
inline std::vector<std::pair<int, std::uint32_t>> keyedAnswers(recman::File &file, int key, std::size_t stride = 1)
{
    std::vector<std::pair<int, std::uint32_t>> answers;
    const auto note = [&](recman::Status status) {
        answers.emplace_back(static_cast<int>(status), status == recman::Status::Success ? addressOf(file) : 0);
        return status == recman::Status::Success;
    };
    std::set<std::vector<std::uint8_t>> values;
    for (bool ok = note(file.getFirst(key)); ok; ok = note(file.getNext(key)))
        values.insert(file.keyValueOf(key, file.record()));
    for (bool ok = note(file.getLast(key)); ok; ok = note(file.getPrevious(key))) {
    }
    using Get = recman::Status (recman::File::*)(int, recman::Bytes);
    const Get gets[] = {&recman::File::getEqual, &recman::File::getGreater, &recman::File::getGreaterOrEqual,
                        &recman::File::getLess, &recman::File::getLessOrEqual};
    std::size_t seen = 0;
    for (auto value : values) {
        if (seen++ % stride != 0)
            continue;
        for (int nudge : {0, -1, +1}) {
            value.back() = static_cast<std::uint8_t>(value.back() + nudge);
            for (const auto get : gets)
                for (int step : {+1, -1})
                    if (note((file.*get)(key, value)))
                        note(step > 0 ? file.getNext(key) : file.getPrevious(key));
            value.back() = static_cast<std::uint8_t>(value.back() - nudge);
        }
    }
    return answers;
}

// Every record stepping forward and back, with its address.
inline std::vector<std::pair<std::uint32_t, std::vector<std::uint8_t>>> stepAnswers(recman::File &file)
{
    std::vector<std::pair<std::uint32_t, std::vector<std::uint8_t>>> answers;
    for (auto status = file.stepFirst(); status == recman::Status::Success; status = file.stepNext())
        answers.emplace_back(addressOf(file), std::vector<std::uint8_t>(file.record().begin(), file.record().end()));
    for (auto status = file.stepLast(); status == recman::Status::Success; status = file.stepPrevious())
        answers.emplace_back(addressOf(file), std::vector<std::uint8_t>(file.record().begin(), file.record().end()));
    return answers;
}

} // namespace recmantest
