// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/DictationLanguage.h"
#include "AudioManagerFixture.h"

#include <nlohmann/json.hpp>
#include <numeric>

namespace tovik::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::FloatNear;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

using Locale = FakeSpeechService::Locale;

/// A ramp, so that a missing, doubled or misplaced sample shows.
std::vector<float> ramp(std::size_t frames, std::size_t from = 0) {
    std::vector<float> samples(frames);
    for (std::size_t index = 0; index < frames; ++index) {
        samples[index] = static_cast<float>(from + index) / 100000.0F;
    }
    return samples;
}

class MacAudioManagerRecognition : public AudioManagerFixture {};

// ------------------------------------------------------------------------------------- start

TEST_F(MacAudioManagerRecognition, whenMade_letsTheRecognizersLearnTheVocabulary) {
    defaults.set("CustomVocabulary", "Zork");
    manager();
    EXPECT_EQ(speech.preparedFor().size(), kBuiltinVocabulary.size() + 1);
    EXPECT_EQ(speech.preparedFor().back(), "Zork");
}

TEST_F(MacAudioManagerRecognition, whenStarted_preparesAndStartsTheEngineWithATapOf1024Frames) {
    manager();
    engine.forgetCalls();
    EXPECT_TRUE(manager().start().ok());
    EXPECT_THAT(engine.calls(), ElementsAre("installTap(1024)", "prepare", "start"));
    EXPECT_TRUE(engine.isRunning());
}

TEST_F(MacAudioManagerRecognition, whenStartedTwice_leavesTheFirstDictationUntouched) {
    startRecording();
    const auto first = speech.lastUtterance();
    EXPECT_TRUE(manager().start().ok());
    EXPECT_THAT(engine.calls(), IsEmpty());
    EXPECT_THAT(newLines(), IsEmpty());
    EXPECT_EQ(speech.utteranceCount(), 1U);
    EXPECT_FALSE(first->finished());
    EXPECT_FALSE(first->dropped());
}

TEST_F(MacAudioManagerRecognition, whenStarted_asksForPartialResultsPunctuationAndDictation) {
    startRecording();
    const auto& settings = speech.lastUtterance()->request().settings();
    EXPECT_TRUE(settings.reportPartialResults);
    EXPECT_TRUE(settings.addPunctuation);
    EXPECT_EQ(settings.taskHint, RecognitionSettings::TaskHint::dictation);
}

TEST_F(MacAudioManagerRecognition, whenStarted_theRequestHasTheSampleRateOfTheMicrophone) {
    engine.setInputFormat({48000, 2});
    startRecording();
    EXPECT_EQ(speech.lastUtterance()->request().sampleRate(), 48000);
}

TEST_F(MacAudioManagerRecognition, whenNoVocabularyIsStored_favoursTheBuiltinTerms) {
    startRecording();
    EXPECT_THAT(speech.lastUtterance()->request().settings().contextualStrings,
                UnorderedElementsAreArray(kBuiltinVocabulary));
}

TEST_F(MacAudioManagerRecognition, whenVocabularyIsStored_favoursItsTermsOnceEach) {
    defaults.set("CustomVocabulary", "foo, ,bar ,foo, Tovik");
    startRecording();
    std::vector<std::string> expected(kBuiltinVocabulary.begin(), kBuiltinVocabulary.end());
    expected.insert(expected.end(), {"foo", "bar"});
    EXPECT_THAT(speech.lastUtterance()->request().settings().contextualStrings,
                UnorderedElementsAreArray(expected));
}

TEST_F(MacAudioManagerRecognition, whenTheStoredVocabularyIsNoString_favoursTheBuiltinTerms) {
    defaults.set("CustomVocabulary", 17);
    startRecording();
    EXPECT_THAT(speech.lastUtterance()->request().settings().contextualStrings,
                UnorderedElementsAreArray(kBuiltinVocabulary));
}

TEST_F(MacAudioManagerRecognition, whenTheVocabularyChanges_theNextDictationHasIt) {
    startRecording();
    manager().stop();
    defaults.set("CustomVocabulary", "foo");
    startRecording();
    EXPECT_THAT(speech.lastUtterance()->request().settings().contextualStrings, Contains("foo"));
}

// ------------------------------------------------------------------- the device in the log

