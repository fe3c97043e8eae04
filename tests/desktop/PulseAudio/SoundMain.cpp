// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/SoundServer.h"

#include <gtest/gtest.h>

namespace {

class IsolatedClient : public testing::Environment {
public:
    void SetUp() override { tovik::test::isolateSoundClient(); }
};

[[maybe_unused]] const auto* const registered = testing::AddGlobalTestEnvironment(new IsolatedClient);

} // namespace
