#pragma once

#include "installationschema.h"

#include <QString>

#include <filesystem>

// The three dictionary files, FILE.DDF, FIELD.DDF and INDEX.DDF, in the
// 97/32/10-byte record layouts with 0-based key numbers.

// Writes the dictionary for the tables into `folder` (replacing one there).
// 0 or a record-manager status with the reason in `message`.
int writeFundDictionary(const std::filesystem::path &folder, const std::vector<FundTableSpec> &tables,
                        QString &message);

// The record-manager key definitions of a table's indexes.
std::vector<recman::KeyDefinition> fundKeyDefinitions(const FundTableSpec &spec);
