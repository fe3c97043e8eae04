// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

namespace tovik {

/// A colour by its parts, each 0...1.
struct Rgba {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    [[nodiscard]] static constexpr Rgba white(double brightness, double alpha = 1) {
        return {brightness, brightness, brightness, alpha};
    }
    [[nodiscard]] constexpr Rgba withAlpha(double newAlpha) const { return {red, green, blue, newAlpha}; }

    bool operator==(const Rgba&) const = default;
};

/// The colour that shows when one lies on an opaque other.
[[nodiscard]] Rgba blended(const Rgba& over, const Rgba& opaque);

/// How well one opaque colour can be told from another, 1...21, after the rule for readable text on the web.
[[nodiscard]] double contrastRatio(const Rgba& one, const Rgba& other);

/// What text needs to be read well.
inline constexpr double kReadableContrast = 4.5;

/// The first colour where it can be read on the background, else black or white, whichever reads better.
[[nodiscard]] Rgba readableOn(const Rgba& background, const Rgba& preferred);

} // namespace tovik
