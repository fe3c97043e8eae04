// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/DBus/SandboxedMicrophone.h"

#include "support/RecordingLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <utility>

namespace tovik {

static void PrintTo(const Sandbox& sandbox, std::ostream* out) {
    *out << "kind " << static_cast<int>(sandbox.kind) << " named '" << sandbox.name << "', sound socket "
         << sandbox.hasSoundSocket;
}

} // namespace tovik

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Status = MicrophoneStatus;
using Verdict = MicrophonePortal::Verdict;

const Sandbox kNoSandbox{};
const Sandbox kFlatpak{Sandbox::Kind::flatpak, "org.example.App", true};
const Sandbox kFlatpakWithoutSound{Sandbox::Kind::flatpak, "org.example.App", false};
const Sandbox kSnap{Sandbox::Kind::snap, "tovik-record", true};

/// Keeps questions open until a test answers them.
class FakePortal : public MicrophonePortal {
public:
    void look(Handler handler) override { looks.push_back(std::move(handler)); }
    void ask(Handler handler) override { questions.push_back(std::move(handler)); }

    void answerLooks(Verdict verdict) { answer(looks, verdict); }
    void answerQuestions(Verdict verdict) { answer(questions, verdict); }

    std::vector<Handler> looks;
    std::vector<Handler> questions;

private:
    static void answer(std::vector<Handler>& handlers, Verdict verdict) {
        for (const auto& handler : std::exchange(handlers, {})) {
            handler({verdict, "what it said"});
        }
    }
};

class SandboxedMicrophoneTest : public testing::Test {
protected:
    SandboxedMicrophone& in(const Sandbox& sandbox) {
        return microphone.emplace(
            sandbox, SandboxedMicrophone::Services{.log = log,
                                                   .portal = portal,
                                                   .serverStatus = [this] { return serverStatus; },
                                                   .serverExplanation = [this] { return serverExplanation; },
                                                   .changed = [this] { ++changes; }});
    }
    void ask() {
        microphone->ask([this](bool isRefused) { answers.push_back(isRefused); });
    }

    RecordingLog log;
    FakePortal portal;
    MicrophoneStatus serverStatus = Status::authorized;
    std::string serverExplanation;
    int changes = 0;
    std::vector<bool> answers;
    std::optional<SandboxedMicrophone> microphone;
};

// -------------------------------------------------------------------------------- how it stands

struct Row {
    const char* name;
    Sandbox sandbox;
    /// What looking at the portal and asking it gave; none: not yet, or not done.
    std::optional<Verdict> look;
    std::optional<Verdict> question;
    MicrophoneStatus serverStatus;
    MicrophoneStatus expected;
};

class StatusInASandbox : public SandboxedMicrophoneTest, public testing::WithParamInterface<Row> {};

