# SPDX-FileCopyrightText: 2026 The Tovik Record authors
# SPDX-License-Identifier: MIT
"""A staged Linux desktop: X server, window manager, session bus and a microphone one can speak into."""
