// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>

namespace tovik::test {

/// A row of a table of rules: a name, what goes in and what comes out.
template <typename Input, typename Output>
struct Row {
    std::string name;
    Input input;
    Output expected;

    friend std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }
};

using TextRow = Row<std::string, std::string>;

/// A row's name as gtest allows it.
template <typename Info>
std::string rowName(const Info& info) {
    auto name = info.param.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

} // namespace tovik::test