TEST_F(MacAudioManagerRecognition, whenTheChosenDeviceIsListed_namesIt) {
    manager();
    forgetLines();
    EXPECT_TRUE(manager().start().ok());
    EXPECT_THAT(newLines(), ElementsAre("[TovikVoice] Using selected audio device: Built-in Microphone"));
}

TEST_F(MacAudioManagerRecognition, whenTheChosenDeviceWasRenamed_namesItByItsNewName) {
    manager();
    devices.setDevices({{builtin.uniqueId, "Renamed Microphone"}});
    forgetLines();
    EXPECT_TRUE(manager().start().ok());
    EXPECT_THAT(newLines(), ElementsAre("[TovikVoice] Using selected audio device: Renamed Microphone"));
}

TEST_F(MacAudioManagerRecognition, whenTheChosenDeviceIsGone_saysSoAndRecordsAllTheSame) {
    manager();
    devices.setDevices({usb});
    forgetLines();
    EXPECT_TRUE(manager().start().ok());
    EXPECT_THAT(newLines(), ElementsAre("[TovikVoice] Selected device not found, will use system default"));
    EXPECT_TRUE(engine.isRunning());
}

TEST_F(MacAudioManagerRecognition, whenNoDeviceIsChosen_saysNothingOfDevices) {
    devices.setDevices({});
    devices.setDefaultDeviceId(std::nullopt);
    manager();
    forgetLines();
    EXPECT_TRUE(manager().start().ok());
    EXPECT_THAT(newLines(), IsEmpty());
}

// ------------------------------------------------------------------- the choice of recognizer

TEST_F(MacAudioManagerRecognition, whenTheUserChoseAnAvailableLanguage_usesItAndSaysSo) {
    defaults.set("SelectedDictationLocale", "fr-FR");
    speech.setLocale("fr-FR", Locale::available);
    startRecording();
    EXPECT_EQ(speech.lastUtterance()->localeIdentifier(), "fr-FR");
    EXPECT_THAT(speech.askedLocales(), ElementsAre("fr-FR"));
    EXPECT_THAT(log.printed(), Contains("[TovikVoice] Using user-selected locale: fr-FR"));
}

TEST_F(MacAudioManagerRecognition, whenTheChosenLanguageIsUnavailable_fallsBackToTheSystemsSilently) {
    for (const auto state : {Locale::unavailable, Locale::unknown}) {
        defaults.set("SelectedDictationLocale", "fr-FR");
        speech.setLocale("fr-FR", state);
        speech.setLocale("nl-NL", Locale::available);
        speech.setCurrentLocaleIdentifier("nl-NL");
        startRecording();
        EXPECT_EQ(speech.lastUtterance()->localeIdentifier(), "nl-NL");
        manager().stop();
    }
    EXPECT_THAT(log.printed(), Each(Not(HasSubstr("locale"))));
}

TEST_F(MacAudioManagerRecognition, whenNoLanguageIsChosen_usesTheSystemsSilently) {
    speech.setLocale("de-DE", Locale::available);
    speech.setCurrentLocaleIdentifier("de-DE");
    startRecording();
    EXPECT_EQ(speech.lastUtterance()->localeIdentifier(), "de-DE");
    EXPECT_THAT(log.printed(), Each(Not(HasSubstr("locale"))));
}

TEST_F(MacAudioManagerRecognition, whenTheStoredLanguageIsNoString_countsAsNoChoice) {
    defaults.set("SelectedDictationLocale", true);
    startRecording();
    EXPECT_EQ(speech.lastUtterance()->localeIdentifier(), "en-US");
    EXPECT_THAT(log.printed(), Each(Not(HasSubstr("locale"))));
}

TEST_F(MacAudioManagerRecognition, whenTheSystemsLanguageIsUnavailable_takesTheFirstSupportedOneThatIs) {
    speech.setCurrentLocaleIdentifier("nl-NL");
    speech.setLocale("en-US", Locale::unavailable);
    speech.setLocale("es-ES", Locale::available);
    speech.setLocale("de-DE", Locale::available);
    startRecording();
    EXPECT_EQ(speech.lastUtterance()->localeIdentifier(), "es-ES");
    EXPECT_THAT(speech.askedLocales(), ElementsAre("nl-NL", "en-US", "en-GB", "fr-FR", "es-ES"));
}

