// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace tovik {

/// Frees what Xlib gave, by the function that belongs to it.
template <auto Free>
struct X11Deleter {
    template <typename T>
    void operator()(T* resource) const {
        Free(resource);
    }
};

template <typename T, auto Free>
using X11Handle = std::unique_ptr<T, X11Deleter<Free>>;

} // namespace tovik
