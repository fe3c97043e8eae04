// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// What a key press in the search field of the transcript history costs: 100 transcripts of 2,000 characters.
#include "Speech/History/TranscriptHistoryBrowser.h"
#include "UserInterface/Window/MainWindowLayout.h"
#include "UserInterface/History/TranscriptHistorySection.h"
#include "ui/StatusMenuStage.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <random>

namespace tovik::test {
namespace {

constexpr std::size_t kCharacters = 2000;

/// The same texts in every run.
std::string transcript(std::mt19937& random) {
    static const std::vector<std::string> words{"meeting", "tomorrow", "naïve",  "Straße", "forward",
                                                "ten",     "meters",   "Thermo", "the",    "a"};
    std::string text;
    std::size_t characters = 0;
    while (characters < kCharacters) {
        const auto& word = words[random() % words.size()];
        text += word + " ";
        characters += word.size() + 1;
    }
    return text;
}

std::vector<TranscriptHistoryEntry> entries() {
    std::mt19937 random(1);
    constexpr int kCount = 100;
    std::vector<TranscriptHistoryEntry> made;
    made.reserve(kCount);
    for (int number = 0; number < kCount; ++number) {
        made.push_back({transcript(random), Date{std::chrono::seconds(number)}});
    }
    return made;
}

void filterTextsNeverSeen(benchmark::State& state) {
    const auto texts = entries();
    for (auto unused : state) {
        TranscriptHistoryFilter filter;
        benchmark::DoNotOptimize(filter.apply(texts, "thermos"));
    }
}
BENCHMARK(filterTextsNeverSeen)->Unit(benchmark::kMicrosecond);

void filterAtEachKey(benchmark::State& state) {
    const auto texts = entries();
    TranscriptHistoryFilter filter;
    const std::string typed = "thermos in the fridge";
    std::size_t length = 0;
    for (auto unused : state) {
        length = length % typed.size() + 1;
        benchmark::DoNotOptimize(filter.apply(texts, std::string_view(typed).substr(0, length)));
    }
}
BENCHMARK(filterAtEachKey)->Unit(benchmark::kMicrosecond);

/// The real window with its list, and the real status menu that is made anew each time.
class Window {
public:
    Window() {
        const auto texts = entries();
        for (auto entry = texts.rbegin(); entry != texts.rend(); ++entry) {
            stage_.history.add(entry->text);
        }
        stage_.build();
        stage_.controller->accordion().setAccordion(QString::fromLatin1(kHistorySection), true, false);
        QCoreApplication::processEvents();
        search_ = &stage_.controller->window()
                       .findChild<TranscriptHistorySection*>()
                       ->historySearchField()
                       .lineEdit();
    }

    /// Until everything that has changed is painted.
    void press(int key, const QString& text) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(search_, &event);
        QCoreApplication::processEvents();
    }

private:
    WindowStage stage_;
    StatusMenuStage menu_{stage_};
    QLineEdit* search_ = nullptr;
};

void keyPressInTheWindow(benchmark::State& state) {
    Window window;
    const QString typed = QStringLiteral("thermo the");
    qsizetype length = 0;
    for (auto unused : state) {
        if (length == typed.size()) {
            state.PauseTiming();
            window.press(Qt::Key_Escape, {});
            length = 0;
            state.ResumeTiming();
        }
        const QChar letter = typed[length++];
        window.press(letter.toUpper().unicode(), letter);
    }
}
BENCHMARK(keyPressInTheWindow)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace
} // namespace tovik::test

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