TEST_F(MacAudioManagerRecognition, whenNothingIsAvailable_usesAmericanEnglishAllTheSame) {
    speech.setLocale("en-US", Locale::unavailable);
    startRecording();
    EXPECT_EQ(speech.lastUtterance()->localeIdentifier(), "en-US");
    EXPECT_THAT(speech.askedLocales(), ElementsAre("en-US", "en-US", "en-GB", "fr-FR", "es-ES", "de-DE",
                                                   "it-IT", "zh-CN", "ja-JP", "en-US"));
}

TEST_F(MacAudioManagerRecognition, whenNoRecognizerExists_recordsLevelsWithoutText) {
    speech.setLocale("en-US", Locale::unknown);
    EXPECT_TRUE(manager().start().ok());
    EXPECT_EQ(speech.utteranceCount(), 0U);
    engine.hearConstant(0.1F, 2048);
    EXPECT_THAT(levels, SizeIs(2));
    manager().stop();
    EXPECT_THAT(finals, IsEmpty());
}

TEST_F(MacAudioManagerRecognition, whenTheLanguageChangesDuringADictation_theNextOneUsesIt) {
    startRecording();
    defaults.set("SelectedDictationLocale", "fr-FR");
    speech.setLocale("fr-FR", Locale::available);
    EXPECT_TRUE(manager().start().ok());
    EXPECT_EQ(speech.utteranceCount(), 1U);
    manager().stop();
    startRecording();
    EXPECT_EQ(speech.lastUtterance()->localeIdentifier(), "fr-FR");
}

// --------------------------------------------------------------------- a start that fails

TEST_F(MacAudioManagerRecognition, whenTheEngineDoesNotStart_saysWhyAndHandsTheErrorOn) {
    const Error refused{"Sound", 5, "The microphone is in use"};
    engine.failStarts(refused);
    manager();
    forgetLines();
    const auto started = manager().start();
    ASSERT_FALSE(started.ok());
    EXPECT_EQ(started.error(), refused);
    EXPECT_THAT(newLines(), Contains("[TovikVoice] AVAudioEngine start failed: The microphone is in use"));
}

TEST_F(MacAudioManagerRecognition, whenTheEngineDoesNotStart_leavesTaskAndTapToTheNextStop) {
    engine.failStarts({"Sound", 5, "no"});
    EXPECT_FALSE(manager().start().ok());
    const auto utterance = speech.lastUtterance();
    EXPECT_TRUE(engine.hasTap());
    EXPECT_FALSE(utterance->finished());
    EXPECT_FALSE(utterance->dropped());

    manager().stop();
    EXPECT_FALSE(engine.hasTap());
    EXPECT_TRUE(utterance->finished());
    EXPECT_TRUE(utterance->dropped());
    EXPECT_THAT(utterance->readSound(), IsEmpty());
}

TEST_F(MacAudioManagerRecognition, whenTheEngineDoesNotStart_closesTheMicrophoneThatWasOpenedAhead) {
    manager().openAhead(Seconds(0));
    engine.failStarts({"Sound", 5, "no"});
    EXPECT_FALSE(manager().start().ok());
    EXPECT_FALSE(engine.isOpenAhead());
}

TEST_F(MacAudioManagerRecognition, afterAFailedStart_theNextStartReusesTheTapAndItsRequest) {
    engine.failStarts({"Sound", 5, "no"});
    EXPECT_FALSE(manager().start().ok());
    engine.letStartsSucceed();
    engine.forgetCalls();
    EXPECT_TRUE(manager().start().ok());
    EXPECT_THAT(engine.calls(), ElementsAre("prepare", "start"));
    ASSERT_EQ(speech.utteranceCount(), 2U);

    const auto samples = ramp(1024);
    engine.hear(samples);
    manager().stop();
    EXPECT_EQ(speech.utterances()[0]->readSound(), samples);
    EXPECT_THAT(speech.utterances()[1]->readSound(), IsEmpty());
}

TEST_F(MacAudioManagerRecognition, afterAFailedStart_whatIsSpokenNextStillBecomesText) {
    engine.failStarts({"Sound", 5, "no"});
    EXPECT_FALSE(manager().start().ok());
    engine.letStartsSucceed();
    EXPECT_TRUE(manager().start().ok());
    engine.hearConstant(0.5F, 3000);
    manager().stop();
    // The recognizer of the first attempt gets the end of the sound, so that it can answer.
    EXPECT_THAT(speech.utterances()[0]->readSound(), SizeIs(3000));
    speech.utterances()[0]->deliverFinal("not lost");
    EXPECT_THAT(finals, ElementsAre("<not lost>"));
}

