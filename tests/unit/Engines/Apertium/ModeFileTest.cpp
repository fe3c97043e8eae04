// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/ModeFile.h"

#include <gmock/gmock.h>

namespace tovik {
namespace {

using testing::ElementsAre;

TEST(ModeFile, aPipeline_becomesItsProgramsInNullFlushMode) {
    const auto stages = stagesOfMode("lt-proc '/data/a b.bin' | apertium-tagger -g $2 '/data/x.prob' |\n"
                                     "  lt-proc $1 '/data/gen.bin'\n");
    ASSERT_TRUE(stages);
    EXPECT_THAT(stages.value(), ElementsAre(Stage{"lt-proc", "-z", "/data/a b.bin"},
                                            Stage{"apertium-tagger", "-z", "-g", "/data/x.prob"},
                                            Stage{"lt-proc", "-z", "-n", "/data/gen.bin"}));
}

TEST(ModeFile, quotesInsideAnArgument_joinIt) {
    const auto stages = stagesOfMode("cg-proc '/a'/b'|c'");
    ASSERT_TRUE(stages);
    EXPECT_THAT(stages.value(), ElementsAre(Stage{"cg-proc", "-z", "/a/b|c"}));
}

TEST(ModeFile, anythingButAPipeline_isRefused) {
    for (const auto* content : {"", "  \n", "a |", "| a", "a || b", "a; b", "a && b", "a > b", "a < b",
                                "a `b`", "a $(b)", "a 'b", "a \"b\"", "a \\b"}) {
        const auto stages = stagesOfMode(content);
        EXPECT_FALSE(stages) << content;
    }
}

} // namespace
} // namespace tovik
