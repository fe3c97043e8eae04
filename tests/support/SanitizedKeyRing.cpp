// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// For tests that use the desktop's key ring.

/// Each of libsecret's waiting calls loses a few bytes: the bus library frees them in the event loop of the
/// call, which is gone by then. To tell these from others, the sanitizer needs whole stacks.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:secret_password_\n";
}
