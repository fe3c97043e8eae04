// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Rgba.h"

#include <algorithm>
#include <cmath>

namespace tovik {

namespace {

double linear(double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(const Rgba& color) {
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

} // namespace

Rgba blended(const Rgba& over, const Rgba& opaque) {
    const auto part = [&](double top, double bottom) { return top * over.alpha + bottom * (1 - over.alpha); };
    return {part(over.red, opaque.red), part(over.green, opaque.green), part(over.blue, opaque.blue)};
}

double contrastRatio(const Rgba& one, const Rgba& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

Rgba readableOn(const Rgba& background, const Rgba& preferred) {
    if (contrastRatio(preferred, background) >= kReadableContrast) {
        return preferred;
    }
    constexpr Rgba black = Rgba::white(0);
    constexpr Rgba white = Rgba::white(1);
    return contrastRatio(black, background) >= contrastRatio(white, background) ? black : white;
}

} // namespace tovik
