// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/JsonUserDefaults.h"

#include "support/Allocations.h"
#include "support/FullDisk.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/inotify.h>

#include <array>
#include <atomic>
#include <climits>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <thread>

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class JsonUserDefaultsTest : public testing::Test {
protected:
    [[nodiscard]] JsonUserDefaults open() { return JsonUserDefaults(file, log); }
    [[nodiscard]] nlohmann::json stored() const {
        return nlohmann::json::parse(readFile(file).value_or(""), nullptr, false);
    }
    [[nodiscard]] std::vector<std::string> keptFiles() const {
        std::vector<std::string> kept;
        for (const auto& name : namesIn(folder)) {
            if (name.starts_with("defaults.json.unreadable-")) {
                kept.push_back(folder + "/" + name);
            }
        }
        return kept;
    }

    TemporaryFolder home;
    std::string folder = home / ".config/tovik-record";
    std::string file = folder + "/defaults.json";
    RecordingLog log;
};

TEST_F(JsonUserDefaultsTest, whenNothingIsStored_everyKeyIsAbsentAndNothingIsCreated) {
    const auto defaults = open();
    EXPECT_FALSE(defaults.value("TranslationEnabled"));
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(JsonUserDefaultsTest, whenAKeyIsSet_theFileIsAJsonObjectThatOnlyTheUserCanRead) {
    auto defaults = open();
    defaults.set("TranslationEnabled", true);
    EXPECT_EQ(stored(), nlohmann::json({{"TranslationEnabled", true}}));
    EXPECT_EQ(modeOf(folder), 0700u);
    EXPECT_EQ(modeOf(file), 0600u);
}

TEST_F(JsonUserDefaultsTest, whenTheFolderIsOpenToOthers_aWriteClosesIt) {
    std::filesystem::create_directories(folder);
    std::filesystem::permissions(folder, std::filesystem::perms(0755));
    writeFile(file, "{}");
    std::filesystem::permissions(file, std::filesystem::perms(0644));
    auto defaults = open();
    defaults.set("a", 1);
    EXPECT_EQ(modeOf(folder), 0700u);
    EXPECT_EQ(modeOf(file), 0600u);
}

TEST_F(JsonUserDefaultsTest, whenTheSettingsLieInAFolderOfTheUsers_itStaysAsItIs) {
    const auto shared = home / "shared";
    std::filesystem::create_directories(shared);
    std::filesystem::permissions(shared, std::filesystem::perms(0755));
    JsonUserDefaults defaults(shared + "/settings.json", log);
    defaults.set("a", 1);
    EXPECT_EQ(modeOf(shared), 0755u);
    EXPECT_EQ(modeOf(shared + "/settings.json"), 0600u);
}

TEST_F(JsonUserDefaultsTest, whenAWriteIsDone_noOtherFileThanTheLockLiesBesideIt) {
    auto defaults = open();
    defaults.set("a", 1);
    defaults.remove("a");
    EXPECT_THAT(namesIn(folder), ElementsAre("defaults.json", "defaults.json.lock"));
}

TEST_F(JsonUserDefaultsTest, whenAKilledProcessLeftAHalfFile_itIsNeitherReadNorInTheWay) {
    std::filesystem::create_directories(folder);
    writeFile(file, R"({"a": 1})");
    writeFile(file + ".new", R"({"a": 2, "b)");
    auto defaults = open();
    EXPECT_EQ(defaults.number("a"), 1);
    defaults.set("a", 3);
    EXPECT_EQ(open().number("a"), 3);
    EXPECT_FALSE(std::filesystem::exists(file + ".new"));
}

TEST_F(JsonUserDefaultsTest, whenAnAbsentKeyIsRemoved_nothingIsWritten) {
    auto defaults = open();
    defaults.remove("a");
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(JsonUserDefaultsTest, whenAnotherProcessWrites_theNextReadSeesItAndOtherKeysAreKept) {
    auto mine = open();
    auto theirs = open();
    mine.set("a", 1);
    EXPECT_EQ(theirs.number("a"), 1);
    theirs.set("b", 2);
    EXPECT_EQ(mine.number("b"), 2);
    mine.set("a", 3);
    EXPECT_EQ(theirs.number("a"), 3);
    EXPECT_EQ(theirs.number("b"), 2);
}

TEST_F(JsonUserDefaultsTest, whenTheFileIsEditedInPlaceToTheSameLengthAtOnce_theEditIsSeen) {
    auto defaults = open();
    defaults.set("a", 1);
    for (int n = 0; n < 200; ++n) {
        writeFile(file, "{\"a\": " + std::to_string(n % 10) + "}");
        ASSERT_EQ(defaults.number("a"), n % 10) << "edit " << n;
    }
    EXPECT_THAT(keptFiles(), IsEmpty());
}

TEST_F(JsonUserDefaultsTest, whenTheFileIsRemoved_everyKeyIsAbsent) {
    auto defaults = open();
    defaults.set("a", 1);
    std::filesystem::remove(file);
    EXPECT_FALSE(defaults.value("a"));
    defaults.set("b", 2);
    EXPECT_EQ(stored(), nlohmann::json({{"b", 2}}));
}

struct Unreadable {
    const char* name;
    std::string content;
};

class UnreadableContent : public JsonUserDefaultsTest, public testing::WithParamInterface<Unreadable> {};

TEST_P(UnreadableContent, countsAsEmptyIsKeptAndSaidOnce) {
    std::filesystem::create_directories(folder);
    writeFile(file, GetParam().content);
    auto defaults = open();
    EXPECT_FALSE(defaults.value("a"));
    EXPECT_FALSE(defaults.value("b"));
    ASSERT_THAT(keptFiles(), SizeIs(1));
    EXPECT_EQ(readFile(keptFiles().front()), GetParam().content);
    EXPECT_EQ(modeOf(keptFiles().front()), 0600u);
    EXPECT_THAT(log.printed(), ElementsAre(StartsWith("[TovikVoice] The settings in " + file)));
    EXPECT_THAT(log.printed().front(), HasSubstr(keptFiles().front()));

    defaults.set("a", 1);
    EXPECT_EQ(stored(), nlohmann::json({{"a", 1}}));
    EXPECT_EQ(readFile(keptFiles().front()), GetParam().content);
    EXPECT_THAT(log.printed(), SizeIs(1));
}

INSTANTIATE_TEST_SUITE_P(Contents, UnreadableContent,
                         testing::Values(Unreadable{"empty", ""}, Unreadable{"truncated", R"({"a": tru)"},
                                         Unreadable{"truncatedString", R"({"a": "x)"},
                                         Unreadable{"array", R"(["a", 1])"}, Unreadable{"string", R"("a")"},
                                         Unreadable{"null", "null"},
                                         Unreadable{"binary", std::string("\x00\x01\xff\xfe{\"a\"", 8)},
                                         Unreadable{"invalidUtf8", "{\"a\": \"\xc3\x28\"}"},
                                         Unreadable{"numberBeyondAll", R"({"a": 1e999})"},
                                         Unreadable{"twoObjects", R"({"a": 1}{"b": 2})"},
                                         Unreadable{"bottomless", R"({"a": )" + std::string(200000, '[') +
                                                                      std::string(200000, ']') + "}"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(JsonUserDefaultsTest, whenSeveralProcessesMeetTheSameUnreadableContent_oneCopyIsKept) {
    std::filesystem::create_directories(folder);
    writeFile(file, "not json");
    EXPECT_FALSE(open().value("a"));
    EXPECT_FALSE(open().value("a"));
    EXPECT_THAT(keptFiles(), SizeIs(1));
}

TEST_F(JsonUserDefaultsTest, whenUnreadableContentOfTheSameSecondDiffers_bothAreKept) {
    std::filesystem::create_directories(folder);
    const auto time = std::filesystem::file_time_type::clock::now();
    for (const auto* const content : {"first", "other"}) {
        writeFile(file, content);
        std::filesystem::last_write_time(file, time);
        EXPECT_FALSE(open().value("a"));
    }
    ASSERT_THAT(keptFiles(), SizeIs(2));
    EXPECT_EQ(readFile(keptFiles()[0]), "first");
    EXPECT_EQ(readFile(keptFiles()[1]), "other");
}

TEST_F(JsonUserDefaultsTest, whenUnreadableContentComesOverAndOver_theFirstAndTheLastFewCopiesAreKept) {
    std::filesystem::create_directories(folder);
    auto defaults = open();
    const auto time = std::filesystem::file_time_type::clock::now();
    for (int n = 0; n < 20; ++n) {
        writeFile(file, "not json " + std::to_string(n));
        std::filesystem::last_write_time(file, time + std::chrono::seconds(n));
        EXPECT_FALSE(defaults.value("a"));
    }
    std::vector<std::string> kept;
    for (const auto& copy : keptFiles()) {
        kept.push_back(readFile(copy).value_or(""));
    }
    EXPECT_THAT(kept, ElementsAre("not json 0", "not json 16", "not json 17", "not json 18", "not json 19"));
}

TEST_F(JsonUserDefaultsTest, whenUnreadableContentIsOld_itsCopyIsNotTheOneThatGoes) {
    std::filesystem::create_directories(folder);
    const auto time = std::filesystem::file_time_type::clock::now();
    for (int n = 0; n < 20; ++n) {
        writeFile(file, "not json " + std::to_string(n));
        std::filesystem::last_write_time(file, time - std::chrono::hours(n));
        EXPECT_FALSE(open().value("a"));
        EXPECT_THAT(keptFiles(), testing::Contains(testing::ResultOf(
                                     [](const auto& copy) { return readFile(copy).value_or(""); },
                                     "not json " + std::to_string(n))));
    }
}

TEST_F(JsonUserDefaultsTest, whenUnreadableContentCannotBeKept_itIsNotOverwrittenUntilItCan) {
    std::filesystem::create_directories(folder);
    writeFile(file, "not json, but somebody's work");
    auto defaults = open();
    {
        const FullDisk full(4);
        defaults.set("a", 1);
        EXPECT_EQ(defaults.number("a"), 1);
    }
    EXPECT_EQ(readFile(file), "not json, but somebody's work");
    EXPECT_THAT(keptFiles(), IsEmpty());
    defaults.set("b", 2);
    EXPECT_EQ(stored(), nlohmann::json({{"a", 1}, {"b", 2}}));
    ASSERT_THAT(keptFiles(), SizeIs(1));
    EXPECT_EQ(readFile(keptFiles().front()), "not json, but somebody's work");
}

TEST_F(JsonUserDefaultsTest, whenTheDiskIsFull_theOldFileStaysTheNewValueHoldsAndOneLineSaysSo) {
    auto defaults = open();
    defaults.set("a", "old");
    {
        const FullDisk full(4);
        defaults.set("a", "new");
    }
    EXPECT_EQ(stored(), nlohmann::json({{"a", "old"}}));
    EXPECT_EQ(defaults.string("a"), "new");
    ASSERT_THAT(log.printed(), SizeIs(1));
    EXPECT_THAT(log.printed().front(), StartsWith("[TovikVoice] Failed to save the setting a: "));
    EXPECT_THAT(log.printed().front(), HasSubstr("File too large"));
    EXPECT_THAT(namesIn(folder), ElementsAre("defaults.json", "defaults.json.lock"));
}

TEST_F(JsonUserDefaultsTest, whenAWriteFailed_theNextOneThatWorksSavesItsChangeToo) {
    auto defaults = open();
    defaults.set("a", "old");
    defaults.set("gone", true);
    {
        const FullDisk full(4);
        defaults.set("a", "new");
        defaults.remove("gone");
    }
    EXPECT_FALSE(defaults.value("gone"));
    defaults.set("b", 1);
    EXPECT_EQ(stored(), nlohmann::json({{"a", "new"}, {"b", 1}}));
}

TEST_F(JsonUserDefaultsTest, whenAWriteFailed_saysSoUntilItIsMadeUpFor) {
    int unsaved = 0;
    JsonUserDefaults defaults(file, log, [&unsaved] { ++unsaved; });
    defaults.set("a", "old");
    EXPECT_TRUE(defaults.isSaved("a"));
    {
        const FullDisk full(4);
        defaults.set("a", "new");
        EXPECT_FALSE(defaults.isSaved("a"));
        EXPECT_TRUE(defaults.isSaved("b"));
        EXPECT_EQ(unsaved, 1);
        EXPECT_FALSE(defaults.saveAgain());
        EXPECT_THAT(log.printed(), SizeIs(1));
    }
    EXPECT_TRUE(defaults.saveAgain());
    EXPECT_TRUE(defaults.isSaved("a"));
    EXPECT_EQ(stored(), nlohmann::json({{"a", "new"}}));
    EXPECT_EQ(log.printed().back(), "[TovikVoice] The settings that could not be saved are saved now");
    EXPECT_TRUE(defaults.saveAgain());
    EXPECT_THAT(log.printed(), SizeIs(2));
}

TEST_F(JsonUserDefaultsTest, atTheEnd_savesWhatCouldNotBeSaved) {
    {
        auto defaults = open();
        const FullDisk full(4);
        defaults.set("a", "value");
    }
    EXPECT_EQ(stored(), nlohmann::json({{"a", "value"}}));
}

TEST_F(JsonUserDefaultsTest, whenAnotherProcessIsWritingAtTheEnd_waitsForIt) {
    std::thread other;
    {
        auto defaults = open();
        {
            const FullDisk full(4);
            defaults.set("a", "value");
        }
        UnixFd lock(::open((file + ".lock").c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_EQ(::flock(lock.get(), LOCK_EX), 0);
        UnixFd openings(::inotify_init1(IN_CLOEXEC));
        ASSERT_GE(::inotify_add_watch(openings.get(), (file + ".lock").c_str(), IN_OPEN), 0);
        // Has finished writing right after the lock was asked for.
        other = std::thread([held = std::move(lock), asked = std::move(openings)] {
            std::array<char, sizeof(inotify_event) + NAME_MAX + 1> event{};
            (void)!::read(asked.get(), event.data(), event.size());
        });
    }
    other.join();
    EXPECT_EQ(stored(), nlohmann::json({{"a", "value"}}));
}

TEST_F(JsonUserDefaultsTest, whenThatFailsAtTheEndToo_saysWhatIsLost) {
    const FullDisk full(4);
    {
        auto defaults = open();
        defaults.set("a", "value");
    }
    EXPECT_FALSE(std::filesystem::exists(file));
    ASSERT_THAT(log.printed(), SizeIs(2));
    EXPECT_THAT(log.printed().back(), HasSubstr("could not be saved in " + file + " are lost"));
}

TEST_F(JsonUserDefaultsTest, whenAnotherProcessChangesAKeyAfterAFailedWrite_theirEditHolds) {
    auto defaults = open();
    defaults.set("a", "old");
    {
        const FullDisk full(4);
        defaults.set("a", "mine");
        defaults.set("b", "mine");
    }
    open().set("a", "theirs");
    EXPECT_EQ(defaults.string("a"), "theirs");
    EXPECT_EQ(defaults.string("b"), "mine");
    defaults.set("c", 1);
    EXPECT_EQ(stored(), nlohmann::json({{"a", "theirs"}, {"b", "mine"}, {"c", 1}}));
}

TEST_F(JsonUserDefaultsTest, whenTheFolderCannotBeMade_theValueHoldsAndTheLineNamesTheReason) {
    writeFile(home / ".config", "a file where the folder should be");
    auto defaults = open();
    defaults.set("a", 1);
    EXPECT_EQ(defaults.number("a"), 1);
    ASSERT_FALSE(log.printed().empty());
    EXPECT_THAT(log.printed().back(), HasSubstr("Failed to save the setting a: "));
}

TEST_F(JsonUserDefaultsTest, whenSomethingElseThanAFileLiesThere_itIsLeftAloneAndNothingHangs) {
    std::filesystem::create_directories(folder);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    auto defaults = open();
    EXPECT_FALSE(defaults.value("a"));
    defaults.set("a", 1);
    EXPECT_EQ(defaults.number("a"), 1);
    EXPECT_TRUE(std::filesystem::is_fifo(file));
}

TEST_F(JsonUserDefaultsTest, whenAnotherProcessHoldsTheLockForever_theWriteGivesUpAndSaysSo) {
    auto defaults = open();
    defaults.set("a", 1);
    const UnixFd holder(::open((file + ".lock").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::flock(holder.get(), LOCK_EX), 0);
    defaults.set("a", 2);
    EXPECT_EQ(defaults.number("a"), 2);
    EXPECT_EQ(stored(), nlohmann::json({{"a", 1}}));
    ASSERT_THAT(log.printed(), SizeIs(1));
    EXPECT_THAT(log.printed().front(), HasSubstr("Cannot lock"));
}

TEST_F(JsonUserDefaultsTest, whenTheFileIsALink_theFileItLeadsToIsReplacedAndTheLinkStays) {
    std::filesystem::create_directories(folder);
    std::filesystem::create_directories(home / "dotfiles");
    writeFile(home / "dotfiles/tovik.json", R"({"a": 1})");
    std::filesystem::create_symlink("../../dotfiles/tovik.json", file);
    auto defaults = open();
    EXPECT_EQ(defaults.number("a"), 1);
    defaults.set("a", 2);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(readFile(home / "dotfiles/tovik.json"), "{\n  \"a\": 2\n}\n");
}

TEST_F(JsonUserDefaultsTest, whenTheLinkDangles_aWriteCreatesTheFile) {
    std::filesystem::create_directories(folder);
    std::filesystem::create_symlink(home / "later.json", file);
    auto defaults = open();
    defaults.set("a", 2);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(readFile(home / "later.json"), "{\n  \"a\": 2\n}\n");
}

TEST_F(JsonUserDefaultsTest, whenTheLinkLeadsInACircle_nothingIsLostAndTheLineSaysSo) {
    std::filesystem::create_directories(folder);
    std::filesystem::create_symlink("defaults.json", file);
    auto defaults = open();
    defaults.set("a", 2);
    EXPECT_EQ(defaults.number("a"), 2);
    EXPECT_FALSE(log.printed().empty());
    EXPECT_TRUE(std::filesystem::is_symlink(file));
}

TEST_F(JsonUserDefaultsTest, whenTextHoldsBytesThatAreNoUtf8_theyBecomeReplacementCharacters) {
    auto defaults = open();
    defaults.set("a", std::string("x\xff") + "y");
    EXPECT_EQ(defaults.string("a"), "x\xEF\xBF\xBDy");
    EXPECT_EQ(open().string("a"), "x\xEF\xBF\xBDy");
}

TEST_F(JsonUserDefaultsTest, whenManyThreadsReadDuringWrites_eachReadGivesAWholeValue) {
    auto defaults = open();
    defaults.set("text", std::string(1000, 'a'));
    std::atomic<bool> isDone = false;
    std::atomic<int> torn = 0;
    std::vector<std::thread> readers;
    readers.reserve(3);
    for (int n = 0; n < 3; ++n) {
        readers.emplace_back([&] {
            while (!isDone) {
                const auto text = defaults.string("text");
                torn += !text || text->size() != 1000 ||
                        text->find_first_not_of(text->front()) != std::string::npos;
            }
        });
    }
    for (int n = 0; n < 30; ++n) {
        defaults.set("text", std::string(1000, static_cast<char>('a' + n % 26)));
    }
    isDone = true;
    for (auto& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(torn, 0);
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(JsonUserDefaultsTest, whenTwoProcessesWriteAtOnce_noChangeOfEitherIsLost) {
    auto mine = open();
    auto theirs = open();
    std::thread other([&] {
        for (int n = 0; n < 25; ++n) {
            theirs.set("theirs" + std::to_string(n), n);
        }
    });
    for (int n = 0; n < 25; ++n) {
        mine.set("mine" + std::to_string(n), n);
    }
    other.join();
    EXPECT_EQ(stored().size(), 50u);
}

TEST_F(JsonUserDefaultsTest, whenTheHistoryHasAHundredThousandElements_otherKeysAreReadWithoutCopyingIt) {
    std::filesystem::create_directories(folder);
    auto history = nlohmann::json::array();
    for (int n = 0; n < 100000; ++n) {
        history.push_back(
            {{"text", "transcript number " + std::to_string(n)}, {"createdAt", 1740837909.25 + n}});
    }
    writeFile(file, nlohmann::json({{"transcription.history", history}, {"a", true}}).dump());
    auto defaults = open();
    EXPECT_EQ(defaults.value("transcription.history"), history);
    const auto before = allocationsOfThisThread();
    for (int n = 0; n < 1000; ++n) {
        ASSERT_EQ(defaults.boolean("a"), true);
    }
    // A single copy of the history allocates more often than all these reads.
    EXPECT_LT(allocationsOfThisThread() - before, 100000);
    defaults.set("a", false);
    EXPECT_EQ(open().value("transcription.history"), history);
}

} // namespace
} // namespace tovik::test
