// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/UserDefaults.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// A key ring in memory. It can fail, and it can stay locked: then answers wait for unlock().
class FakeSecretStore : public SecretStore {
public:
    explicit FakeSecretStore(MainQueue& queue) : queue_(queue) {}

    void lookUp(const std::string& name,
                std::function<void(const Result<std::optional<std::string>>&)> completion) override {
        lookUps.push_back(name);
        answer([this, name, completion = std::move(completion)] {
            if (failure) {
                completion(*failure);
                return;
            }
            const auto found = secrets.find(name);
            completion(found == secrets.end() ? std::optional<std::string>() : std::optional(found->second));
        });
    }

    void lock() { isLocked_ = true; }
    void unlock() {
        isLocked_ = false;
        for (auto& work : std::exchange(waiting_, {})) {
            queue_.async(std::move(work));
        }
    }

    std::map<std::string, std::string> secrets;
    /// What every call comes to, if set.
    std::optional<Error> failure;
    /// The names that were asked for.
    std::vector<std::string> lookUps;

private:
    void answer(std::function<void()> work) {
        if (isLocked_) {
            waiting_.push_back(std::move(work));
        } else {
            queue_.async(std::move(work));
        }
    }

    MainQueue& queue_;
    bool isLocked_ = false;
    std::vector<std::function<void()>> waiting_;
};

} // namespace tovik::test
