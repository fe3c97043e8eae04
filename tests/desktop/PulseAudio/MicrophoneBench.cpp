// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// Measures the microphone against a 48 kHz virtual source: how soon it hears, and what opening and closing it
// cuts off. Prints a table for docs/performance.md. Arguments: PulseAudio or PipeWire for only one of them,
// and how many recordings.
#include "support/SoundRig.h"

#include <time.h>

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
    Numbers startCall, firstSamples, firstBuffer, headCut, tailCut, stopCall;

    void print() {
        startCall.print("start() returns after");
        firstSamples.print("start() to the first samples (tap of 48 frames)");
        firstBuffer.print("start() to the first whole buffer in the tap");
        headCut.print("spoken after start() and missing at the beginning");
        tailCut.print("spoken before flush() and missing at the end");
        stopCall.print("stop() returns after");
    }
};

bool record(SoundRig& rig, const VirtualMicrophone& microphone, std::size_t bufferSize, Columns& columns) {
    Listener listener;
    std::atomic<Time::rep> first = 0;
    const auto tap = listener.tap();
    rig.engine.installTap(bufferSize, [&, tap](const AudioBuffer& buffer) {
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
    (bufferSize == 1024 ? columns.firstBuffer : columns.firstSamples)
        .values.push_back(milliseconds(Time::duration(first.load()) - begun.time_since_epoch()));
    columns.headCut.values.push_back(framesBetween(atStart, VirtualMicrophone::numberOf(heard.front())) /
                                     48.0);
    columns.tailCut.values.push_back(framesBetween(VirtualMicrophone::numberOf(heard.back()), atStop) / 48.0);
    return true;
}

double cpuSeconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// What the capture thread uses, with a tap that does what the level meter does.
void measureProcessor(SoundRig& rig) {
    std::atomic<int> buffers = 0;
    std::atomic<double> inTap = 0;
    std::atomic<double> used = 0;
    float level = 0;
    rig.engine.installTap(1024, [&](const AudioBuffer& buffer) {
        const auto before = Time::now();
        float sum = 0;
        for (const float sample : buffer.frames) {
            sum += sample * sample;
        }
        level += std::sqrt(sum / static_cast<float>(buffer.frames.size()));
        inTap = inTap + std::chrono::duration<double>(Time::now() - before).count();
        used = cpuSeconds(CLOCK_THREAD_CPUTIME_ID);
        ++buffers;
    });
    if (!rig.engine.start() || !eventually([&] { return buffers > 40; })) {
        return;
    }
    const auto begun = Time::now();
    const double before = used;
    const double tapBefore = inTap;
    const int buffersBefore = buffers;
    std::this_thread::sleep_for(std::chrono::seconds(10));
    const double share = (used - before) / std::chrono::duration<double>(Time::now() - begun).count();
    std::printf(
        "capture thread while recording: %.2f %% of a core; metering 1024 frames: %.1f microseconds (%g)\n",
        share * 100, (inTap - tapBefore) / (buffers - buffersBefore) * 1e6, static_cast<double>(level));
    rig.engine.stop();
    rig.engine.removeTap();
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
        fine = fine && record(rig, microphone, 1024, unused);
        for (int round = 0; round < times && fine; ++round) {
            fine = record(rig, microphone, 1024, warm) && record(rig, microphone, 48, warm);
        }
        if (fine && kind == SoundServer::Kind::pulseAudio) {
            // The virtual microphone speaks in pieces of two milliseconds, which this server passes on as
            // they come; its null source keeps to the fragment that was asked for, as hardware does.
            server.control({"load-module", "module-null-source", "source_name=null", "rate=48000"});
            server.setDefaultSource("null");
            fine = rig.waitForDefault("null");
        }
        if (fine) {
            measureProcessor(rig);
        }
        if (fine && kind == SoundServer::Kind::pulseAudio) {
            server.setDefaultSource("bench");
            fine = rig.waitForDefault("bench");
        }
        if (kind == SoundServer::Kind::pulseAudio) {
            server.control({"load-module", "module-suspend-on-idle", "timeout=0"});
        }
        for (int round = 0; round < 2 * times && fine; ++round) {
            fine = eventually([&] { return isSuspended(server); }) &&
                   record(rig, microphone, round % 2 == 0 ? 48 : 1024, suspended);
        }
    }
    for (int round = 0; round < 2 * times; ++round) {
        SoundRig rig(server);
        record(rig, microphone, round % 2 == 0 ? 48 : 1024, launched);
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
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const std::string only = argc > 1 ? argv[1] : "";
    for (const auto kind : {SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire}) {
        if (only.empty() || only == nameOf(kind)) {
            measure(kind, argc > 2 ? std::atoi(argv[2]) : 30);
        }
    }
    return 0;
}
