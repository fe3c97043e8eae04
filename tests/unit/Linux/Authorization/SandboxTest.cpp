// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/Sandbox.h"

#include <gtest/gtest.h>

#include <ostream>

namespace tovik {

static void PrintTo(const Sandbox& sandbox, std::ostream* out) {
    *out << "kind " << static_cast<int>(sandbox.kind) << " named '" << sandbox.name << "', sound socket "
         << sandbox.hasSoundSocket;
}

} // namespace tovik

namespace tovik::test {
namespace {

constexpr auto kProgram = "/usr/bin/tovik-record";
constexpr auto kSnap = "/snap/tovik-record/7";
constexpr auto kSnapProgram = "/snap/tovik-record/7/usr/bin/tovik-record";

struct Row {
    const char* name;
    SandboxSigns signs;
    Sandbox expected;
};

class SandboxTest : public testing::TestWithParam<Row> {};

TEST_P(SandboxTest, isRecognised) {
    EXPECT_EQ(Sandbox::recognise(GetParam().signs), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Signs, SandboxTest,
    testing::Values(
        Row{"none", {std::nullopt, "", "", kProgram}, {}},
        Row{"flatpakWithSound",
            {"[Application]\nname=org.example.App\nruntime=runtime/"
             "org.example\n\n[Context]\nshared=network;ipc;\n"
             "sockets=x11;pulseaudio;\n",
             "", "", "/app/bin/tovik-record"},
            {Sandbox::Kind::flatpak, "org.example.App", true}},
        Row{"flatpakWithoutSound",
            {"[Application]\nname=org.example.App\n\n[Context]\nsockets=x11;wayland;\n", "", "", kProgram},
            {Sandbox::Kind::flatpak, "org.example.App", false}},
        Row{"flatpakWithoutAnySocket",
            {"[Application]\nname=org.example.App\n\n[Context]\nshared=network;\n", "", "", kProgram},
            {Sandbox::Kind::flatpak, "org.example.App", false}},
        Row{"flatpakThatForbidsSound",
            {"[Application]\nname=org.example.App\n\n[Context]\nsockets=x11;!pulseaudio;\n", "", "",
             kProgram},
            {Sandbox::Kind::flatpak, "org.example.App", false}},
        Row{"flatpakWithSocketsOfAnotherGroup",
            {"[Application]\nname=org.example.App\n\n[Session Bus Policy]\nsockets=pulseaudio;\n", "", "",
             kProgram},
            {Sandbox::Kind::flatpak, "org.example.App", false}},
        Row{"flatpakWithAFileThatSaysNothing", {"", "", "", kProgram}, {Sandbox::Kind::flatpak, "", false}},
        Row{"snap",
            {std::nullopt, kSnap, "tovik-record", kSnapProgram},
            {Sandbox::Kind::snap, "tovik-record", true}},
        Row{"aProgramThatASnapStarted", {std::nullopt, "/snap/terminal/3", "terminal", kProgram}, {}},
        Row{"aFolderThatBeginsAlike",
            {std::nullopt, "/snap/tovik-record/7", "tovik-record", "/snap/tovik-record/77/bin/tovik-record"},
            {}},
        Row{"aSnapWithoutAName", {std::nullopt, kSnap, "", kSnapProgram}, {}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SandboxSigns, ofThisProcess_nameItsOwnFile) {
    EXPECT_TRUE(SandboxSigns::ofThisProcess().executablePath.ends_with("linux_authorization_test"));
}

} // namespace
} // namespace tovik::test
