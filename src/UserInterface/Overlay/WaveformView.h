// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QWidget>

#include <vector>

namespace tovik {

/// The last 40 levels of the microphone as bars, newest on the right. Redrawn once for a level, at the most.
class WaveformView : public QWidget {
    Q_OBJECT

public:
    static constexpr int sampleCount = 40;

    explicit WaveformView(QWidget* parent = nullptr);

    [[nodiscard]] float level() const { return level_; }
    /// Levels outside 0...1 count as the nearest within.
    void setLevel(float level);

    /// Oldest first.
    [[nodiscard]] const std::vector<double>& samples() const { return samples_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    float level_ = 0;
    std::vector<double> samples_;
};

/// A line of text whose digits are all equally wide, so that a running time does not tremble.
class TabularDigitsLabel : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

    /// Where each character of the text begins, from the left, and at the last where the text ends.
    [[nodiscard]] QList<double> characterPositions() const;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tovik
