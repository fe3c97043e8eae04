// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

// Xlib's types by name alone: its header defines macros with everyday names, which no other header survives.
struct _XDisplay; // NOLINT(bugprone-reserved-identifier)
union _XEvent;    // NOLINT(bugprone-reserved-identifier)
