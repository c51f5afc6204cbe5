# SPDX-License-Identifier: MIT
"""The window managers that the program is tested under, and what each does by its nature."""

import dataclasses
import os

_I3_CONFIG = """# i3 config file (v4)
# Everything as i3 does it by itself; no bar, which would need a program of its own.
font pango:DejaVu Sans Mono 8
"""

_XFWM4_SETTINGS = "config/xfce4/xfconf/xfce-perchannel-xml/xfwm4.xml"


def _xfwm4(**settings):
    """xfwm4's settings. Prevention of focus stealing, its strength, has to be asked for."""
    lines = [f'    <property name="{name}" type="{kind}" value="{value}"/>\n'
             for name, (kind, value) in {"prevent_focus_stealing": ("bool", "true"), **settings}.items()]
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<channel name="xfwm4" version="1.0">\n'
            f'  <property name="general" type="empty">\n{"".join(lines)}  </property>\n</channel>\n')


# The same managers, told that the keyboard follows the pointer. By itself xfwm4 waits a quarter of a
# second before it does, so that crossing a window would show nothing.
_OPENBOX_POINTER = """<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><followMouse>yes</followMouse></focus>
</openbox_config>
"""
_METACITY_POINTER = """[org/gnome/desktop/wm/preferences]
focus-mode='sloppy'
"""


@dataclasses.dataclass(frozen=True)
class WindowManager:
    """How to start a window manager. The traits below are its nature, at its own defaults."""

    name: str
    command: tuple
    files: dict = dataclasses.field(default_factory=dict)  # written below the home folder first
    env: dict = dataclasses.field(default_factory=dict)
    minimises: bool = True  # a window can be made an icon
    minimises_boxes: bool = True  # also a box by itself, without the window it belongs to
    second_workspace_command: tuple = ()  # where workspaces are made by going there
    focus_follows_pointer: bool = False  # pointing at a window gives it the keyboard
    tiles: bool = False  # it gives ordinary windows their places; only dialogs float
    keeps_families_in_order: bool = True  # a window stays above the one it belongs to
    opens_where_the_keyboard_is: bool = False  # on that screen, whatever place was asked for
    pointer_files: dict = dataclasses.field(default_factory=dict)
    pointer_env: dict = dataclasses.field(default_factory=dict)

    def following_the_pointer(self):
        """The same window manager, with the keyboard where the pointer is."""
        return dataclasses.replace(self, files={**self.files, **self.pointer_files},
                                   env={**self.env, **self.pointer_env}, focus_follows_pointer=True)


_ALL = (
    WindowManager("openbox", ("openbox",),
                  pointer_files={"config/openbox/rc.xml": _OPENBOX_POINTER}),
    WindowManager("xfwm4", ("xfwm4",), files={_XFWM4_SETTINGS: _xfwm4()}, minimises_boxes=False,
                  pointer_files={_XFWM4_SETTINGS: _xfwm4(click_to_focus=("bool", "false"),
                                                         focus_delay=("int", "5"))}),
    WindowManager("metacity", ("metacity",),
                  pointer_files={"config/glib-2.0/settings/keyfile": _METACITY_POINTER},
                  pointer_env={"GSETTINGS_BACKEND": "keyfile"}),
    WindowManager("i3", ("i3", "-c", "{home}/i3-config"), files={"i3-config": _I3_CONFIG},
                  minimises=False, minimises_boxes=False, tiles=True, keeps_families_in_order=False,
                  opens_where_the_keyboard_is=True, focus_follows_pointer=True,
                  second_workspace_command=("i3-msg", "workspace", "2")),
)
MANAGERS = {manager.name: manager for manager in _ALL}


def chosen():
    """The window manager that the environment asks for; openbox when it doesn't say."""
    return MANAGERS[os.environ.get("BRINDLE_E2E_WINDOW_MANAGER", "openbox")]
