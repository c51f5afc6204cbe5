# SPDX-License-Identifier: MIT
"""Screens with twice as many pixels in each direction, and the two ways to say so on X11."""

import dataclasses
import os
import subprocess


@dataclasses.dataclass(frozen=True)
class Scaling:
    factor: int = 1
    env: dict = dataclasses.field(default_factory=dict)
    resources: str = ""  # of the X server, as desktops' settings daemons set them

    def apply(self, desktop):
        desktop.env.update(self.env)
        if self.resources:
            subprocess.run(["xrdb", "-nocpp", "-merge"], input=self.resources, text=True, check=True,
                           env=desktop.env, timeout=60)


_SCALINGS = {"": Scaling(),
             "environment": Scaling(2, env={"QT_SCALE_FACTOR": "2"}),
             "resolution": Scaling(2, resources="Xft.dpi: 192\n")}


def chosen():
    """The scaling that the environment asks for; none when it doesn't say."""
    return _SCALINGS[os.environ.get("BRINDLE_E2E_SCALING", "")]