// ------------------------------------------------------------------------------------ the tap

TEST_F(MacAudioManagerRecognition, whileRecording_reportsOneLevelForEveryBuffer) {
    startRecording();
    engine.hearConstant(0.0F, 1024);
    engine.hearConstant(1.0F, 1024);
    engine.hearConstant(0.1F, 1024);
    EXPECT_THAT(levels, ElementsAre(0.0F, 1.0F, FloatNear(0.7360219F, 1e-5F)));
}

TEST_F(MacAudioManagerRecognition, whileRecording_everySampleReachesTheRequestInOrder) {
    startRecording();
    const auto samples = ramp(5000);
    engine.hear(samples);
    manager().stop();
    EXPECT_EQ(speech.lastUtterance()->readSound(), samples);
}

TEST_F(MacAudioManagerRecognition, whenTheMicrophoneComesWithAnotherRate_theRequestGetsItsOwn) {
    engine.setInputFormat({48000, 1});
    EXPECT_TRUE(manager().start().ok());
    engine.setInputFormat({16000, 1});
    engine.hearConstant(0.5F, 16384);
    manager().stop();
    const auto sound = speech.lastUtterance()->readSound();
    EXPECT_NEAR(static_cast<double>(sound.size()), 3 * 16384, 3);
    EXPECT_THAT(sound, Each(FloatNear(0.5F, 1e-6F)));
}

TEST_F(MacAudioManagerRecognition, withoutALevelCallback_stillRecords) {
    callbacks.onLevel = nullptr;
    startRecording();
    engine.hearConstant(0.1F, 1024);
    manager().stop();
    EXPECT_THAT(speech.lastUtterance()->readSound(), SizeIs(1024));
}

TEST_F(MacAudioManagerRecognition, whenDictatingAgain_theSoundGoesToTheNewRequestOnly) {
    startRecording();
    engine.hear(ramp(1024));
    manager().stop();
    startRecording();
    EXPECT_TRUE(engine.hasTap());
    engine.hear(ramp(1024, 5000));
    manager().stop();
    ASSERT_EQ(speech.utteranceCount(), 2U);
    EXPECT_EQ(speech.utterances()[0]->readSound(), ramp(1024));
    EXPECT_EQ(speech.utterances()[1]->readSound(), ramp(1024, 5000));
}

// ------------------------------------------------------------------- the early microphone

TEST_F(MacAudioManagerRecognition, whenOpenedAhead_whatWasHeardBeforeTheStartIsRecognized) {
    manager().openAhead(Seconds(0));
    engine.hear(ramp(1500));
    EXPECT_TRUE(manager().start().ok());
    engine.hear(ramp(1500, 1500));
    manager().stop();
    EXPECT_EQ(speech.lastUtterance()->readSound(), ramp(3000));
}

TEST_F(MacAudioManagerRecognition, whenClosedAhead_whatWasHeardIsForgotten) {
    manager().openAhead(Seconds(0));
    engine.hear(ramp(1500));
    manager().closeAhead();
    EXPECT_TRUE(manager().start().ok());
    manager().stop();
    EXPECT_THAT(speech.lastUtterance()->readSound(), IsEmpty());
}

// ----------------------------------------------------------------------------------- stop

TEST_F(MacAudioManagerRecognition, whenStopped_endsTheAudioThenTheEngineThenTheTapThenTheTask) {
    startRecording();
    const auto utterance = speech.lastUtterance();
    std::vector<std::string> taskStates;
    const std::vector<float> marker{0.25F};
    engine.onCall([&](const std::string& call) {
        taskStates.push_back(call + (utterance->finished() ? " after" : " before") + " finish");
        // A request whose audio has ended takes no more.
        utterance->request().append({call == "flush" ? std::span<const float>() : marker, 16000});
    });
    engine.hear(ramp(100));
    manager().stop();
    engine.onCall(nullptr);
    EXPECT_THAT(taskStates,
                ElementsAre("flush before finish", "listenOn before finish", "removeTap before finish"));
    EXPECT_TRUE(utterance->finished());
    EXPECT_EQ(utterance->readSound(), ramp(100));
}

