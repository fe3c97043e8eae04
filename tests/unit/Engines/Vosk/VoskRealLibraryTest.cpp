// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The real library, without a model: only where tools/fetch-vosk has brought it.
#include "Engines/Vosk/VoskDecoder.h"
#include "Engines/Vosk/VoskService.h"
#include "support/RealVosk.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace tovik::test {
namespace {

using testing::HasSubstr;

std::string realLibraryFile() {
    return realVoskFolder() + "/libvosk.so";
}

std::unique_ptr<const VoskLibrary> realLibrary() {
    auto loaded = VoskLibrary::load({realLibraryFile()});
    return loaded ? std::move(loaded.value()) : nullptr;
}

TEST(VoskRealLibrary, hasEveryFunctionThatIsUsed) {
    const auto library = realLibrary();
    ASSERT_NE(library, nullptr);
    EXPECT_NE(library->setMaxAlternatives, nullptr);
}

TEST(VoskRealLibrary, whenThereIsNoModel_isAnErrorAndNoEndOfTheProgram) {
    const auto library = realLibrary();
    ASSERT_NE(library, nullptr);
    const auto loaded = VoskDecoder::load({realLibraryFile()}, "/nowhere/vosk-model");
    ASSERT_FALSE(loaded.ok());
    EXPECT_THAT(loaded.error().description, HasSubstr("is not usable: the library refuses it"));
    EXPECT_EQ(library->newModel("/nowhere/vosk-model"), nullptr);
}

TEST(VoskRealLibrary, whenTheModelIsNonsense_isAnErrorAndNoEndOfTheProgram) {
    const TemporaryFolder folder;
    const std::vector<std::string> contents{"nonsense", std::string(5000, '\0'), std::string("\0B<Tra", 6)};
    for (const auto& content : contents) {
        // Enough that the library reads the file.
        for (const auto* part : {"am", "conf", "graph"}) {
            std::filesystem::create_directories(folder / part);
        }
        writeFile(folder / "conf/mfcc.conf", "--sample-frequency=16000\n");
        writeFile(folder / "conf/model.conf", "--max-active=3000\n");
        writeFile(folder / "am/final.mdl", content);
        const auto loaded = VoskDecoder::load({realLibraryFile()}, folder.path());
        ASSERT_FALSE(loaded.ok());
        EXPECT_THAT(loaded.error().description, HasSubstr("is not usable"));
    }
}

} // namespace
} // namespace tovik::test
