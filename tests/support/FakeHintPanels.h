// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/HintPanels.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// Remembers every panel that was made and what became of it. A fade-out ends when the test says so.
class FakeHintPanels : public HintPanels {
public:
    struct Panel {
        HintDescription description;
        std::vector<Seconds> fadeIns;
        std::vector<Seconds> fadeOuts;
        std::function<void()> fadeOutCompletion;
        bool isOnScreen = true;
    };

    [[nodiscard]] std::unique_ptr<HintPanel> makePanel(const HintDescription& description) override {
        panels.push_back(std::make_shared<Panel>(Panel{description, {}, {}, nullptr, true}));
        return std::make_unique<Handle>(panels.back());
    }

    /// The panel's fade-out comes to its end.
    static void finishFadeOut(Panel& panel) {
        if (const auto completion = std::exchange(panel.fadeOutCompletion, nullptr)) {
            completion();
        }
    }

    /// In the order in which they were made, those that are gone included.
    std::vector<std::shared_ptr<Panel>> panels;

private:
    class Handle : public HintPanel {
    public:
        explicit Handle(std::shared_ptr<Panel> panel) : panel_(std::move(panel)) {}
        ~Handle() override { panel_->isOnScreen = false; }

        void fadeIn(Seconds duration) override { panel_->fadeIns.push_back(duration); }
        void fadeOut(Seconds duration, std::function<void()> completion) override {
            panel_->fadeOuts.push_back(duration);
            panel_->fadeOutCompletion = std::move(completion);
        }

    private:
        std::shared_ptr<Panel> panel_;
    };
};

} // namespace tovik::test
