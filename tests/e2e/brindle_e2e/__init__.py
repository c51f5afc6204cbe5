# SPDX-License-Identifier: MIT
"""Drives the real program on a virtual display, with real keys, and reads what is on the screen."""
