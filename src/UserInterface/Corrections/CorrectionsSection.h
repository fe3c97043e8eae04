// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Corrections/CorrectionsEditor.h"

#include <QWidget>

#include <functional>
#include <string>

namespace tovik {

class BorderlessButton;
class CorrectionsListView;

/// The corrections editor: captions, the corrections, and a button for a new one.
class CorrectionsSection : public QWidget {
    Q_OBJECT

public:
    /// Dictionary and settings outlive the section.
    CorrectionsSection(TranscriptionDictionary& dictionary, UserDefaults& defaults,
                       std::function<void(const std::string&)> showSavedToast, QWidget* parent = nullptr);

    /// Shows what the dictionary holds now.
    void reloadCorrectionsUI();

    /// Stores what is being typed.
    void endEditing();

    [[nodiscard]] CorrectionsEditor& editor() { return editor_; }
    [[nodiscard]] CorrectionsListView& list() { return *list_; }
    [[nodiscard]] BorderlessButton& addButton() { return *addButton_; }

signals:
    /// There is another number of rows than before.
    void heightChanged();

private:
    [[nodiscard]] QWidget* buildCorrectionsHeaderRow();

    CorrectionsEditor editor_;
    CorrectionsListView* list_;
    BorderlessButton* addButton_;
};

} // namespace tovik
