// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/VoiceEvidence.h"

#include "support/Recordings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace tovik {
namespace {

using test::kRecordings;

constexpr int kRate = 16000;

VoiceEvidence evidenceIn(const std::vector<float>& sound) {
    std::vector<std::int16_t> samples;
    for (const auto value : sound) {
        samples.push_back(
            static_cast<std::int16_t>(std::lround(std::clamp(value, -1.0F, 0.9999F) * 32768.0F)));
    }
    VoiceEvidence evidence;
    evidence.begin();
    evidence.process(samples);
    return evidence;
}

bool hasVoice(const std::vector<float>& sound) {
    return evidenceIn(sound).heardVoice();
}

/// Four seconds of what the function gives for each moment, in seconds.
std::vector<float> sound(const std::function<double(double)>& at) {
    std::vector<float> samples(static_cast<std::size_t>(4 * kRate));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<float>(at(static_cast<double>(i) / kRate));
    }
    return samples;
}

std::vector<float> whiteNoise(double loudness) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, loudness);
    return sound([&](double) { return noise(random); });
}

std::vector<float> rumble(double loudness) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, loudness);
    double slow = 0;
    return sound([&](double) { return slow = 0.98 * slow + 0.2 * noise(random); });
}

std::vector<float> hum(double frequency, double loudness) {
    return sound([=](double time) {
        return loudness * (std::sin(2 * M_PI * frequency * time) + std::sin(4 * M_PI * frequency * time) / 2);
    });
}

/// A transformer's, with overtones and the noise of the room.
std::vector<float> noisyHum(double frequency) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 0.003);
    return sound([&](double time) {
        const auto overtone = [&](int number) { return std::sin(2 * M_PI * frequency * number * time); };
        return 0.1 * (overtone(1) + overtone(2) / 2 + overtone(3) / 3) + noise(random);
    });
}

std::vector<float> clicks(int perSecond) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 1);
    return sound([&](double time) {
        const double since = std::fmod(time * perSecond, 1.0) / perSecond;
        return (0.5 * std::exp(-since * 400) + 0.0005) * noise(random);
    });
}

std::vector<float> beeps() {
    return sound(
        [](double time) { return std::fmod(time, 1.0) < 0.25 ? 0.2 * std::sin(2 * M_PI * 880 * time) : 0; });
}

std::vector<float> breath() {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 0.05);
    return sound([&](double time) { return std::max(0.0, std::sin(2 * M_PI * time)) * noise(random); });
}

struct Noise {
    std::string name;
    std::function<std::vector<float>()> make;

    friend void PrintTo(const Noise& noise, std::ostream* out) { *out << noise.name; }
};

class NoVoice : public testing::TestWithParam<Noise> {};

TEST_P(NoVoice, isHeardInIt) {
    EXPECT_FALSE(hasVoice(GetParam().make()));
}

INSTANTIATE_TEST_SUITE_P(
    Noises, NoVoice,
    testing::Values(
        Noise{"DigitalSilence", [] { return sound([](double) { return 0.0; }); }},
        Noise{"SteadyOffset", [] { return sound([](double) { return 0.1; }); }},
        Noise{"ConverterNoise", [] { return whiteNoise(0.00005); }},
        Noise{"FaintNoise", [] { return whiteNoise(0.001); }},
        Noise{"Noise", [] { return whiteNoise(0.01); }}, Noise{"LoudNoise", [] { return whiteNoise(0.1); }},
        Noise{"DeafeningNoise", [] { return whiteNoise(0.5); }}, Noise{"Rumble", [] { return rumble(0.3); }},
        Noise{"MainsHum50", [] { return hum(50, 0.1); }}, Noise{"MainsHum60", [] { return hum(60, 0.1); }},
        Noise{"FanHum120", [] { return hum(120, 0.1); }}, Noise{"FaintHum120", [] { return hum(120, 0.01); }},
        Noise{"NoisyHum100", [] { return noisyHum(100); }},
        Noise{"NoisyHum120", [] { return noisyHum(120); }},
        Noise{"NoisyHum150", [] { return noisyHum(150); }},
        Noise{"Whistle440", [] { return hum(440, 0.05); }},
        Noise{"Whistle1000", [] { return hum(1000, 0.05); }}, Noise{"OneKeyStroke", [] { return clicks(1); }},
        Noise{"Typing", [] { return clicks(8); }}, Noise{"Beeps", beeps}, Noise{"Breath", breath}),
    [](const auto& noise) { return noise.param.name; });

class Voice : public testing::TestWithParam<const char*> {};

TEST_P(Voice, isHeardInIt) {
    EXPECT_TRUE(hasVoice(test::readRecording(kRecordings + GetParam())));
}

TEST_P(Voice, isHeardInItWhenItIsFaint) {
    auto recording = test::readRecording(kRecordings + GetParam());
    for (auto& sample : recording) {
        sample /= 10;
    }
    EXPECT_TRUE(hasVoice(recording));
}

INSTANTIATE_TEST_SUITE_P(Recordings, Voice,
                         testing::Values("goforward.raw", "something.raw", "numbers.raw", "cards/001.wav",
                                         "cards/002.wav", "cards/003.wav", "cards/004.wav", "cards/005.wav",
                                         "librivox/sense_and_sensibility_01_austen_64kb-0870.wav",
                                         "librivox/sense_and_sensibility_01_austen_64kb-0880.wav",
                                         "librivox/sense_and_sensibility_01_austen_64kb-0930.wav"));

