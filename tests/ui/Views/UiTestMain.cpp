// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include <QApplication>

#include <gmock/gmock.h>

#include <cstdlib>

namespace {

QtMessageHandler standardHandler = nullptr;

/// The screenless platform says over and over what windows cannot do on it.
void withoutPlatformChatter(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!text.startsWith(QStringLiteral("This plugin does not support"))) {
        standardHandler(type, context, text);
    }
}

} // namespace

/// Views need an application; none of these tests needs a screen.
int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // The look is the same on every machine: as many pixels a point as the test was started for.
    const char* const scale = std::getenv("TOVIK_TEST_SCALE");
    setenv("QT_SCALE_FACTOR", scale ? scale : "1", 1);
    standardHandler = qInstallMessageHandler(withoutPlatformChatter);
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
