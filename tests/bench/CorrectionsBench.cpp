// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// What the corrections editor costs with many corrections, painting included.
#include "UserInterface/Window/Accordion.h"
#include "UserInterface/Corrections/CorrectionsListView.h"
#include "UserInterface/Corrections/CorrectionsSection.h"
#include "UserInterface/Window/MainWindowView.h"
#include "ui/WindowStage.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

namespace tovik::test {
namespace {

/// The main window with this many corrections, every third of them a variation of the one before.
class Editor {
public:
    explicit Editor(std::int64_t count) {
        TranscriptionDictionary::Mapping mapping;
        for (std::int64_t number = 0; number < count; ++number) {
            const auto group = number - (number % 3 == 2 ? 1 : 0);
            mapping.emplace("what is heard " + std::to_string(number),
                            "What is meant " + std::to_string(group));
        }
        stage.dictionary.setDictionary(mapping);
        stage.build();
        paint();
    }

    static void paint() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void setOpen(bool open, bool animated = false) {
        stage.controller->accordion().setAccordion(QStringLiteral("Corrections"), open, animated);
    }
    [[nodiscard]] CorrectionsSection& section() { return stage.controller->corrections(); }

    WindowStage stage;
};

void open(benchmark::State& state) {
    Editor editor(state.range(0));
    for (auto unused : state) {
        editor.setOpen(true);
        Editor::paint();
        state.PauseTiming();
        editor.setOpen(false);
        Editor::paint();
        state.ResumeTiming();
    }
}
BENCHMARK(open)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

/// One of the twelve pictures of the animation that opens the section.
void openingFrame(benchmark::State& state) {
    Editor editor(state.range(0));
    for (auto unused : state) {
        state.PauseTiming();
        editor.setOpen(false);
        editor.setOpen(true, true);
        editor.stage.time.advance(Seconds{0.1});
        Editor::paint();
        state.ResumeTiming();
        editor.stage.time.advance(Seconds{1.0 / 60});
        Editor::paint();
    }
}
BENCHMARK(openingFrame)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

void reload(benchmark::State& state) {
    Editor editor(state.range(0));
    editor.setOpen(true);
    Editor::paint();
    for (auto unused : state) {
        editor.section().reloadCorrectionsUI();
        Editor::paint();
    }
}
BENCHMARK(reload)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

void addAndDelete(benchmark::State& state) {
    Editor editor(state.range(0));
    editor.setOpen(true);
    Editor::paint();
    for (auto unused : state) {
        editor.section().editor().addCorrectionRow();
        Editor::paint();
        editor.section().editor().removeHeardPhrase("new phrase");
        Editor::paint();
    }
}
BENCHMARK(addAndDelete)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

/// One notch of the wheel.
void scroll(benchmark::State& state) {
    Editor editor(state.range(0));
    editor.setOpen(true);
    Editor::paint();
    auto& view = editor.stage.controller->view();
    int offset = 0;
    for (auto unused : state) {
        offset += 60;
        view.setScrollOffset(offset);
        Editor::paint();
        if (view.scrollOffset() < offset) {
            offset = 0;
        }
    }
}
BENCHMARK(scroll)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace tovik::test

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
