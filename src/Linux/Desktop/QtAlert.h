// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserInterface.h"

namespace tovik {

/// Questions as message boxes. The first button is the default one. After the QApplication; when that quits
/// while a question is open, the question counts as closed without an answer.
class QtAlert : public Alert {
public:
    int runModal(const std::string& message, const std::string& informativeText,
                 const std::vector<std::string>& buttons) override;
};

} // namespace tovik
