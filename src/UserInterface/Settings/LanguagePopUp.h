// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

#include <optional>
#include <string>

namespace tovik {

/// A pop-up button with the languages of translation.
class LanguagePopUp : public QComboBox {
    Q_OBJECT

public:
    explicit LanguagePopUp(const QString& name, QWidget* parent = nullptr);

    /// Nothing is selected for an identifier that is not among the languages; it is shown all the same.
    void select(const std::string& identifier);

    /// The name of the selected language, or the identifier that is none of them.
    [[nodiscard]] QString shownLanguage() const;

    /// The selected language; nothing when none is.
    [[nodiscard]] std::optional<std::string> selectedIdentifier() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace tovik
