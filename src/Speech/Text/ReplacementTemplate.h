// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// What stands in place of a matched phrase. In the template "$0" is the matched text, "$1" to "$9" are
/// nothing, and a backslash makes the next character literal; everything else stands for itself.
class ReplacementTemplate {
public:
    explicit ReplacementTemplate(std::u16string_view text);

    /// Nothing in the matched text is interpreted.
    [[nodiscard]] std::u16string expanded(std::u16string_view matched) const;

private:
    /// The literal parts; the matched text stands between each two.
    std::vector<std::u16string> literals_;
};

} // namespace tovik