TEST(VoiceEvidence, humsWhistlesAndBeepsAreOnlyTones) {
    for (const double frequency : {60.0, 120.0, 200.0, 440.0}) {
        EXPECT_TRUE(evidenceIn(hum(frequency, 0.1)).heardOnlyTones()) << frequency;
    }
    EXPECT_TRUE(evidenceIn(beeps()).heardOnlyTones());
}

/// A single word of a recording, in seconds from its beginning.
struct Word {
    std::string name;
    std::string recording;
    double begin;
    double end;
};

const std::vector<Word> kWords{{"go", "goforward.raw", 0.45, 0.85},
                               {"forward", "goforward.raw", 0.8, 1.2},
                               {"five", "cards/004.wav", 0.25, 0.65},
                               {"four", "cards/002.wav", 0.1, 0.6},
                               {"seven", "cards/003.wav", 0.05, 0.6}};

/// With the word in the middle.
std::vector<float> withWord(std::vector<float> sound, const Word& word) {
    const auto at = [](double seconds) { return static_cast<std::ptrdiff_t>(seconds * kRate); };
    const auto recording = test::readRecording(kRecordings + word.recording);
    std::transform(recording.begin() + at(word.begin), recording.begin() + at(word.end),
                   sound.begin() + at(2), sound.begin() + at(2), std::plus<>());
    return sound;
}

/// A buzz that is rich in overtones, and the faint noise of a room.
std::vector<float> buzz(double frequency, double loudness, bool isSwitched) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, 0.001);
    return sound([&, isSwitched](double time) {
        double value = 0;
        for (int number = 1; number <= 15; ++number) {
            value += std::sin(2 * M_PI * frequency * number * time) / number;
        }
        const bool isOn = !isSwitched || (time > 1 && time < 3);
        return (isOn ? loudness * value : 0) + noise(random);
    });
}

struct Hum {
    double frequency;
    double loudness;

    friend void PrintTo(const Hum& hum, std::ostream* out) {
        *out << hum.frequency << " Hz, " << hum.loudness;
    }
};

class SteadyHum : public testing::TestWithParam<Hum> {};

TEST_P(SteadyHum, aloneIsNoVoice) {
    for (const bool isSwitched : {false, true}) {
        const auto evidence = evidenceIn(buzz(GetParam().frequency, GetParam().loudness, isSwitched));
        EXPECT_FALSE(evidence.heardVoice());
        EXPECT_TRUE(evidence.heardOnlyTones());
    }
}

TEST_P(SteadyHum, withAShortWordBesideIt_isAVoice) {
    for (const auto& word : kWords) {
        const auto evidence =
            evidenceIn(withWord(buzz(GetParam().frequency, GetParam().loudness, false), word));
        EXPECT_TRUE(evidence.heardVoice()) << word.name;
        EXPECT_FALSE(evidence.heardOnlyTones()) << word.name;
    }
}

TEST_P(SteadyHum, withAWordOfFewVoicedFramesBesideIt_isMoreThanTones) {
    const Word ten{"ten", "goforward.raw", 1.2, 1.5};
    EXPECT_FALSE(
        evidenceIn(withWord(buzz(GetParam().frequency, GetParam().loudness, false), ten)).heardOnlyTones());
}

TEST_P(SteadyHum, withAClickAtEitherEnd_isNoVoice) {
    auto sound = buzz(GetParam().frequency, GetParam().loudness, false);
    for (const auto click : {std::size_t{kRate / 10}, sound.size() - kRate / 10}) {
        for (std::size_t i = 0; i < 160; ++i) {
            sound[click + i] += i % 2 == 0 ? 0.3F : -0.2F;
        }
    }
    EXPECT_TRUE(evidenceIn(sound).heardOnlyTones());
}

INSTANTIATE_TEST_SUITE_P(Hums, SteadyHum,
                         testing::Values(Hum{250, 0.01}, Hum{250, 0.03}, Hum{100, 0.01}, Hum{100, 0.03},
                                         Hum{120, 0.01}, Hum{120, 0.03}, Hum{150, 0.01}, Hum{150, 0.03},
                                         Hum{200, 0.01}, Hum{200, 0.03}));

TEST(VoiceEvidence, aVoiceBesideANoisyHumIsHeard) {
    for (const double frequency : {100.0, 120.0, 150.0}) {
        for (const auto& word : kWords) {
            EXPECT_TRUE(hasVoice(withWord(noisyHum(frequency), word))) << word.name << " at " << frequency;
        }
    }
}

TEST(VoiceEvidence, whatHasNoPitchCouldBeAWhisper) {
    EXPECT_FALSE(evidenceIn(breath()).heardOnlyTones());
    EXPECT_FALSE(evidenceIn(whiteNoise(0.01)).heardOnlyTones());
    EXPECT_FALSE(evidenceIn(clicks(8)).heardOnlyTones());
}

TEST(VoiceEvidence, aVoiceIsMoreThanTones) {
    EXPECT_FALSE(evidenceIn(test::readRecording(test::kGoForward)).heardOnlyTones());
}

TEST(VoiceEvidence, whenANewUtteranceBegins_forgetsTheLastOne) {
    std::vector<std::int16_t> samples;
    for (const auto value : test::readRecording(test::kGoForward)) {
        samples.push_back(static_cast<std::int16_t>(value * 32768.0F));
    }
    VoiceEvidence evidence;
    evidence.process(samples);
    ASSERT_TRUE(evidence.heardVoice());
    evidence.begin();
    EXPECT_FALSE(evidence.heardVoice());
}

} // namespace
} // namespace tovik
