# SPDX-License-Identifier: MIT
"""Child processes that never outlive the test, however it ends."""

import ctypes
import os
import signal
import subprocess
import time

_PR_SET_PDEATHSIG = 1
_libc = ctypes.CDLL(None, use_errno=True)


def _die_with_parent():
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL)


def start(command, env, **options):
    """Starts a child in a session of its own, without our standard input."""
    options.setdefault("stdin", subprocess.DEVNULL)
    return subprocess.Popen(command, env=env, start_new_session=True, preexec_fn=_die_with_parent,
                            **options)


def stop(process, patience=5):
    """Ends a child and whatever it started: asks first, then insists."""
    if process is None:
        return
    for signal_number in (signal.SIGTERM, signal.SIGKILL):
        _signal_group(process.pid, signal_number)
        end = time.monotonic() + patience
        while process.poll() is None and time.monotonic() < end:
            time.sleep(0.02)
        if process.poll() is not None:
            break
    _signal_group(process.pid, signal.SIGKILL)


def _signal_group(pid, signal_number):
    try:
        os.killpg(pid, signal_number)
    except (ProcessLookupError, PermissionError):
        pass
