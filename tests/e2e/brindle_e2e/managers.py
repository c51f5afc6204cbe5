# SPDX-License-Identifier: MIT
"""The window managers that the program is tested under, and what each does by its nature."""

import os
from dataclasses import dataclass, field

_I3_CONFIG = """# i3 config file (v4)
# Everything as i3 does it by itself; no bar, which would need a program of its own.
font pango:DejaVu Sans Mono 8
"""


@dataclass(frozen=True)
class WindowManager:
    """How to start a window manager. The traits below are its nature, at its own defaults."""

    name: str
    command: tuple
    files: dict = field(default_factory=dict)  # written below the home folder before the start
    minimises: bool = True  # a window can be made an icon
    minimises_boxes: bool = True  # also a box by itself, without the window it belongs to
    second_workspace_command: tuple = ()  # where workspaces are made by going there
    tiles: bool = False  # it gives ordinary windows their places; dialogs float
    focus_follows_pointer: bool = False  # pointing at a window gives it the keyboard


_ALL = (
    WindowManager("openbox", ("openbox",)),
    WindowManager("xfwm4", ("xfwm4",), minimises_boxes=False),
    WindowManager("metacity", ("metacity",)),
    WindowManager("i3", ("i3", "-c", "{home}/i3-config"), {"i3-config": _I3_CONFIG},
                  minimises=False, minimises_boxes=False, tiles=True, focus_follows_pointer=True,
                  second_workspace_command=("i3-msg", "workspace", "2")),
)
MANAGERS = {manager.name: manager for manager in _ALL}


def chosen():
    """The window manager that the environment asks for; openbox when it doesn't say."""
    return MANAGERS[os.environ.get("BRINDLE_E2E_WINDOW_MANAGER", "openbox")]
