// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// Part of every test under the thread sanitizer. Libraries that have threads of their own are not built for it:
// it sees what their threads touch, and not how they wait for each other.

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
           "race:libglib-2.0.so.0\n"
           "race:libproxy.so.1\n"
           "race:libpulsecommon-\n"
           "race:libxcb.so.1\n";
}

/// Qt starts processes by a kind of fork that shares the memory, and with it the sanitizer's mark for
/// "forked".
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() {
    return "die_after_fork=0";
}
