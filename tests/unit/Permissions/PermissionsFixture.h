// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/Installation.h"
#include "Permissions/PermissionChecklist.h"
#include "Permissions/PermissionRequests.h"
#include "support/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tovik::test {

/// Everything that asks for permissions, on fakes, at home in /Users/ada.
class PermissionsFixture : public testing::Test, protected FakePlatform {
protected:
    PermissionsFixture() {
        onTerminate = [this] { happened.emplace_back("terminate"); };
    }

    /// Made late, so that a test can choose the places.
    Installation& installation() {
        if (!installation_) {
            installation_.emplace(platform, window);
        }
        return *installation_;
    }
    PermissionRequests& requests() {
        if (!requests_) {
            checklist_.emplace(authorization, locations);
            requests_.emplace(platform, window, *checklist_);
        }
        return *requests_;
    }
    void destroyRequests() { requests_.reset(); }
    void destroyInstallation() { installation_.reset(); }

    InstallLocations& locations = platform.installLocations;
    FakeMainWindow window;
    /// For the order of things across fakes.
    std::vector<std::string> happened;

private:
    std::optional<Installation> installation_;
    std::optional<PermissionChecklist> checklist_;
    std::optional<PermissionRequests> requests_;
};

} // namespace tovik::test
