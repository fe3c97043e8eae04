// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/SecretTransport.h"

#include <gtest/gtest.h>

namespace tovik::test {
namespace {

TEST(SecretTransport, whereNobodyOnTheWayCanRead_isSafeForKeys) {
    struct Row {
        bool isEncrypted;
        const char* host;
        bool isSafe;
    };
    const Row rows[] = {
        {true, "speech.example", true},
        {false, "speech.example", false},
        {false, "localhost", true},
        {false, "127.0.0.1", true},
        {false, "127.1.2.3", true},
        {false, "::1", true},
        {false, "192.168.1.2", false},
        {false, "0.0.0.0", false},
        {false, "::", false},
        {false, "128.0.0.1", false},
        {false, "127.0.0.1.example", false},
        {false, "localhost.example", false},
        {false, "", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(isSafeForKeys(row.isEncrypted, row.host), row.isSafe) << row.isEncrypted << row.host;
    }
}

} // namespace
} // namespace tovik::test
