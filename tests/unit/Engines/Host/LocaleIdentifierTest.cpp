// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/LocaleIdentifier.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>

namespace tovik {
namespace {

struct Row {
    const char* given;
    const char* canonical;

    friend void PrintTo(const Row& row, std::ostream* out) { *out << '"' << row.given << '"'; }
};

class CanonicalLocaleIdentifier : public testing::TestWithParam<Row> {};

TEST_P(CanonicalLocaleIdentifier, isALanguageAndARegion) {
    EXPECT_EQ(canonicalLocaleIdentifier(GetParam().given), GetParam().canonical);
}

INSTANTIATE_TEST_SUITE_P(Forms, CanonicalLocaleIdentifier,
                         testing::Values(Row{"en-US", "en-US"}, Row{"en_US.UTF-8", "en-US"},
                                         Row{"en_us", "en-US"}, Row{"en", "en-US"}, Row{"en_GB", "en-GB"},
                                         Row{"de_DE@euro", "de-DE"}, Row{"ja", "ja-JP"},
                                         Row{"zh_CN.GB18030", "zh-CN"}, Row{"C", "en-US"},
                                         Row{"C.UTF-8", "en-US"}, Row{"POSIX", "en-US"}, Row{"", "en-US"}));

class LocaleOfEnvironment : public testing::Test {
protected:
    LocaleOfEnvironment() {
        for (const auto* name : kNames) {
            const auto* value = std::getenv(name);
            before_.emplace_back(value != nullptr ? std::optional<std::string>(value) : std::nullopt);
            unsetenv(name);
        }
    }
    ~LocaleOfEnvironment() override {
        for (std::size_t i = 0; i < before_.size(); ++i) {
            if (before_[i]) {
                setenv(kNames[i], before_[i]->c_str(), 1);
            } else {
                unsetenv(kNames[i]);
            }
        }
    }

private:
    static constexpr const char* kNames[] = {"LC_ALL", "LC_MESSAGES", "LANG"};
    std::vector<std::optional<std::string>> before_;
};

TEST_F(LocaleOfEnvironment, whenNothingIsSet_isEmpty) {
    EXPECT_EQ(localeOfEnvironment(), "");
}

TEST_F(LocaleOfEnvironment, takesTheStrongestVariable) {
    setenv("LANG", "de_DE.UTF-8", 1);
    EXPECT_EQ(localeOfEnvironment(), "de_DE.UTF-8");
    setenv("LC_MESSAGES", "fr_FR.UTF-8", 1);
    EXPECT_EQ(localeOfEnvironment(), "fr_FR.UTF-8");
    setenv("LC_ALL", "", 1);
    EXPECT_EQ(localeOfEnvironment(), "fr_FR.UTF-8");
    setenv("LC_ALL", "en_US.UTF-8", 1);
    EXPECT_EQ(localeOfEnvironment(), "en_US.UTF-8");
}

} // namespace
} // namespace tovik
