# SPDX-License-Identifier: MIT
"""Polling: a test never sleeps for a fixed time, it waits until something is so."""

import os
import time

# A busy machine is slow, not wrong: waits are long, and end as soon as the condition holds.
PATIENCE = float(os.environ.get("BRINDLE_E2E_PATIENCE", "20"))
INTERVAL = 0.03


class NotReached(AssertionError):
    """The awaited condition did not come true in time."""


def wait_for(condition, what, timeout=None):
    """Polls until condition() gives something true, and returns that; says what was awaited if not."""
    end = time.monotonic() + (PATIENCE if timeout is None else timeout)
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise NotReached(f"waited in vain for: {what() if callable(what) else what}")
        time.sleep(INTERVAL)


def wait_for_value(read, wanted, what, timeout=None):
    """Polls until read() equals wanted; the message of a failure shows the last value read."""
    last = [None]

    def matches():
        last[0] = read()
        return last[0] == wanted

    wait_for(matches, lambda: f"{what}: wanted {wanted!r}, was {last[0]!r}", timeout)


def wait_until_stays(condition, what, seconds):
    """Waits until condition() has been true for the given time without a break."""
    since = [None]

    def held():
        if not condition():
            since[0] = None
        elif since[0] is None:
            since[0] = time.monotonic()
        return since[0] is not None and time.monotonic() - since[0] >= seconds

    wait_for(held, what)


def stays(condition, what, seconds):
    """Fails as soon as condition() is not true within the given time."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if not condition():
            raise NotReached(f"was to stay so, but did not: {what() if callable(what) else what}")
        time.sleep(INTERVAL)
