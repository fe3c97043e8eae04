// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// What the files of a folder may include, beside their own folder. "." are the files at the top of src/.
const std::map<std::string, std::set<std::string>>& allowedFolders() {
    static const std::set<std::string> kLogic{"Platform", "Speech", "Audio", "Permissions"};
    static const std::map<std::string, std::set<std::string>> kAllowed{
        {"Platform", {}},
        {"Speech", {"Platform"}},
        {"Audio", {"Platform", "Speech"}},
        {"Permissions", {"Platform"}},
        {"Session", kLogic},
        {"UserInterface", {"Platform", "Speech", "Audio", "Permissions", "Session", "WaveformOverlay"}},
        // Engines know no desktop and no window.
        {"Engines", {"Platform", "Speech", "Audio"}},
        // Every mechanism stands on the logic, and those that keep files on how files are kept.
        {"Linux", {"Platform", "Speech", "Audio", "Permissions", "Session", "Linux/Storage"}},
    };
    return kAllowed;
}

/// The folders of tovik_core, and the files at the top that belong to it.
bool isCore(const fs::path& file) {
    static const std::set<std::string> kFolders{"Platform", "Speech", "Audio", "Permissions", "Session"};
    return kFolders.contains(file.begin()->string()) || file.stem() == "AppDelegate";
}

/// The name by which a file's layer is known: its first folder, and for Linux the mechanism's folder too.
std::string layerOf(const fs::path& file) {
    if (!file.has_parent_path()) {
        return file.stem().string();
    }
    const std::string first = file.begin()->string();
    const bool isMechanism = first == "Linux" && std::distance(file.begin(), file.end()) > 2;
    return isMechanism ? (fs::path(first) / *std::next(file.begin())).string() : first;
}

bool mayInclude(const fs::path& file, const fs::path& included) {
    const std::string from = layerOf(file);
    const std::string to = layerOf(included);
    if (from == to || from == "main" || from == "EngineMain") {
        return true;
    }
    if (from == "AppDelegate") {
        return isCore(included);
    }
    if (from == "WaveformOverlay") {
        return to == "UserInterface" || allowedFolders().at("UserInterface").contains(to);
    }
    if (from == "Linux") {
        // LinuxPlatform joins the parts.
        return to.starts_with("Linux/") || to == "Engines" || to == "UserInterface" || isCore(included);
    }
    const auto allowed = allowedFolders().find(from.starts_with("Linux/") ? "Linux" : from);
    return allowed != allowedFolders().end() && allowed->second.contains(to);
}

/// Qt's headers have no folder or one that begins with Qt, and no suffix: <QWidget>, <QtCore/QObject>.
bool isQtHeader(const std::string& header) {
    static const std::regex kQt(R"(^(Qt[A-Za-z]*/.*|Q[A-Za-z]+|q[a-z]+\.h)$)");
    return std::regex_match(header, kQt);
}

std::vector<fs::path> sourcesBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto suffix = entry.path().extension();
        if (entry.is_regular_file() && (suffix == ".h" || suffix == ".cpp")) {
            files.push_back(fs::relative(entry.path(), folder));
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// Every include of a source tree that goes the wrong way, as "file includes header".
std::vector<std::string> wrongIncludes(const fs::path& root) {
    static const std::regex kInclude(R"re(^\s*#\s*include\s*(["<])([^">]+)[">].*)re");
    std::vector<std::string> wrong;
    for (const auto& file : sourcesBelow(root)) {
        std::ifstream stream(root / file);
        for (std::string line; std::getline(stream, line);) {
            std::smatch match;
            if (!std::regex_match(line, match, kInclude)) {
                continue;
            }
            const std::string header = match[2];
            // What the meta-object compiler makes of the file itself.
            const bool isOurs = match[1] == "\"" && !header.ends_with(".moc");
            if ((isOurs && !mayInclude(file, header)) || (isQtHeader(header) && isCore(file))) {
                wrong.push_back(file.string() + " includes " + header);
            }
        }
    }
    return wrong;
}

