// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// Measures the microphone against a 48 kHz virtual source: how soon it hears, and what opening and closing it
// cuts off. Prints a table for docs/performance.md.
#include "support/SoundRig.h"

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>

namespace {

using namespace tovik;
using namespace tovik::test;
using Time = std::chrono::steady_clock;

double milliseconds(Time::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

struct Numbers {
    std::vector<double> values;

    void print(const char* title) {
        if (values.empty()) {
            return;
        }
        std::sort(values.begin(), values.end());
        std::printf("  %-58s %8.2f %8.2f %8.2f\n", title, values.front(), values[values.size() / 2],
                    values.back());
    }
};

/// Frames from one counted frame to a later one.
double framesBetween(std::uint64_t from, std::uint64_t to) {
    const auto turn = static_cast<std::int64_t>(VirtualMicrophone::countedFrames);
    auto difference = (static_cast<std::int64_t>(to) - static_cast<std::int64_t>(from)) % turn;
    if (difference > turn / 2) {
        difference -= turn;
    } else if (difference < -turn / 2) {
        difference += turn;
    }
    return static_cast<double>(difference);
}

std::uint64_t now(const VirtualMicrophone& microphone) {
    return microphone.frames() % VirtualMicrophone::countedFrames;
}

/// One recording of two tenths of a second; what is learned of it goes into the columns.
struct Columns {
    Numbers startCall, firstBuffer, headCut, tailCut, stopCall;

    void print() {
        startCall.print("start() returns after");
        firstBuffer.print("start() to the first whole buffer in the tap");
        headCut.print("spoken after start() and missing at the beginning");
        tailCut.print("spoken before flush() and missing at the end");
        stopCall.print("stop() returns after");
    }
};

bool record(SoundRig& rig, const VirtualMicrophone& microphone, Columns& columns) {
    Listener listener;
    std::atomic<Time::rep> first = 0;
    const auto tap = listener.tap();
    rig.engine.installTap(1024, [&, tap](const AudioBuffer& buffer) {
        if (first == 0) {
            first = Time::now().time_since_epoch().count();
        }
        tap(buffer);
    });
    // A server that was listening until just now finds the virtual microphone's past in its pipe.
    const auto rested = microphone.frames() + microphone.sampleRate() * 3 / 10;
    if (!eventually([&] { return microphone.frames() >= rested; })) {
        return false;
    }
    const auto atStart = now(microphone);
    const auto begun = Time::now();
    if (const auto started = rig.engine.start(); !started) {
        std::printf("%s\n", started.error().description.c_str());
        return false;
    }
    columns.startCall.values.push_back(milliseconds(Time::now() - begun));
    if (!listener.waitFor(static_cast<std::size_t>(10 * 1024))) {
        std::printf("nothing heard\n");
        return false;
    }
    const auto atStop = now(microphone);
    rig.engine.flush();
    const auto stopping = Time::now();
    rig.engine.stop();
    columns.stopCall.values.push_back(milliseconds(Time::now() - stopping));
    rig.engine.removeTap();
    const auto heard = listener.withoutSilence();
    columns.firstBuffer.values.push_back(
        milliseconds(Time::duration(first.load()) - begun.time_since_epoch()));
    columns.headCut.values.push_back(framesBetween(atStart, VirtualMicrophone::numberOf(heard.front())) /
                                     48.0);
    columns.tailCut.values.push_back(framesBetween(VirtualMicrophone::numberOf(heard.back()), atStop) / 48.0);
    return true;
}

bool isSuspended(const SoundServer& server) {
    const auto sources = server.control({"list", "short", "sources"});
    const auto line = sources.find("\tbench\t");
    return sources.substr(line, sources.find('\n', line) - line).ends_with("SUSPENDED");
}

void measure(SoundServer::Kind kind, int times) {
    SoundServer server(kind);
    server.start();
    auto& microphone = server.plugIn("bench", "Bench");
    server.setDefaultSource("bench");
    microphone.count();
    Columns warm, launched, suspended;
    {
        SoundRig rig(server);
        bool fine = rig.waitForDefault("bench") && eventually([&] { return microphone.frames() > 48000; });
        Columns unused;
        fine = fine && record(rig, microphone, unused);
        for (int round = 0; round < times && fine; ++round) {
            fine = record(rig, microphone, warm);
        }
        if (kind == SoundServer::Kind::pulseAudio) {
            server.control({"load-module", "module-suspend-on-idle", "timeout=0"});
        }
        for (int round = 0; round < times && fine; ++round) {
            fine = eventually([&] { return isSuspended(server); }) && record(rig, microphone, suspended);
        }
    }
    for (int round = 0; round < times; ++round) {
        SoundRig rig(server);
        record(rig, microphone, launched);
    }
    std::printf("%s, %d recordings each, milliseconds: least, median, most\n", nameOf(kind), times);
    std::printf(" connected, source awake\n");
    warm.print();
    std::printf(" connected, source suspended\n");
    suspended.print();
    std::printf(" at once after launch\n");
    launched.print();
}

} // namespace

int main(int argc, char** argv) {
    isolateSoundClient();
    const int times = argc > 1 ? std::atoi(argv[1]) : 30;
    measure(SoundServer::Kind::pulseAudio, times);
    measure(SoundServer::Kind::pipeWire, times);
    return 0;
}
