// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/PostedKeys.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

constexpr PostedKeys::Stroke kDown{50, true};
constexpr PostedKeys::Stroke kUp{50, false};

class PostedKeysTest : public testing::Test {
protected:
    PostedKeysTest() {
        posted_.setOnSent([this] { ++sent_; });
    }

    PostedKeys posted_;
    int sent_ = 0;
};

TEST_F(PostedKeysTest, whenNothingWasAnnounced_nothingIsExpected) {
    EXPECT_FALSE(posted_.expects(kDown));
}

TEST_F(PostedKeysTest, whenAStrokeWasAnnounced_isExpectedUntilTaken) {
    posted_.expect({kDown, kUp});
    EXPECT_TRUE(posted_.expects(kDown));
    posted_.take(kDown);
    EXPECT_FALSE(posted_.expects(kDown));
    EXPECT_TRUE(posted_.expects(kUp));
}

TEST_F(PostedKeysTest, whenTheSameStrokeWasAnnouncedTwice_isExpectedTwice) {
    posted_.expect({kDown, kDown});
    posted_.take(kDown);
    EXPECT_TRUE(posted_.expects(kDown));
    posted_.take(kDown);
    EXPECT_FALSE(posted_.expects(kDown));
}

TEST_F(PostedKeysTest, whenTheyWereSent_theMonitorIsToldAndTheyAreStillExpected) {
    posted_.expect({kDown});
    posted_.sent();
    EXPECT_EQ(sent_, 1);
    EXPECT_TRUE(posted_.expects(kDown));
}

TEST_F(PostedKeysTest, whenSomeNeverCame_onlyThoseAnnouncedUpToThenAreGivenUp) {
    posted_.expect({kDown, kUp});
    const auto then = posted_.announced();
    posted_.take(kUp);
    posted_.expect({kUp});
    posted_.forget(then);
    EXPECT_FALSE(posted_.expects(kDown));
    EXPECT_TRUE(posted_.expects(kUp));
}

TEST_F(PostedKeysTest, whenAllCame_nothingIsGivenUp) {
    posted_.expect({kDown, kUp});
    const auto then = posted_.announced();
    posted_.take(kDown);
    posted_.take(kUp);
    posted_.expect({kDown});
    posted_.forget(then);
    EXPECT_TRUE(posted_.expects(kDown));
}

TEST_F(PostedKeysTest, whenThereIsNoMonitor_sentStrokesAreForgotten) {
    posted_.setOnSent({});
    posted_.expect({kDown});
    posted_.sent();
    EXPECT_FALSE(posted_.expects(kDown));
}

} // namespace
} // namespace tovik
