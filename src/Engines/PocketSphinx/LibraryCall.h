// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tovik {

/// Calls of the PocketSphinx library, which writes to standard error by itself and ends the process when it
/// finds a model that it cannot use. A call made through here does neither.
class LibraryCall {
public:
    /// Runs the function with the argument. False when the library gave up in the middle: whatever it was
    /// working on must then not be touched any more, also not be freed. Neither the function nor what it
    /// calls may hold anything that has to be destroyed: it may never return.
    [[nodiscard]] bool run(void (*function)(void*), void* argument);

    /// As above, for a callable with captures by reference only.
    template <typename Callable>
    [[nodiscard]] bool operator()(Callable callable) {
        return run([](void* pointer) { (*static_cast<Callable*>(pointer))(); }, &callable);
    }

    /// What the library complained of in the calls so far.
    [[nodiscard]] const std::vector<std::string>& complaints() const { return complaints_; }
    /// The complaints in one line; empty when there are none.
    [[nodiscard]] std::string complaintsLine() const;

private:
    std::vector<std::string> complaints_;
};

} // namespace tovik