TEST_F(MacAudioManagerRecognition, whenStopped_whatDoesNotFillABufferIsNotLost) {
    startRecording();
    const auto samples = ramp(1024 + 7);
    engine.hear(samples);
    EXPECT_THAT(levels, SizeIs(1));
    manager().stop();
    EXPECT_THAT(levels, SizeIs(2));
    EXPECT_EQ(speech.lastUtterance()->readSound(), samples);
}

TEST_F(MacAudioManagerRecognition, whenStopped_pausesATenthOfASecondAfterEverythingElse) {
    startRecording();
    const auto before = time.now();
    Date lastCall;
    engine.onCall([&](const std::string&) { lastCall = time.now(); });
    manager().stop();
    engine.onCall(nullptr);
    EXPECT_THAT(time.pauses(), ElementsAre(Seconds(0.1)));
    EXPECT_EQ(lastCall, before);
    EXPECT_TRUE(speech.lastUtterance()->dropped());
}

TEST_F(MacAudioManagerRecognition, whenStoppedWithoutAStart_onlyStopsTheEngineAndPauses) {
    manager().stop();
    EXPECT_THAT(engine.calls(), ElementsAre("stop"));
    EXPECT_THAT(time.pauses(), ElementsAre(Seconds(0.1)));
}

TEST_F(MacAudioManagerRecognition, whenStoppedTwice_theSecondIsHarmless) {
    startRecording();
    manager().stop();
    engine.forgetCalls();
    manager().stop();
    EXPECT_THAT(engine.calls(), ElementsAre("stop"));
    EXPECT_THAT(time.pauses(), SizeIs(2));
}

TEST_F(MacAudioManagerRecognition, whenTheTalkKeyGoesDownDuringThePauseOfTheStop_nothingSpokenSinceIsLost) {
    startRecording();
    manager().stop();
    // The main thread pauses; the key goes down in the middle of that.
    engine.hear(ramp(800));
    engine.hear(ramp(800, 800));
    manager().closeAhead(); // the release of the key has begun no recording
    time.advance(Seconds(0.01));
    manager().openAhead(Seconds(0.05));
    engine.hear(ramp(800, 1600));
    time.advance(Seconds(1));
    startRecording();
    manager().stop();
    EXPECT_EQ(speech.lastUtterance()->readSound(), ramp(1600, 800));
}

TEST_F(MacAudioManagerRecognition, whenStoppedForGood_theMicrophoneClosesSoon) {
    startRecording();
    manager().stop();
    time.advance(Seconds(0.19));
    EXPECT_TRUE(engine.isOpenAhead());
    time.advance(Seconds(0.01));
    EXPECT_FALSE(engine.isOpenAhead());
    EXPECT_FALSE(engine.isRunning());
}

TEST_F(MacAudioManagerRecognition, whenTheTalkKeyBelongedToAnotherShortcut_theMicrophoneClosesAtOnce) {
    startRecording();
    manager().stop();
    manager().openAhead(Seconds(0));
    manager().closeAhead();
    EXPECT_FALSE(engine.isOpenAhead());
}

TEST_F(MacAudioManagerRecognition, whenStopped_theTapIsGone) {
    startRecording();
    manager().stop();
    EXPECT_FALSE(engine.hasTap());
    EXPECT_FALSE(engine.isRunning());
}

TEST_F(MacAudioManagerRecognition, whenTheRecognizerReadNothingForTooLong_saysHowMuchIsLost) {
    startRecording();
    const auto capacity = static_cast<std::size_t>(RecognitionRequest::capacitySeconds * 16000);
    engine.hearConstant(0.5F, capacity + 10);
    manager().stop();
    EXPECT_THAT(newLines(),
                ElementsAre("[TovikVoice] The recognizer fell behind: 10 frames of sound are lost"));
}

TEST_F(MacAudioManagerRecognition, withoutARecognizer_nothingCountsAsLost) {
    speech.setLocale("en-US", Locale::unknown);
    startRecording();
    const auto capacity = static_cast<std::size_t>(RecognitionRequest::capacitySeconds * 16000);
    engine.hearConstant(0.5F, capacity + 10);
    manager().stop();
    EXPECT_THAT(newLines(), IsEmpty());
}

} // namespace
} // namespace tovik::test
