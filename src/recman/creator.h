// Creating fresh files in bulk: all records are streamed into data pages in
// one pass, so a million records take seconds.
//
// 6.x files follow the layout the public readers accept (current control
// record and PAT in copy A, identical copy B, one physical page per logical
// page). Without index pages their B-tree roots are empty and a tag marks
// them as this engine's own, to insert into and delete from. With index pages
// each key's B-tree is bulk-loaded after the records, and the file stands for
// one the record manager wrote: no tag, updates in place only. 5.x files
// (control record on page 0, physical pages) have no such tag and are only
// made with their index pages.
#pragma once

#include "header.h"
#include "keydef.h"
#include "status.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace recman {

struct FileSpec {
    Format format = Format::V6;
    bool indexPages = false; // build every key's B-tree (required for 5.x)
    std::uint32_t recordLength = 0;
    std::uint32_t pageSize = 4096; // multiple of 512; 6.x 1024..4096, 5.x 512..4096
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
