// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/HttpResponse.h"
#include "Engines/Server/ServerSettings.h"
#include "Engines/Server/SoundEncoding.h"
#include "Engines/Server/TranscriptionRequest.h"
#include "support/TemporaryFolder.h"

#include <FLAC/stream_decoder.h>
#include <gmock/gmock.h>

#include <cmath>

namespace tovik::test {
namespace {

using testing::HasSubstr;
using State = HttpResponseReader::State;

/// What a reader makes of bytes, whole or one by one; the connection is closed afterwards.
struct Reading {
    std::string name;
    std::string bytes;
    State state = State::complete;
    int status = 200;
    std::string body;

    friend void PrintTo(const Reading& row, std::ostream* out) { *out << row.name; }
};

class HttpReading : public testing::TestWithParam<Reading> {};

TEST_P(HttpReading, isTheSameWholeAndByteByByte) {
    const auto& row = GetParam();
    for (const std::size_t atOnce : {row.bytes.size() + 1, std::size_t{1}}) {
        HttpResponseReader reader;
        for (std::size_t at = 0; at < row.bytes.size(); at += atOnce) {
            reader.take(std::string_view(row.bytes).substr(at, atOnce));
        }
        EXPECT_EQ(reader.end(), row.state);
        if (row.state == State::complete) {
            EXPECT_EQ(reader.response().status, row.status);
            EXPECT_EQ(reader.response().body, row.body);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HttpReading,
    testing::Values(
        Reading{"Counted", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello", State::complete, 200,
                "hello"},
        Reading{"CountedEmpty", "HTTP/1.1 200 OK\r\ncontent-length: 0\r\n\r\n", State::complete, 200, ""},
        Reading{"UntilTheEnd", "HTTP/1.0 500 Oops\r\n\r\nhello", State::complete, 500, "hello"},
        Reading{"Chunked",
                "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3;x=y\r\nhel\r\n2\r\nlo\r\n0\r\n\r\n",
                State::complete, 200, "hello"},
        Reading{"ChunkedWithTrailer",
                "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\nA: b\r\n\r\n",
                State::complete, 200, "x"},
        Reading{"Provisional", "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx",
                State::complete, 200, "x"},
        Reading{"WithoutBody", "HTTP/1.1 204 No Content\r\n\r\n", State::complete, 204, ""},
        Reading{"CutHead", "HTTP/1.1 200 OK\r\nContent-Le", State::malformed, 0, ""},
        Reading{"CutBody", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhel", State::malformed, 0, ""},
        Reading{"CutChunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhel", State::malformed,
                0, ""},
        Reading{"NoHttp", "220 smtp.example ESMTP\r\n\r\n", State::malformed, 0, ""},
        Reading{"NoStatus", "HTTP/1.1 abc OK\r\n\r\n", State::malformed, 0, ""},
        Reading{"NoHeader", "HTTP/1.1 200 OK\r\nnonsense\r\n\r\n", State::malformed, 0, ""},
        Reading{"NegativeLength", "HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n", State::malformed, 0, ""},
        Reading{"HugeLength", "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\n",
                State::malformed, 0, ""},
        Reading{"HugeChunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nffffffffffffffff\r\n",
                State::malformed, 0, ""},
        Reading{"Nothing", "", State::malformed, 0, ""}),
    [](const auto& row) { return row.param.name; });

TEST(HttpResponseReader, whenTheBodyNeverEnds_givesUp) {
    HttpResponseReader reader;
    reader.take("HTTP/1.1 200 OK\r\n\r\n");
    const std::string piece(1 << 20, 'x');
    State state = State::reading;
    for (int i = 0; i < 100 && state == State::reading; ++i) {
        state = reader.take(piece);
    }
    EXPECT_EQ(state, State::malformed);
    EXPECT_LE(reader.response().body.size(), HttpResponseReader::mostBytes);
}

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

/// The samples of a FLAC file, as the library reads them.
std::vector<std::int16_t> decoded(const std::string& path) {
    std::vector<std::int16_t> samples;
    auto* const decoder = FLAC__stream_decoder_new();
    FLAC__stream_decoder_init_file(
        decoder, path.c_str(),
        [](const FLAC__StreamDecoder*, const FLAC__Frame* frame, const FLAC__int32* const buffer[],
           void* client) {
            auto& all = *static_cast<std::vector<std::int16_t>*>(client);
            for (unsigned i = 0; i < frame->header.blocksize; ++i) {
                all.push_back(static_cast<std::int16_t>(buffer[0][i]));
            }
            return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
        },
        nullptr, [](const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void*) {}, &samples);
    FLAC__stream_decoder_process_until_end_of_stream(decoder);
    FLAC__stream_decoder_delete(decoder);
    return samples;
}

TEST(SoundEncoding, asFlac_keepsEverySampleInFewerBytes) {
    const TemporaryFolder folder;
    const auto file = flacFile(tone(), 16000);
    ASSERT_TRUE(file.ok());
    EXPECT_LT(file.value().size(), tone().size() * 2);
    writeFile(folder / "tone.flac", file.value());
    EXPECT_EQ(decoded(folder / "tone.flac"), tone());
}

TEST(SoundEncoding, asWav_hasTheHeaderThatEveryoneReads) {
    const std::vector<std::int16_t> samples{0x0102, -2};
    const auto file = wavFile(samples, 16000);
    using namespace std::string_literals;
    EXPECT_EQ(file, "RIFF\x28\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x80\x3e\0\0\0\x7d\0\0\x02\0\x10\0"s
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
