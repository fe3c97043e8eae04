// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// For tests in which Qt or GLib has threads of its own. Those libraries are not built for the thread
// sanitizer, which therefore sees what their threads touch and not how they wait for each other.

extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "called_from_lib:libQt6Core.so.6\n"
           "called_from_lib:libQt6Network.so.6\n"
           "called_from_lib:libQt6DBus.so.6\n"
           "called_from_lib:libdbus-1.so.3\n"
           "called_from_lib:libcrypto.so\n"
           "called_from_lib:libssl.so\n"
           "called_from_lib:libglib-2.0.so.0\n"
           "called_from_lib:libgio-2.0.so.0\n"
           "called_from_lib:libgobject-2.0.so.0\n"
           "called_from_lib:libsecret-1.so.0\n"
           "race:libQt6Core.so.6\n"
           "race:libQt6Network.so.6\n"
           "race:libQt6DBus.so.6\n"
           "race:libglib-2.0.so.0\n";
}

/// Qt starts processes by a kind of fork that shares the memory, and with it the sanitizer's mark for
/// "forked".
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() {
    return "die_after_fork=0";
}

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
