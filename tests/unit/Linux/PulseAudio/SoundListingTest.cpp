// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/SoundDirectory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace tovik;

SoundSource source(const std::string& name, bool isMonitor = false) {
    SoundSource source;
    source.name = name;
    source.isMonitor = isMonitor;
    return source;
}

struct ListingRow {
    std::string name;
    std::vector<SoundSource> sources;
    bool withMonitors = false;
    std::vector<std::string> microphones;
};

class SoundListingMicrophones : public testing::TestWithParam<ListingRow> {};

TEST_P(SoundListingMicrophones, areThoseThatPeopleWouldCallSo) {
    SoundListing listing;
    listing.sources = GetParam().sources;
    std::vector<std::string> names;
    for (const auto& microphone : listing.microphones(GetParam().withMonitors)) {
        names.push_back(microphone.name);
    }
    EXPECT_EQ(names, GetParam().microphones);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SoundListingMicrophones,
    testing::Values(
        ListingRow{"nothing", {}, false, {}},
        ListingRow{"inTheServersOrder", {source("b"), source("a")}, false, {"b", "a"}},
        ListingRow{"monitorsAreNone", {source("m", true), source("a")}, false, {"a"}},
        ListingRow{"monitorsWhenAskedFor", {source("m", true), source("a")}, true, {"m", "a"}},
        ListingRow{"monitorsWhenNothingElse", {source("m", true), source("n", true)}, false, {"m", "n"}},
        ListingRow{"neverTheStandIn", {source("auto_null.monitor", true)}, false, {}},
        ListingRow{"neverTheStandInEvenWhenAskedFor", {source("auto_null.monitor", true)}, true, {}},
        ListingRow{
            "monitorBesideTheStandIn", {source("auto_null.monitor", true), source("m", true)}, false, {"m"}}),
    [](const auto& row) { return row.param.name; });

TEST(SoundListing, theDefaultIsUsableOnlyWhenListedAndNoStandIn) {
    SoundListing listing;
    listing.sources = {source("a"), source("auto_null.monitor", true), source("m", true)};
    listing.defaultSource = "a";
    ASSERT_NE(listing.usableDefault(), nullptr);
    EXPECT_EQ(listing.usableDefault()->name, "a");
    listing.defaultSource = "m";
    EXPECT_NE(listing.usableDefault(), nullptr);
    listing.defaultSource = "auto_null.monitor";
    EXPECT_EQ(listing.usableDefault(), nullptr);
    listing.defaultSource = "gone";
    EXPECT_EQ(listing.usableDefault(), nullptr);
    listing.defaultSource.clear();
    EXPECT_EQ(listing.usableDefault(), nullptr);
}

} // namespace
