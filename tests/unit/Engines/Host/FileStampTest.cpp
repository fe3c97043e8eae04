// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/FileStamp.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace tovik::test {
namespace {

namespace fs = std::filesystem;

struct Change {
    std::string name;
    std::function<void(const std::string& folder)> make;
    bool isSeen;

    friend void PrintTo(const Change& row, std::ostream* out) { *out << row.name; }
};

class FileStamps : public testing::TestWithParam<Change> {};

TEST_P(FileStamps, tellChanges) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "model/am");
    writeFile(folder / "model/am/final.mdl", "half");
    writeFile(folder / "model/words", "words");
    const auto places = std::vector<fs::path>{folder / "model", folder / "dictionary"};
    const auto before = fileStamp(places);
    GetParam().make(folder / "");
    EXPECT_EQ(fileStamp(places) != before, GetParam().isSeen);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FileStamps,
    testing::Values(
        Change{"None", [](const std::string&) {}, false},
        Change{"Grows",
               [](const std::string& folder) { writeFile(folder + "model/am/final.mdl", "whole now"); },
               true},
        Change{"Comes", [](const std::string& folder) { writeFile(folder + "dictionary", ""); }, true},
        Change{"ComesBelow", [](const std::string& folder) { writeFile(folder + "model/am/other", ""); },
               true},
        Change{"Goes", [](const std::string& folder) { fs::remove(folder + "model/words"); }, true},
        Change{"Dated",
               [](const std::string& folder) {
                   fs::last_write_time(folder + "model/words", fs::file_time_type(std::chrono::hours(1)));
               },
               true},
        Change{"Elsewhere", [](const std::string& folder) { writeFile(folder + "notes", "x"); }, false}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace tovik::test
