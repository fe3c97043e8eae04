// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/QtUserInterface.h"

#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Overlay/FloatingPanel.h"
#include "UserInterface/StatusItem/QtStatusItem.h"
#include "UserInterface/Window/MainWindowController.h"
#include "WaveformOverlay.h"

#include <QGuiApplication>
#include <QMenu>
#include <QPalette>

namespace tovik {

namespace {

/// Trays are dark or light as the desktop's palette is.
QIcon drawStatusImage(const StatusImage& image) {
    if (image.kind == StatusImage::Kind::applicationIcon) {
        return symbols::applicationIcon();
    }
    return symbols::icon(QString::fromStdString(image.symbolName),
                         QGuiApplication::palette().windowText().color());
}

} // namespace

QtUserInterface::QtUserInterface(const Clock& clock, MainQueue& queue, const Screens& screens,
                                 Workspace& workspace, SystemLog& log)
    : clock_(clock),
      queue_(queue),
      screens_(screens),
      workspace_(workspace),
      log_(log),
      compositing_(std::make_unique<DesktopCompositing>()) {}

std::unique_ptr<StatusItem> QtUserInterface::makeStatusItem() {
    auto statusItem = std::make_unique<QtStatusItem>(drawStatusImage, log_);
    statusItem_ = statusItem.get();
    return statusItem;
}

std::unique_ptr<RecordingOverlay> QtUserInterface::makeRecordingOverlay() {
    return std::make_unique<WaveformOverlay>(clock_, queue_, screens_, workspace_, *compositing_);
}

std::unique_ptr<HintPanels> QtUserInterface::makeHintPanels() {
    return std::make_unique<QtHintPanels>(clock_, queue_, *compositing_);
}

std::unique_ptr<MainWindowOnScreen> QtUserInterface::makeMainWindow(const MainWindowContents& contents) {
    const auto popUpStatusMenu = [this](const QPoint& corner) {
        if (auto* menu = statusItem_ != nullptr ? statusItem_->menu() : nullptr) {
            menu->popup(corner);
        }
    };
    return std::make_unique<MainWindowController>(
        MainWindowController::Collaborators{clock_, queue_, screens_, workspace_, popUpStatusMenu}, contents);
}

} // namespace tovik
