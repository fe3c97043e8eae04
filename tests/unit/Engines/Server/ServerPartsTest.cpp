// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/ServerDictation.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <sndfile.h>

#include <cmath>

namespace tovik::test {
namespace {

struct AddressRow {
    std::string text;
    std::string origin;
    std::string transcriptions;
    bool isThisMachine = false;

    friend void PrintTo(const AddressRow& row, std::ostream* out) { *out << row.text; }
};

class ServerAddresses : public testing::TestWithParam<AddressRow> {};

TEST_P(ServerAddresses, areUnderstood) {
    const auto& row = GetParam();
    const auto address = ServerAddress::parse(row.text);
    ASSERT_TRUE(address.ok());
    EXPECT_EQ(address.value().origin(), row.origin);
    EXPECT_EQ(address.value().transcriptions, row.transcriptions);
    EXPECT_EQ(address.value().isThisMachine(), row.isThisMachine);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ServerAddresses,
    testing::Values(
        AddressRow{"http://127.0.0.1:8080", "http://127.0.0.1:8080", "/v1/audio/transcriptions", true},
        AddressRow{"http://localhost:8080/", "http://localhost:8080", "/v1/audio/transcriptions", true},
        AddressRow{"http://127.9.9.9", "http://127.9.9.9:80", "/v1/audio/transcriptions", true},
        AddressRow{"https://speech.example/v1/", "https://speech.example:443", "/v1/audio/transcriptions"},
        AddressRow{"https://speech.example/gpu/v1", "https://speech.example:443",
                   "/gpu/v1/audio/transcriptions"},
        AddressRow{"http://10.0.0.7:9000/inference", "http://10.0.0.7:9000", "/inference"},
        AddressRow{"http://localhost.example", "http://localhost.example:80", "/v1/audio/transcriptions"}));

TEST(ServerAddress, whenItIsNone_isRefused) {
    for (const auto* text :
         {"speech.example", "ftp://speech.example", "http://", "https:///v1", "http://a b"}) {
        EXPECT_FALSE(ServerAddress::parse(text).ok()) << text;
    }
}

std::vector<std::int16_t> tone() {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < 100000; ++i) {
        samples.push_back(static_cast<std::int16_t>(20000 * std::sin(i / 10.0)));
    }
    return samples;
}

TEST(SoundFile, asFlac_keepsEverySampleInFewerBytes) {
    const TemporaryFolder folder;
    const auto file = soundFile(tone(), 16000, SoundFormat::flac);
    ASSERT_TRUE(file.ok());
    EXPECT_TRUE(file.value().starts_with("fLaC"));
    EXPECT_LT(file.value().size(), tone().size() * 2);
    writeFile(folder / "tone.flac", file.value());
    SF_INFO info{};
    auto* const reader = sf_open((folder / "tone.flac").c_str(), SFM_READ, &info);
    ASSERT_NE(reader, nullptr);
    std::vector<std::int16_t> samples(tone().size() + 1);
    samples.resize(static_cast<std::size_t>(
        sf_read_short(reader, samples.data(), static_cast<sf_count_t>(samples.size()))));
    sf_close(reader);
    EXPECT_EQ(info.samplerate, 16000);
    EXPECT_EQ(info.channels, 1);
    EXPECT_EQ(samples, tone());
}

TEST(SoundFile, asWav_hasTheHeaderThatEveryoneReads) {
    const std::vector<std::int16_t> samples{0x0102, -2};
    const auto file = soundFile(samples, 16000, SoundFormat::wav);
    using namespace std::string_literals;
    EXPECT_EQ(file.value(), "RIFF\x28\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x80\x3e\0\0\0\x7d\0\0\x02\0\x10\0"s
                            "data\x04\0\0\0\x02\x01\xfe\xff"s);
}

TEST(Prompt, whenTheVocabularyIsLong_keepsTheUsersOwnTerms) {
    std::vector<std::string> terms(500, "Builtin");
    terms.push_back("Mine");
    const auto prompt = promptOf(terms);
    EXPECT_LE(prompt.size(), 600U);
    EXPECT_TRUE(prompt.ends_with("Builtin, Mine"));
    EXPECT_EQ(promptOf({}), "");
}

} // namespace
} // namespace tovik::test
