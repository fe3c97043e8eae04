// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Painting.h"

#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QRectF>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace tovik {

namespace {

constexpr double kShadowSigmaPerRadius = 0.5;

using Plane = std::vector<float>;

/// One pass of a moving average over the lines of a square plane; the result is turned, so that the next pass
/// runs along the other axis.
Plane averagedAndTurned(const Plane& plane, int edge, int reach) {
    Plane result(plane.size());
    const float weight = 1.0F / static_cast<float>(2 * reach + 1);
    for (int line = 0; line < edge; ++line) {
        const auto at = [&](int index) {
            return index < 0 || index >= edge ? 0.0F : plane[static_cast<std::size_t>(line) * edge + index];
        };
        float sum = 0;
        for (int index = -reach; index <= reach; ++index) {
            sum += at(index);
        }
        for (int index = 0; index < edge; ++index) {
            result[static_cast<std::size_t>(index) * edge + line] = sum * weight;
            sum += at(index + reach + 1) - at(index - reach);
        }
    }
    return result;
}

/// Three averages come close to the bell curve of this width.
Plane blurred(Plane plane, int edge, double sigma) {
    const int reach = std::max(1, static_cast<int>(std::lround((std::sqrt(4 * sigma * sigma + 1) - 1) / 2)));
    for (int pass = 0; pass < 3; ++pass) {
        plane = averagedAndTurned(averagedAndTurned(plane, edge, reach), edge, reach);
    }
    return plane;
}

/// The shadow of the smallest shape that still has a straight stretch on each side; larger ones stretch it.
QImage smallestShadow(int edge, const QRectF& shape, double cornerRadius, double sigma, double opacity) {
    QImage mask(edge, edge, QImage::Format_Alpha8);
    mask.fill(0);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(shape, cornerRadius, cornerRadius);
    painter.end();

    Plane plane(static_cast<std::size_t>(edge) * edge);
    for (int y = 0; y < edge; ++y) {
        std::copy_n(mask.constScanLine(y), edge, plane.begin() + static_cast<std::ptrdiff_t>(y) * edge);
    }
    plane = blurred(std::move(plane), edge, sigma);

    QImage image(edge, edge, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < edge; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < edge; ++x) {
            const double alpha = plane[static_cast<std::size_t>(y) * edge + x] * opacity;
            line[x] = qRgba(0, 0, 0, static_cast<int>(std::lround(alpha)));
        }
    }
    return image;
}

} // namespace

void paintBox(QPainter& painter, const QRectF& place, const QColor& fill, const QColor& border,
              double borderWidth, double cornerRadius) {
    const double inset = borderWidth / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(border, borderWidth));
    painter.setBrush(fill);
    painter.drawRoundedRect(place.adjusted(inset, inset, -inset, -inset), cornerRadius - inset,
                            cornerRadius - inset);
}

void paintShell(QPainter& painter, const QRectF& place, bool hasFocus) {
    const double width = hasFocus ? theme::kFocusRingWidth : theme::kShellBorderWidth;
    // A thin line is drawn along the middle of the outermost pixels: between them it would be a blur of two.
    const double inset = hasFocus ? width / 2 : 0.5;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(hasFocus ? theme::kAccent : theme::kSeparator, width));
    painter.setBrush(theme::kShellBackground);
    painter.drawRoundedRect(place.adjusted(inset, inset, -inset, -inset), theme::kShellCornerRadius - inset,
                            theme::kShellCornerRadius - inset);
}

void paintFocusRing(QPainter& painter, const QRectF& place, double cornerRadius) {
    constexpr double inset = theme::kFocusRingWidth / 2;
    painter.setPen(QPen(theme::kAccent, theme::kFocusRingWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(place.adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius);
}

int shadowReach(const theme::Shadow& shadow) {
    return static_cast<int>(std::ceil(shadow.blurRadius * kShadowSigmaPerRadius * 3 + shadow.offsetY));
}

void paintShadow(QPainter& painter, const QRectF& shape, double cornerRadius, const theme::Shadow& shadow) {
    const double ratio = painter.device()->devicePixelRatioF();
    const double sigma = shadow.blurRadius * kShadowSigmaPerRadius;
    const double spread = std::ceil(sigma * 3);
    // Each corner piece takes in all that a corner influences.
    const double corner = 2 * spread + std::ceil(cornerRadius);
    const double edge = 2 * corner + 2;

    const QString key = QStringLiteral("tovik-shadow/%1/%2/%3/%4")
                            .arg(shadow.blurRadius)
                            .arg(shadow.opacity)
                            .arg(cornerRadius)
                            .arg(ratio);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        const int pixels = static_cast<int>(std::lround(edge * ratio));
        const QRectF inner(spread * ratio, spread * ratio, pixels - 2 * spread * ratio,
                           pixels - 2 * spread * ratio);
        pixmap = QPixmap::fromImage(
            smallestShadow(pixels, inner, cornerRadius * ratio, sigma * ratio, shadow.opacity));
        QPixmapCache::insert(key, pixmap);
    }

    const QRectF target = shape.adjusted(-spread, -spread, spread, spread).translated(0, shadow.offsetY);
    const double cornerX = std::min(corner, target.width() / 2);
    const double cornerY = std::min(corner, target.height() / 2);
    const std::array<double, 4> toX{target.left(), target.left() + cornerX, target.right() - cornerX,
                                    target.right()};
    const std::array<double, 4> toY{target.top(), target.top() + cornerY, target.bottom() - cornerY,
                                    target.bottom()};
    const double whole = pixmap.width();
    const std::array<double, 4> fromX{0, cornerX * ratio, whole - cornerX * ratio, whole};
    const std::array<double, 4> fromY{0, cornerY * ratio, whole - cornerY * ratio, whole};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const QRectF to(QPointF(toX[column], toY[row]), QPointF(toX[column + 1], toY[row + 1]));
            const QRectF from(QPointF(fromX[column], fromY[row]), QPointF(fromX[column + 1], fromY[row + 1]));
            if (!to.isEmpty()) {
                painter.drawPixmap(to, pixmap, from);
            }
        }
    }
}

} // namespace tovik
