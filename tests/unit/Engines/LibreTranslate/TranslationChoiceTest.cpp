// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/TranslationChoice.h"

#include "support/FakeTranslationService.h"
#include "support/ManualTime.h"

#include <gmock/gmock.h>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TranslationChoice, eachCall_goesToTheServiceChosenAtThatMoment) {
    test::ManualTime time;
    test::FakeTranslationService server(time);
    test::FakeTranslationService local(time);
    server.reason = "The server's reason.";
    bool isServerChosen = false;
    TranslationChoice choice(server, local, [&] { return isServerChosen; });

    EXPECT_EQ(choice.whyUnavailable(), std::nullopt);
    const auto localOffer = choice.offerSessions({"en", "es"}, [](const TranslationSession&) {});

    isServerChosen = true;
    EXPECT_EQ(choice.whyUnavailable(), "The server's reason.");
    choice.availability({"en", "de"}, [](const auto&) {});
    time.runPending();

    EXPECT_THAT(local.offered, ElementsAre(TranslationPair{"en", "es"}));
    EXPECT_THAT(server.asked, ElementsAre(TranslationPair{"en", "de"}));
    EXPECT_THAT(local.asked, IsEmpty());
}

} // namespace
} // namespace tovik
