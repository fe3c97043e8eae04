// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "RequestAnswerer.h"

#include "support/RecordingLog.h"
#include "unit/Speech/Rows.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace tovik::test {

namespace {

class Answer : public testing::TestWithParam<TextRow> {};

TEST_P(Answer, isAsExpected) {
    RecordingLog log;
    RequestAnswerer answerer(log);
    EXPECT_EQ(PropertyValue::parse(answerer.answer(GetParam().input)),
              PropertyValue::parse(GetParam().expected));
    EXPECT_THAT(log.printed(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Requests, Answer,
    testing::Values(
        TextRow{
            "process",
            R"({"op":"process","text":"um a,b twenty five","settings":{"TovikVoiceRemoveFillerWords":true}})",
            R"({"text":"a, b 25"})"},
        TextRow{"process without settings", R"({"op":"process","text":"um a,b","settings":{}})",
                R"({"text":"um a, b"})"},
        TextRow{
            "process applies no corrections",
            R"({"op":"process","text":"bot to bot","settings":{"transcription.customDictionary":{"bot to bot":"x"}}})",
            R"({"text":"bot to bot"})"},
        TextRow{
            "fillers",
            R"({"op":"fillers","text":"I, uh, think so.","settings":{"TovikVoiceRemoveFillerWords":true}})",
            R"({"text":"I,, think so."})"},
        TextRow{"fillers with the string true",
                R"({"op":"fillers","text":"um a","settings":{"TovikVoiceRemoveFillerWords":"true"}})",
                R"({"text":"um a"})"},
        TextRow{"format", R"({"op":"format","text":"two thousand,x","settings":{}})",
                R"({"text":"2,000,x"})"},
        TextRow{
            "format switched off",
            R"({"op":"format","text":"two thousand","settings":{"transcription.formatter.enabled":false}})",
            R"({"text":"two thousand"})"},
        TextRow{"number", R"({"op":"number","text":"one two three"})", R"({"value":6})"},
        TextRow{"day", R"({"op":"day","text":"twenty first"})", R"({"value":21})"},
        TextRow{"year", R"({"op":"year","text":"nineteen oh five"})", R"({"value":1905})"},
        TextRow{"corrections", R"({"op":"corrections","text":"Hello","mapping":{"hello":"$0!"}})",
                R"({"text":"Hello!"})"},
        TextRow{"corrections with no mapping at all",
                R"({"op":"corrections","text":"bot to bot","mapping":{}})", R"({"text":"bot to bot"})"},
        TextRow{"parseDisplay", R"({"op":"parseDisplay","text":"a → b, c = d, , e"})",
                R"({"mapping":{"a":"b","c":"d"}})"},
        TextRow{"parseDisplay of nothing", R"({"op":"parseDisplay","text":""})", R"({"mapping":{}})"},
        TextRow{"fillerList unset", R"({"op":"fillerList","settings":{}})",
                R"({"text":"kind of, sort of, um, uh, erm, hmm","stored":null})"},
        TextRow{
            "fillerList blank", R"({"op":"fillerList","settings":{"TovikVoiceFillerWords":" "}})",
            R"({"text":"kind of, sort of, um, uh, erm, hmm","stored":"kind of, sort of, um, uh, erm, hmm"})"},
        TextRow{"fillerList own", R"({"op":"fillerList","settings":{"TovikVoiceFillerWords":" a "}})",
                R"({"text":"a","stored":" a "})"},
        TextRow{"fillerList of another type",
                R"({"op":"fillerList","settings":{"TovikVoiceFillerWords":[1]}})",
                R"({"text":"kind of, sort of, um, uh, erm, hmm","stored":[1]})"},
        TextRow{"vocabulary", R"({"op":"vocabulary","settings":{"CustomVocabulary":" foo, ,bar ,foo"}})",
                R"({"terms":["foo","bar"]})"},
        TextRow{"vocabulary unset", R"({"op":"vocabulary","settings":{}})", R"({"terms":[]})"},
        TextRow{"menuTitle", R"({"op":"menuTitle","text":" a\nb "})", R"({"text":"a b"})"},
        TextRow{"elapsed", R"({"op":"elapsed","seconds":3600})", R"({"text":"1:00:00"})"},
        TextRow{"level of silence", R"({"op":"level","rms":0})", R"({"value":0.0})"},
        TextRow{"level of full scale", R"({"op":"level","rms":1})", R"({"value":1.0})"},
        TextRow{"bar of silence", R"({"op":"bar","sample":0})",
                R"({"height":3.5,"rgba":[0.72,0.72,0.72,0.76]})"}),
    rowName<testing::TestParamInfo<TextRow>>);

class Refusal : public testing::TestWithParam<TextRow> {};

TEST_P(Refusal, namesTheError) {
    RecordingLog log;
    RequestAnswerer answerer(log);
    const auto answer = PropertyValue::parse(answerer.answer(GetParam().input));
    ASSERT_EQ(answer.size(), 1U) << answer;
    EXPECT_THAT(answer.at("error").get<std::string>(), testing::HasSubstr(GetParam().expected));
    EXPECT_EQ(answerer.answer(R"({"op":"day","text":"first"})"), R"({"value":1})");
}

INSTANTIATE_TEST_SUITE_P(
    Requests, Refusal,
    testing::Values(
        TextRow{"no JSON", "hello", "parse error"}, TextRow{"empty line", "", "parse error"},
        TextRow{"no object", "[1]", "JSON object"}, TextRow{"no operation", "{}", "\"op\""},
        TextRow{"operation of another type", R"({"op":1})", "\"op\""},
        TextRow{"unknown operation", R"({"op":"nope"})", "no operation \"nope\""},
        TextRow{"no text", R"({"op":"process","settings":{}})", "\"text\""},
        TextRow{"text of another type", R"({"op":"number","text":5})", "\"text\""},
        TextRow{"settings of another type", R"({"op":"process","text":"a","settings":[]})", "\"settings\""},
        TextRow{"no mapping", R"({"op":"corrections","text":"a"})", "\"mapping\""},
        TextRow{"mapping of other values", R"({"op":"corrections","text":"a","mapping":{"a":1}})",
                "\"mapping\""},
        TextRow{"fraction of seconds", R"({"op":"elapsed","seconds":1.5})", "\"seconds\""},
        TextRow{"too many seconds", R"({"op":"elapsed","seconds":18446744073709551615})", "\"seconds\""},
        TextRow{"level of no number", R"({"op":"level","rms":"1"})", "\"rms\""},
        TextRow{"broken UTF-8", "{\"op\":\"number\",\"text\":\"\xFF\"}", "UTF-8"},
        TextRow{"half a surrogate pair", R"({"op":"number","text":"\ud800"})", "surrogate"},
        TextRow{"broken UTF-8 in a message", "\xFF", "parse error"},
        TextRow{"deep nesting", std::string(100'000, '['), "too deeply"}),
    rowName<testing::TestParamInfo<TextRow>>);

TEST(RequestAnswerer, betweenRequests_keepsNoSettings) {
    RecordingLog log;
    RequestAnswerer answerer(log);
    (void)answerer.answer(R"({"op":"fillers","text":"um","settings":{"TovikVoiceRemoveFillerWords":true}})");
    (void)answerer.answer(R"({"op":"fillerList","settings":{"TovikVoiceFillerWords":""}})");
    EXPECT_EQ(answerer.answer(R"({"op":"fillers","text":"um a","settings":{}})"), R"({"text":"um a"})");
    EXPECT_THAT(answerer.answer(R"({"op":"fillerList","settings":{}})"),
                testing::HasSubstr("\"stored\":null"));
}

} // namespace

} // namespace tovik::test
