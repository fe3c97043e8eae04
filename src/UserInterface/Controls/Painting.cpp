// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Painting.h"

#include <QFile>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmapCache>
#include <QRectF>
#include <QSvgRenderer>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

// Drawings inside a static library are only found after this, and the macro wants the global namespace.
static void ensureDrawingsAreLoaded() {
    static const bool loaded = [] {
        Q_INIT_RESOURCE(tovik_drawings);
        return true;
    }();
    static_cast<void>(loaded);
}

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
    fillRounded(painter, shape, Qt::black, cornerRadius);
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

double sigmaOf(const theme::Shadow& shadow) {
    return shadow.blurRadius * kShadowSigmaPerRadius;
}

double spreadOf(const theme::Shadow& shadow) {
    return std::ceil(sigmaOf(shadow) * 3);
}

/// Each corner piece takes in all that a corner influences.
double cornerOf(const theme::Shadow& shadow, double cornerRadius) {
    return 2 * spreadOf(shadow) + std::ceil(cornerRadius);
}

/// The smallest shadow of this kind, from the cache after the first time.
QPixmap shadowPixmap(double cornerRadius, const theme::Shadow& shadow, double ratio) {
    const QString key = QStringLiteral("tovik-shadow/%1/%2/%3/%4")
                            .arg(shadow.blurRadius)
                            .arg(shadow.opacity)
                            .arg(cornerRadius)
                            .arg(ratio);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        const double spread = spreadOf(shadow) * ratio;
        const int pixels = static_cast<int>(std::lround((2 * cornerOf(shadow, cornerRadius) + 2) * ratio));
        const QRectF inner(spread, spread, pixels - 2 * spread, pixels - 2 * spread);
        pixmap = QPixmap::fromImage(
            smallestShadow(pixels, inner, cornerRadius * ratio, sigmaOf(shadow) * ratio, shadow.opacity));
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

} // namespace

void fillRounded(QPainter& painter, const QRectF& place, const QColor& fill, double cornerRadius) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(place, cornerRadius, cornerRadius);
}

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
    return static_cast<int>(std::ceil(sigmaOf(shadow) * 3 + shadow.offsetY));
}

void paintShadow(QPainter& painter, const QRectF& shape, double cornerRadius, const theme::Shadow& shadow) {
    const double ratio = painter.device()->devicePixelRatioF();
    const double spread = spreadOf(shadow);
    const double corner = cornerOf(shadow, cornerRadius);
    const QPixmap pixmap = shadowPixmap(cornerRadius, shadow, ratio);

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

namespace symbols {

namespace {

constexpr int kIconEdges[] = {16, 18, 20, 22, 24, 32, 36, 44, 48, 64, 96, 128, 256};

QString pathOf(const QString& name) {
    ensureDrawingsAreLoaded();
    return QStringLiteral(":/tovik/symbols/%1.svg").arg(name);
}

QString applicationIconPath() {
    ensureDrawingsAreLoaded();
    return QStringLiteral(":/tovik/AppIcon.svg");
}

QImage drawn(const QString& path, const QSize& pixels) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (!QFile::exists(path)) {
        return image;
    }
    QSvgRenderer renderer(path);
    if (!renderer.isValid() || pixels.isEmpty()) {
        return image;
    }
    const double edge = std::min(pixels.width(), pixels.height());
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF((pixels.width() - edge) / 2, (pixels.height() - edge) / 2, edge, edge));
    return image;
}

QSize pixelsFor(const QSizeF& size, double ratio) {
    return {static_cast<int>(std::lround(size.width() * ratio)),
            static_cast<int>(std::lround(size.height() * ratio))};
}

} // namespace

bool exists(const QString& name) {
    return QFile::exists(pathOf(name));
}

QPixmap pixmap(const QString& name, const QSizeF& size, const QColor& tint, double devicePixelRatio) {
    const QSize pixels = pixelsFor(size, devicePixelRatio);
    const QString key = QStringLiteral("tovik-symbol/%1/%2x%3/%4")
                            .arg(name)
                            .arg(pixels.width())
                            .arg(pixels.height())
                            .arg(tint.rgba(), 0, 16);
    QPixmap result;
    if (!QPixmapCache::find(key, &result)) {
        QImage image = drawn(pathOf(name), pixels);
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), tint);
        painter.end();
        result = QPixmap::fromImage(image);
        QPixmapCache::insert(key, result);
    }
    result.setDevicePixelRatio(devicePixelRatio);
    return result;
}

void paint(QPainter& painter, const QString& name, const QRectF& target, const QColor& tint) {
    painter.drawPixmap(target.topLeft(),
                       pixmap(name, target.size(), tint, painter.device()->devicePixelRatioF()));
}

QIcon icon(const QString& name, const QColor& tint) {
    QIcon result;
    for (const int edge : kIconEdges) {
        result.addPixmap(pixmap(name, QSizeF(edge, edge), tint, 1));
    }
    return result;
}

QPixmap applicationIconPixmap(double edge, double devicePixelRatio) {
    QPixmap result =
        QPixmap::fromImage(drawn(applicationIconPath(), pixelsFor({edge, edge}, devicePixelRatio)));
    result.setDevicePixelRatio(devicePixelRatio);
    return result;
}

QIcon applicationIcon() {
    QIcon result;
    for (const int edge : kIconEdges) {
        result.addPixmap(applicationIconPixmap(edge, 1));
    }
    return result;
}

} // namespace symbols

SymbolView::SymbolView(const QString& symbolName, const QSize& symbolSize, const QColor& tint,
                       QWidget* parent)
    : QWidget(parent),
      symbolName_(symbolName),
      symbolSize_(symbolSize),
      tint_(tint) {
    setFixedSize(symbolSize);
}

void SymbolView::setTint(const QColor& tint) {
    tint_ = tint;
    update();
}

void SymbolView::setGround(const QColor& color, double cornerRadius) {
    ground_ = color;
    groundRadius_ = cornerRadius;
    update();
}

void SymbolView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (ground_.alpha() > 0) {
        fillRounded(painter, rect(), ground_, groundRadius_);
    }
    QRectF target(QPointF(0, 0), QSizeF(symbolSize_));
    target.moveCenter(QRectF(rect()).center());
    symbols::paint(painter, symbolName_, target, tint_);
}

} // namespace tovik
