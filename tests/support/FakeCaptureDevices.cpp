// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/FakeCaptureDevices.h"

namespace tovik::test {

FakeCaptureDevices::FakeCaptureDevices()
    : connected_(std::make_shared<Handlers>()),
      disconnected_(std::make_shared<Handlers>()) {}

Subscription FakeCaptureDevices::add(const std::shared_ptr<Handlers>& handlers,
                                     std::function<void(const CaptureDevice&)> handler) {
    const auto id = handlers->empty() ? 0 : handlers->rbegin()->first + 1;
    handlers->emplace(id, std::move(handler));
    return Subscription([weak = std::weak_ptr(handlers), id] {
        if (const auto alive = weak.lock()) {
            alive->erase(id);
        }
    });
}

void FakeCaptureDevices::tell(const std::shared_ptr<Handlers>& handlers, const CaptureDevice& device) {
    // A copy, since a handler may end its own subscription.
    const auto current = *handlers;
    for (const auto& [id, handler] : current) {
        if (handlers->contains(id)) {
            handler(device);
        }
    }
}

Subscription FakeCaptureDevices::onConnected(std::function<void(const CaptureDevice&)> handler) {
    return add(connected_, std::move(handler));
}

Subscription FakeCaptureDevices::onDisconnected(std::function<void(const CaptureDevice&)> handler) {
    return add(disconnected_, std::move(handler));
}

void FakeCaptureDevices::notifyConnected(const CaptureDevice& device) {
    tell(connected_, device);
}

void FakeCaptureDevices::notifyDisconnected(const CaptureDevice& device) {
    tell(disconnected_, device);
}

void FakeCaptureDevices::connect(const CaptureDevice& device) {
    devices_.push_back(device);
    notifyConnected(device);
}

void FakeCaptureDevices::disconnect(const CaptureDevice& device) {
    std::erase(devices_, device);
    if (defaultId_ == device.uniqueId) {
        defaultId_.reset();
    }
    notifyDisconnected(device);
}

std::size_t FakeCaptureDevices::observerCount() const {
    return connected_->size() + disconnected_->size();
}

} // namespace tovik::test
