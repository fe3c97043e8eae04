// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/Installation.h"
#include "Permissions/PermissionChecklist.h"
#include "Permissions/PermissionRequests.h"
#include "support/FakeAlert.h"
#include "support/FakeAuthorization.h"
#include "support/FakeFiles.h"
#include "support/FakeMainWindow.h"
#include "support/FakeProcessLauncher.h"
#include "support/FakeWorkspace.h"
#include "support/ManualTime.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// Everything that asks for permissions, on fakes, at home in /Users/ada.
class PermissionsFixture : public testing::Test {
protected:
    /// Made late, so that a test can choose the places.
    Installation& installation() {
        if (!installation_) {
            installation_.emplace(Installation::Collaborators{authorization, files, workspace, launcher,
                                                              alert, time, window,
                                                              [this] { happened.emplace_back("terminate"); }},
                                  locations);
        }
        return *installation_;
    }
    PermissionRequests& requests() {
        if (!requests_) {
            checklist_.emplace(authorization, locations);
            requests_.emplace(PermissionRequests::Collaborators{authorization, time, log, workspace, window,
                                                                *checklist_, installation()});
        }
        return *requests_;
    }
    void destroyRequests() { requests_.reset(); }
    void destroyInstallation() {
        requests_.reset();
        installation_.reset();
    }

    InstallLocations locations = macInstallLocations();
    ManualTime time;
    RecordingLog log;
    FakeAuthorization authorization;
    FakeFiles files;
    FakeWorkspace workspace;
    FakeProcessLauncher launcher;
    FakeAlert alert;
    FakeMainWindow window;
    /// For the order of things across fakes.
    std::vector<std::string> happened;

private:
    std::optional<Installation> installation_;
    std::optional<PermissionChecklist> checklist_;
    std::optional<PermissionRequests> requests_;
};

} // namespace tovik::test
