// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// The program tovik-text itself, as a person runs it.

namespace tovik::test {

namespace {

/// tovik-text while it runs, joined by two pipes.
class Tool {
public:
    Tool(std::vector<std::string> arguments, const std::string& configFolder) {
        std::array<int, 2> input{};
        std::array<int, 2> output{};
        if (pipe(input.data()) != 0 || pipe(output.data()) != 0) {
            std::abort();
        }
        process_ = fork();
        if (process_ == 0) {
            dup2(input[0], STDIN_FILENO);
            dup2(output[1], STDOUT_FILENO);
            for (const auto end : {input[0], input[1], output[0], output[1]}) {
                close(end);
            }
            setenv("XDG_CONFIG_HOME", configFolder.c_str(), 1);
            setenv("LC_ALL", "de_DE.UTF-8", 1);
            arguments.insert(arguments.begin(), TOVIK_TEXT_PROGRAM);
            std::vector<char*> argv;
            for (auto& argument : arguments) {
                argv.push_back(argument.data());
            }
            argv.push_back(nullptr);
            execv(argv[0], argv.data());
            _exit(127);
        }
        close(input[0]);
        close(output[1]);
        toTool_ = input[1];
        fromTool_ = output[0];
    }
    Tool(const Tool&) = delete;
    Tool& operator=(const Tool&) = delete;
    ~Tool() { (void)finished(); }

    void write(const std::string& text) const {
        ASSERT_EQ(::write(toTool_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    /// Waits for a whole line.
    [[nodiscard]] std::string line() const {
        std::string text;
        for (char c = 0; ::read(fromTool_, &c, 1) == 1 && c != '\n';) {
            text += c;
        }
        return text;
    }
    /// Ends its input; what it wrote after that, and its exit code.
    std::pair<std::string, int> finished() {
        std::string rest;
        if (process_ > 0) {
            close(toTool_);
            for (char c = 0; ::read(fromTool_, &c, 1) == 1;) {
                rest += c;
            }
            close(fromTool_);
            int status = 0;
            waitpid(std::exchange(process_, -1), &status, 0);
            exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        return {rest, exitCode_};
    }

private:
    pid_t process_ = -1;
    int toTool_ = -1;
    int fromTool_ = -1;
    int exitCode_ = -1;
};

class TovikText : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "tovik-text-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    [[nodiscard]] std::string settingsFile() const { return folder + "/settings.json"; }
    void store(const std::string& content) const { std::ofstream(settingsFile()) << content; }
    [[nodiscard]] nlohmann::json stored(const std::string& file) const {
        std::ifstream stream(file);
        return nlohmann::json::parse(stream);
    }

    std::string folder;
};

constexpr auto kSettings = R"({"TovikVoiceRemoveFillerWords": true,
    "transcription.customDictionary": {"hello": "$0!"}})";

TEST_F(TovikText, withASettingsFile_cleansEachLineAtOnce) {
    store(kSettings);
    Tool tool({"--settings", settingsFile()}, folder);
    tool.write("um Hello,you owe me twenty five dollars\n");
    EXPECT_EQ(tool.line(), "Hello!, you owe me $25");
    tool.write("\n");
    EXPECT_EQ(tool.line(), "");
    tool.write("two thousand uh twenty");
    EXPECT_EQ(tool.finished(), std::pair(std::string("2.020\n"), 0));
}

TEST_F(TovikText, withoutArguments_goesByTheUsersOwnSettings) {
    std::filesystem::create_directory(folder + "/tovik-record");
    std::ofstream(folder + "/tovik-record/defaults.json") << kSettings;
    Tool tool({}, folder);
    tool.write("um hello\n");
    EXPECT_EQ(tool.finished(), std::pair(std::string("hello!\n"), 0));
}

TEST_F(TovikText, whenNoSettingsAreThere_correctsWithTheSeed) {
    Tool tool({"--settings", settingsFile()}, folder);
    tool.write("bot to bot um\n");
    EXPECT_EQ(tool.finished(), std::pair(std::string("Tovik Record um\n"), 0));
    EXPECT_EQ(stored(settingsFile())["transcription.customDictionary"].size(), 3U);
}

TEST_F(TovikText, whenStoredCorrectionsAreUnusable_keepsThemAside) {
    store(R"({"transcription.customDictionary": {"a": 1}})");
    Tool tool({"--settings", settingsFile()}, folder);
    tool.write("bot to bot a\n");
    EXPECT_EQ(tool.finished(), std::pair(std::string("Tovik Record a\n"), 0));
    EXPECT_EQ(stored(settingsFile())["platform.keptAside.transcription.customDictionary"],
              nlohmann::json::parse(R"([{"a": 1}])"));
}

TEST_F(TovikText, whenAskedForJsonLines_answersEachAtOnceAndTouchesNoSettings) {
    Tool tool({"--jsonl"}, folder);
    tool.write(R"({"op":"format","text":"two thousand twenty","settings":{}})"
               "\n");
    EXPECT_EQ(tool.line(), R"({"text":"2,020"})");
    tool.write("nonsense\n");
    EXPECT_THAT(tool.line(), testing::StartsWith(R"({"error":)"));
    tool.write(R"({"op":"corrections","text":"bot to bot","mapping":{}})"
               "\n");
    EXPECT_EQ(tool.line(), R"({"text":"bot to bot"})");
    EXPECT_EQ(tool.finished().second, 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(TovikText, whenAskedForHelp_explainsItself) {
    Tool tool({"--help"}, folder);
    const auto [text, code] = tool.finished();
    EXPECT_THAT(text, testing::HasSubstr("--settings FILE"));
    EXPECT_THAT(text, testing::HasSubstr("--jsonl"));
    EXPECT_EQ(code, 0);
}

TEST_F(TovikText, whenArgumentsMakeNoSense_fails) {
    EXPECT_EQ(Tool({"--nope"}, folder).finished().second, 2);
    EXPECT_EQ(Tool({"--settings"}, folder).finished().second, 2);
    EXPECT_EQ(Tool({"--jsonl", "--settings", "x"}, folder).finished().second, 2);
}

} // namespace

} // namespace tovik::test
