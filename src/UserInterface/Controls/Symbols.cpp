// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Symbols.h"

#include <QFile>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmapCache>
#include <QRectF>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

// Drawings inside a static library are only found after this, and the macro wants the global namespace.
static void ensureDrawingsAreLoaded() {
    static const bool loaded = [] {
        Q_INIT_RESOURCE(tovik_drawings);
        return true;
    }();
    static_cast<void>(loaded);
}

namespace tovik {

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
    painter.setRenderHint(QPainter::Antialiasing);
    if (ground_.alpha() > 0) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground_);
        painter.drawRoundedRect(rect(), groundRadius_, groundRadius_);
    }
    QRectF target(QPointF(0, 0), QSizeF(symbolSize_));
    target.moveCenter(QRectF(rect()).center());
    symbols::paint(painter, symbolName_, target, tint_);
}

} // namespace tovik
