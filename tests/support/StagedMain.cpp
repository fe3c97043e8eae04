// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The main function of tests that need a desktop: without one of their own they start again inside a stage.
// TOVIK_STAGE_OPTIONS, given at compile time, are the stage's options.
#include <QGuiApplication>

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

[[noreturn]] void startInStage(char** arguments) {
    std::vector<const char*> command{TOVIK_SOURCE_FOLDER "/tools/stage", TOVIK_STAGE_OPTIONS, "--"};
    // By its full name, wherever the stage may start it.
    char* const program = realpath("/proc/self/exe", nullptr);
    command.push_back(program);
    for (char** argument = arguments + 1; *argument != nullptr; ++argument) {
        command.push_back(*argument);
    }
    command.push_back(nullptr);
    execv(command.front(), const_cast<char* const*>(command.data()));
    std::fprintf(stderr, "%s: %s\n", command.front(), std::strerror(errno));
    std::exit(1);
}

} // namespace

int main(int argc, char** argv) {
    // The stage passes this on, unlike what might be left of another session.
    constexpr const char* kInStage = "STAGED_TEST";
    if (std::getenv(kInStage) == nullptr) {
        setenv(kInStage, "1", 1);
        startInStage(argv);
    }
    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
