// Creating fresh 6.x files, in bulk: all records are streamed into data pages
// in one pass, so a million records take seconds.
//
// The files follow the layout the public readers accept (current control
// record and PAT in copy A, identical copy B, one physical page per logical
// page, empty B-tree roots). The record manager itself could open them, but
// its keyed reads would find the empty B-trees: they are for this engine.
#pragma once

#include "keydef.h"
#include "status.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace recman {

struct FileSpec {
    std::uint32_t recordLength = 0;
    std::uint32_t pageSize = 4096; // multiple of 512, 1024..4096
    // Keys numbered 0.. in order. Segment offsets are 0-based in the user record;
    // set keyflag::Extended and rawType for typed segments; set acs for
    // keyflag::Acs segments. keyflag::Segmented is set by the creator.
    std::vector<KeyDefinition> keys;
};

enum class CreateMode { FailIfExists, Overwrite };

// Called for each record in turn; fills `record` and returns true, or returns
// false when there are no more records.
using RecordSource = std::function<bool(std::vector<std::uint8_t> &record)>;

// A source that hands out the given records in order; they must outlive it.
RecordSource recordsFrom(const std::vector<std::vector<std::uint8_t>> &records);

// Writes the file under a temporary name and renames it into place, so that
// a failure never leaves a half-written file at `path`.
Status createFile(const std::filesystem::path &path, const FileSpec &spec, const RecordSource &records,
                  std::string &message, CreateMode mode = CreateMode::FailIfExists);
Status createFile(const std::filesystem::path &path, const FileSpec &spec,
                  const std::vector<std::vector<std::uint8_t>> &records, std::string &message,
                  CreateMode mode = CreateMode::FailIfExists);

} // namespace recman
