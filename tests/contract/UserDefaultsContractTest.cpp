// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/JsonUserDefaults.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

namespace tovik::test {
namespace {

class UserDefaultsWorld {
public:
    virtual ~UserDefaultsWorld() = default;
    [[nodiscard]] virtual UserDefaults& defaults() = 0;
};

class MemoryWorld : public UserDefaultsWorld {
public:
    UserDefaults& defaults() override { return defaults_; }

private:
    MemoryUserDefaults defaults_;
};

class JsonWorld : public UserDefaultsWorld {
public:
    UserDefaults& defaults() override { return defaults_; }

private:
    TemporaryFolder folder_;
    RecordingLog log_;
    JsonUserDefaults defaults_{folder_ / "tovik-record/defaults.json", log_};
};

struct WorldKind {
    std::string name;
    std::function<std::unique_ptr<UserDefaultsWorld>()> make;
};

class UserDefaultsContract : public testing::TestWithParam<WorldKind> {
protected:
    std::unique_ptr<UserDefaultsWorld> world = GetParam().make();
    UserDefaults& defaults = world->defaults();
};

TEST_P(UserDefaultsContract, anAbsentKey_givesNothing) {
    EXPECT_FALSE(defaults.value("a"));
    EXPECT_FALSE(defaults.boolean("a"));
    EXPECT_FALSE(defaults.number("a"));
    EXPECT_FALSE(defaults.string("a"));
}

TEST_P(UserDefaultsContract, valuesOfEveryType_areReadAsTheyWereWritten) {
    const PropertyValue values[] = {
        true,
        false,
        "text",
        "",
        0,
        -1,
        1.0,
        1740837909.123456,
        std::numeric_limits<std::int64_t>::max(),
        std::numeric_limits<double>::denorm_min(),
        PropertyValue::array(),
        PropertyValue::object(),
        PropertyValue::array({{{"text", "a"}, {"createdAt", 1.5}}, {{"text", "b"}, {"createdAt", 2.0}}}),
        {{"bot to bot", "Tovik Record"}, {"", "empty"}},
    };
    for (const auto& value : values) {
        defaults.set("key", value);
        const auto stored = defaults.value("key");
        ASSERT_TRUE(stored) << value;
        EXPECT_EQ(*stored, value);
        EXPECT_EQ(stored->type(), value.type()) << value;
    }
}

TEST_P(UserDefaultsContract, aWholeNumberWrittenAsAReal_staysAReal) {
    defaults.set("key", 1.0);
    EXPECT_TRUE(defaults.value("key")->is_number_float());
    EXPECT_EQ(defaults.number("key"), 1.0);
}

TEST_P(UserDefaultsContract, aWholeNumber_readsAsANumberAndNotAsABoolean) {
    defaults.set("key", 1);
    EXPECT_EQ(defaults.number("key"), 1.0);
    EXPECT_FALSE(defaults.boolean("key"));
}

TEST_P(UserDefaultsContract, aValueOfAnotherType_givesNothingInTheTypedReads) {
    defaults.set("boolean", true);
    defaults.set("text", "true");
    defaults.set("list", PropertyValue::array({"text"}));
    EXPECT_FALSE(defaults.string("boolean"));
    EXPECT_FALSE(defaults.number("boolean"));
    EXPECT_FALSE(defaults.boolean("text"));
    EXPECT_FALSE(defaults.number("text"));
    EXPECT_FALSE(defaults.string("list"));
    EXPECT_TRUE(defaults.value("list"));
}

TEST_P(UserDefaultsContract, anyText_isReadByteForByte) {
    const std::string texts[] = {
        std::string("a\0b", 3),
        "line\nline\r\n\ttab",
        "\"quoted\" \\ / {}[]",
        "Grüße, 世界",
        "👩‍👩‍👧 🌐 e\u0301",
        "\u2028\u2029\uFEFF",
        std::string("\x01\x1f\x7f", 3),
        "</script>",
        std::string(200000, 'x'),
    };
    for (const auto& text : texts) {
        defaults.set("key", text);
        EXPECT_EQ(defaults.string("key"), text);
    }
}

TEST_P(UserDefaultsContract, anyKey_standsForItself) {
    const std::string keys[] = {"transcription.history", "with space", "", "Schlüssel", "quote\"", "a/b"};
    for (const auto& key : keys) {
        defaults.set(key, key);
    }
    for (const auto& key : keys) {
        EXPECT_EQ(defaults.string(key), key);
    }
}

TEST_P(UserDefaultsContract, settingAgain_replacesAlsoByAnotherType) {
    defaults.set("key", 1);
    defaults.set("key", "text");
    EXPECT_EQ(defaults.value("key"), PropertyValue("text"));
}

TEST_P(UserDefaultsContract, removing_makesTheKeyAbsentAndLeavesOthers) {
    defaults.set("a", 1);
    defaults.set("b", 2);
    defaults.remove("a");
    defaults.remove("never there");
    EXPECT_FALSE(defaults.value("a"));
    EXPECT_EQ(defaults.number("b"), 2);
}

TEST_P(UserDefaultsContract, aValueThatWasRead_isNotChangedByLaterWrites) {
    defaults.set("key", PropertyValue::array({1, 2, 3}));
    const auto before = defaults.value("key");
    defaults.set("key", PropertyValue::array());
    EXPECT_EQ(before, PropertyValue::array({1, 2, 3}));
}

INSTANTIATE_TEST_SUITE_P(
    Stores, UserDefaultsContract,
    testing::Values(WorldKind{"MemoryUserDefaults", [] { return std::make_unique<MemoryWorld>(); }},
                    WorldKind{"JsonUserDefaults", [] { return std::make_unique<JsonWorld>(); }}),
    [](const auto& kind) { return kind.param.name; });

} // namespace
} // namespace tovik::test