TEST_P(StatusInASandbox, followsFromThePortalAndTheSoundServer) {
    const auto& row = GetParam();
    serverStatus = row.serverStatus;
    in(row.sandbox);
    if (row.look) {
        portal.answerLooks(*row.look);
    }
    if (row.question) {
        ask();
        portal.answerQuestions(*row.question);
    }
    EXPECT_EQ(microphone->status(), row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, StatusInASandbox,
    testing::Values(
        Row{"outsideTheServerSays", kNoSandbox, std::nullopt, std::nullopt, Status::authorized,
            Status::authorized},
        Row{"outsideTheServerSaysNo", kNoSandbox, std::nullopt, std::nullopt, Status::denied, Status::denied},
        Row{"withoutTheSocketItIsDenied", kFlatpakWithoutSound, std::nullopt, std::nullopt, Status::unknown,
            Status::denied},
        Row{"beforeThePortalToldItIsOpen", kFlatpak, std::nullopt, std::nullopt, Status::authorized,
            Status::notDetermined},
        Row{"leftToTheServerThatLets", kFlatpak, Verdict::leavesItToTheServer, std::nullopt,
            Status::authorized, Status::authorized},
        Row{"leftToTheServerThatRefuses", kFlatpak, Verdict::leavesItToTheServer, std::nullopt,
            Status::denied, Status::denied},
        Row{"leftToTheServerWithoutAMicrophone", kFlatpak, Verdict::leavesItToTheServer, std::nullopt,
            Status::restricted, Status::restricted},
        Row{"leftToNoServer", kFlatpak, Verdict::leavesItToTheServer, std::nullopt, Status::unknown,
            Status::unknown},
        Row{"aPortalThatDecidesIsToBeAsked", kFlatpak, Verdict::undecided, std::nullopt, Status::authorized,
            Status::notDetermined},
        Row{"grantedAndTheServerLets", kFlatpak, Verdict::undecided, Verdict::granted, Status::authorized,
            Status::authorized},
        Row{"grantedAndTheServerRefuses", kFlatpak, Verdict::undecided, Verdict::granted, Status::denied,
            Status::denied},
        Row{"denied", kFlatpak, Verdict::undecided, Verdict::denied, Status::authorized, Status::denied},
        Row{"aLostQuestionIsOpen", kFlatpak, Verdict::undecided, Verdict::undecided, Status::authorized,
            Status::notDetermined},
        Row{"askedBeforeItTold", kFlatpak, std::nullopt, Verdict::leavesItToTheServer, Status::authorized,
            Status::authorized},
        Row{"switchedOff", kFlatpak, Verdict::switchedOff, std::nullopt, Status::authorized,
            Status::restricted},
        Row{"snapBeforeThePortalTold", kSnap, std::nullopt, std::nullopt, Status::authorized,
            Status::notDetermined},
        Row{"snapLeftToTheServer", kSnap, Verdict::leavesItToTheServer, std::nullopt, Status::authorized,
            Status::authorized}),
    [](const auto& row) { return std::string(row.param.name); });

// ------------------------------------------------------------------------------ what is wrong

TEST_F(SandboxedMicrophoneTest, outside_theSoundServerExplains) {
    serverStatus = Status::restricted;
    serverExplanation = "No microphone was found.";
    EXPECT_EQ(in(kNoSandbox).explanation(), "No microphone was found.");
}

TEST_F(SandboxedMicrophoneTest, inAFlatpakWithoutTheSocket_givesTheCommandThatLetsItIn) {
    serverStatus = Status::unknown;
    serverExplanation = "The sound server does not answer.";
    EXPECT_EQ(in(kFlatpakWithoutSound).explanation(),
              "Flatpak keeps the sound server away from Tovik Record. Let it in with this command:\n\n"
              "flatpak override --user --socket=pulseaudio org.example.App\n\n"
              "Then start Tovik Record again.");
}

TEST_F(SandboxedMicrophoneTest, inASnapThatMayNotRecord_givesTheCommandThatLetsIt) {
    in(kSnap);
    portal.answerLooks(Verdict::leavesItToTheServer);
    for (const auto status : {Status::denied, Status::unknown}) {
        serverStatus = status;
        EXPECT_THAT(microphone->explanation(),
                    HasSubstr("\n\nsudo snap connect tovik-record:audio-record\n\n"));
    }
}

TEST_F(SandboxedMicrophoneTest, inASnapWithoutAMicrophone_theSoundServerExplains) {
    in(kSnap);
    portal.answerLooks(Verdict::leavesItToTheServer);
    serverStatus = Status::restricted;
    serverExplanation = "No microphone was found.";
    EXPECT_EQ(microphone->explanation(), "No microphone was found.");
}

TEST_F(SandboxedMicrophoneTest, whenTheUserSaidNo_saysHowToTakeThatBack) {
    in(kFlatpak);
    ask();
    portal.answerQuestions(Verdict::denied);
    EXPECT_THAT(microphone->explanation(),
                HasSubstr("\n\nflatpak permission-set devices microphone org.example.App yes\n\n"));
}

TEST_F(SandboxedMicrophoneTest, inASnapWhenTheUserSaidNo_namesNoCommandOfFlatpak) {
    in(kSnap);
    ask();
    portal.answerQuestions(Verdict::denied);
    EXPECT_EQ(microphone->explanation(),
              "You did not allow Tovik Record to use the microphone. Allow it in the privacy settings.\n\n"
              "Then start Tovik Record again.");
}

TEST_F(SandboxedMicrophoneTest, whenMicrophonesAreSwitchedOff_saysSo) {
    in(kFlatpak);
    portal.answerLooks(Verdict::switchedOff);
    EXPECT_THAT(microphone->explanation(), HasSubstr("switched off for every application"));
}

TEST_F(SandboxedMicrophoneTest, beforeAskingOrWhenAllIsWell_hasNothingToExplain) {
    serverExplanation = "Whatever the server says.";
    EXPECT_THAT(in(kFlatpak).explanation(), IsEmpty());
    portal.answerLooks(Verdict::undecided);
    EXPECT_THAT(microphone->explanation(), IsEmpty());
    ask();
    serverExplanation.clear();
    portal.answerQuestions(Verdict::granted);
    EXPECT_THAT(microphone->explanation(), IsEmpty());
}

// ------------------------------------------------------------------------- looking and asking

TEST_F(SandboxedMicrophoneTest, looksAtThePortalAtOnceAndAtEveryStatusButNeverTwiceAtATime) {
    in(kFlatpak);
    static_cast<void>(microphone->status());
    static_cast<void>(microphone->status());
    EXPECT_THAT(portal.looks, SizeIs(1));
    portal.answerLooks(Verdict::leavesItToTheServer);
    static_cast<void>(microphone->status());
    EXPECT_THAT(portal.looks, SizeIs(1));
    EXPECT_THAT(portal.questions, IsEmpty()) << "a look must not ask the user";
}

TEST_F(SandboxedMicrophoneTest, whereThePortalCannotHelp_itIsLeftAlone) {
    for (const auto& sandbox : {kNoSandbox, kFlatpakWithoutSound}) {
        in(sandbox);
        static_cast<void>(microphone->status());
        ask();
        EXPECT_THAT(portal.looks, IsEmpty());
        EXPECT_THAT(portal.questions, IsEmpty());
        EXPECT_TRUE(microphone->isKnown());
    }
    EXPECT_THAT(answers, ElementsAre(false, false));
}

TEST_F(SandboxedMicrophoneTest, whileAQuestionIsOpen_thereIsNoSecondOneAndAllHearTheAnswer) {
    in(kFlatpak);
    ask();
    ask();
    EXPECT_THAT(portal.questions, SizeIs(1));
    EXPECT_THAT(answers, IsEmpty());
    portal.answerQuestions(Verdict::denied);
    EXPECT_THAT(answers, ElementsAre(true, true));
    ask();
    EXPECT_THAT(portal.questions, SizeIs(1));
}

TEST_F(SandboxedMicrophoneTest, whatTheUserSaid_holdsThroughLaterLooks) {
    for (const auto& [said, status] :
         {std::pair(Verdict::denied, Status::denied), std::pair(Verdict::granted, Status::authorized)}) {
        in(kFlatpak);
        portal.answerLooks(Verdict::undecided);
        ask();
        portal.answerQuestions(said);
        static_cast<void>(microphone->status());
        portal.answerLooks(Verdict::undecided);
        EXPECT_EQ(microphone->status(), status);
    }
}

TEST_F(SandboxedMicrophoneTest, whenMicrophonesAreSwitchedOffMeanwhile_noticesAtTheNextLook) {
    in(kFlatpak);
    portal.answerLooks(Verdict::leavesItToTheServer);
    EXPECT_EQ(microphone->status(), Status::authorized);
    portal.answerLooks(Verdict::switchedOff);
    EXPECT_EQ(microphone->status(), Status::restricted);
    portal.answerLooks(Verdict::leavesItToTheServer);
    EXPECT_EQ(microphone->status(), Status::authorized);
}

TEST_F(SandboxedMicrophoneTest, tellsOfNewsOnly) {
    in(kFlatpak);
    EXPECT_FALSE(microphone->isKnown());
    portal.answerLooks(Verdict::leavesItToTheServer);
    EXPECT_TRUE(microphone->isKnown());
    EXPECT_EQ(changes, 1);
    static_cast<void>(microphone->status());
    portal.answerLooks(Verdict::leavesItToTheServer);
    EXPECT_EQ(changes, 1);
    EXPECT_THAT(log.printed(),
                ElementsAre("[TovikVoice] The desktop portal leaves the microphone to the sound server "
                            "(what it said)"));
}

TEST_F(SandboxedMicrophoneTest, whenItEndsFirst_answersAreIgnored) {
    in(kFlatpak);
    ask();
    microphone.reset();
    portal.answerLooks(Verdict::leavesItToTheServer);
    portal.answerQuestions(Verdict::granted);
    EXPECT_EQ(changes, 0);
    EXPECT_THAT(answers, IsEmpty());
}

// ------------------------------------------------------------------------- by what it is known

constexpr auto kProgram = "/usr/bin/tovik-record";
constexpr auto kSnapFolder = "/snap/tovik-record/7";
constexpr auto kFileInSnap = "/snap/tovik-record/7/usr/bin/tovik-record";

struct SignsRow {
    const char* name;
    SandboxSigns signs;
    Sandbox expected;
};

class SandboxTest : public testing::TestWithParam<SignsRow> {};

TEST_P(SandboxTest, isRecognized) {
    EXPECT_EQ(Sandbox::recognize(GetParam().signs), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Signs, SandboxTest,
    testing::Values(
        SignsRow{"none", {std::nullopt, "", "", kProgram}, {}},
        SignsRow{"flatpakWithSound",
                 {"[Application]\nname=org.example.App\nruntime=runtime/"
                  "org.example\n\n[Context]\nshared=network;ipc;\n"
                  "sockets=x11;pulseaudio;\n",
                  "", "", "/app/bin/tovik-record"},
                 {Sandbox::Kind::flatpak, "org.example.App", true}},
        SignsRow{
            "flatpakWithoutSound",
            {"[Application]\nname=org.example.App\n\n[Context]\nsockets=x11;wayland;\n", "", "", kProgram},
            {Sandbox::Kind::flatpak, "org.example.App", false}},
        SignsRow{"flatpakWithoutAnySocket",
                 {"[Application]\nname=org.example.App\n\n[Context]\nshared=network;\n", "", "", kProgram},
                 {Sandbox::Kind::flatpak, "org.example.App", false}},
        SignsRow{"flatpakThatForbidsSound",
                 {"[Application]\nname=org.example.App\n\n[Context]\nsockets=x11;!pulseaudio;\n", "", "",
                  kProgram},
                 {Sandbox::Kind::flatpak, "org.example.App", false}},
        SignsRow{"flatpakWithSocketsOfAnotherGroup",
                 {"[Application]\nname=org.example.App\n\n[Session Bus Policy]\nsockets=pulseaudio;\n", "",
                  "", kProgram},
                 {Sandbox::Kind::flatpak, "org.example.App", false}},
        SignsRow{
            "flatpakWithAFileThatSaysNothing", {"", "", "", kProgram}, {Sandbox::Kind::flatpak, "", false}},
        SignsRow{"snap",
                 {std::nullopt, kSnapFolder, "tovik-record", kFileInSnap},
                 {Sandbox::Kind::snap, "tovik-record", true}},
        SignsRow{"aProgramThatASnapStarted", {std::nullopt, "/snap/terminal/3", "terminal", kProgram}, {}},
        SignsRow{
            "aFolderThatBeginsAlike",
            {std::nullopt, "/snap/tovik-record/7", "tovik-record", "/snap/tovik-record/77/bin/tovik-record"},
            {}},
        SignsRow{"aSnapWithoutAName", {std::nullopt, kSnapFolder, "", kFileInSnap}, {}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SandboxSigns, ofThisProcess_nameItsOwnFile) {
    EXPECT_TRUE(SandboxSigns::ofThisProcess().executablePath.ends_with("/linux_test"));
}

} // namespace
} // namespace tovik::test
