// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/Allocations.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local long allocations = 0;

void* allocate(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size == 0 ? 1 : size); memory != nullptr) {
        return memory;
    }
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
// Those that do not throw as well: memory of a sanitizer's own must not come to the delete below.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    ++allocations;
    return std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return ::operator new(size, tag);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

long tovik::test::allocationsOfThisThread() {
    return allocations;
}