/// A small source tree in a folder of its own, removed at the end.
class SourceTree {
public:
    SourceTree() {
        std::string pattern = (fs::temp_directory_path() / "tovik-includes-XXXXXX").string();
        root_ = mkdtemp(pattern.data());
    }
    ~SourceTree() { fs::remove_all(root_); }
    SourceTree(const SourceTree&) = delete;
    SourceTree& operator=(const SourceTree&) = delete;

    void add(const fs::path& file, const std::string& line) const {
        fs::create_directories((root_ / file).parent_path());
        std::ofstream(root_ / file) << line << '\n';
    }
    const fs::path& root() const { return root_; }

private:
    fs::path root_;
};

TEST(IncludeDirection, ofThisSourceTree_isDownwardsOnly) {
    EXPECT_THAT(sourcesBelow(TOVIK_SOURCE_FOLDER), testing::Contains(fs::path("Platform/MainQueue.h")));
    EXPECT_THAT(wrongIncludes(TOVIK_SOURCE_FOLDER), IsEmpty());
}

TEST(IncludeDirection, whenALowerLayerIncludesAHigherOne_isReported) {
    const SourceTree tree;
    tree.add("Platform/MainQueue.h", "#include \"Session/PushToTalk.h\"");
    tree.add("Speech/FillerWords.cpp", "#include \"Platform/MainQueue.h\"");
    tree.add("Session/PushToTalk.cpp", "#include \"AppDelegate.h\"");
    EXPECT_THAT(wrongIncludes(tree.root()), ElementsAre("Platform/MainQueue.h includes Session/PushToTalk.h",
                                                        "Session/PushToTalk.cpp includes AppDelegate.h"));
}

TEST(IncludeDirection, whenTheLogicIncludesAMechanismOrQt_isReported) {
    const SourceTree tree;
    tree.add("AppDelegate.cpp", "#include \"Linux/X11/X11KeyMonitor.h\"");
    tree.add("Audio/Recorder.h", "#include <QString>");
    tree.add("Session/DebugLog.cpp", "#include <QtCore/qstring.h>");
    tree.add("UserInterface/Theme.h", "#include <QColor>");
    EXPECT_THAT(
        wrongIncludes(tree.root()),
        ElementsAre(HasSubstr("AppDelegate.cpp"), HasSubstr("Recorder.h"), HasSubstr("DebugLog.cpp")));
}

TEST(IncludeDirection, whenOneMechanismIncludesAnother_isReported) {
    const SourceTree tree;
    tree.add("Linux/X11/X11Workspace.cpp", "#include \"Linux/Desktop/QtAlert.h\"");
    tree.add("Linux/X11/X11KeyMonitor.cpp", "#include \"Linux/X11/X11Connection.h\"");
    tree.add("Linux/LinuxPlatform.cpp", "#include \"Linux/X11/X11Workspace.h\"");
    EXPECT_THAT(wrongIncludes(tree.root()),
                ElementsAre(HasSubstr("X11Workspace.cpp includes Linux/Desktop")));
}

TEST(SourceFiles, ofThisProject_nameTheirAuthorsAndLicence) {
    const fs::path project = fs::path(TOVIK_SOURCE_FOLDER).parent_path();
    std::vector<std::string> silent;
    for (const auto* folder : {"src", "tests", "tools"}) {
        for (const auto& file : sourcesBelow(project / folder)) {
            std::ifstream stream(project / folder / file);
            std::string authors;
            std::string licence;
            std::getline(stream, authors);
            std::getline(stream, licence);
            if (authors != "// SPDX-FileCopyrightText: 2026 The Tovik Record authors" ||
                licence != "// SPDX-License-Identifier: MIT") {
                silent.push_back((folder / file).string());
            }
        }
    }
    EXPECT_THAT(silent, IsEmpty());
}

} // namespace
