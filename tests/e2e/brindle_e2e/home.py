# SPDX-License-Identifier: MIT
"""One user: a home folder with settings of its own, shared by the program's runs in a test."""

import configparser
import os
import re


class Home:
    def __init__(self, folder):
        self.folder = folder
        for name in ("files", "runtime"):
            os.makedirs(os.path.join(folder, name), mode=0o700)
        self.write_settings("")

    @property
    def env(self):
        def inside(name):
            return os.path.join(self.folder, name)

        return {"HOME": self.folder, "XDG_RUNTIME_DIR": inside("runtime"),
                "XDG_CONFIG_HOME": inside("config"), "XDG_CACHE_HOME": inside("cache"),
                "XDG_DATA_HOME": inside("data"), "XDG_CONFIG_DIRS": inside("no-system-config")}

    def path(self, name):
        """Full path of a data file."""
        return os.path.join(self.folder, "files", name)

    @property
    def settings_path(self):
        return os.path.join(self.folder, "config", "Osterlane", "Brindle.conf")

    def write_settings(self, text):
        """Replaces the settings by these, with the check for updates off as in every test."""
        _write(self.settings_path, _without_update_check(text))

    def other_config(self, name):
        """A second settings folder, for a copy that is not to share them."""
        folder = os.path.join(self.folder, name)
        _write(os.path.join(folder, "Osterlane", "Brindle.conf"), _without_update_check(""))
        return folder

    def remember_files(self, *paths, automatic_activation="false"):
        """Settings that open these files at the next start."""
        lines = "".join(f"{index}={path}\n" for index, path in enumerate(paths))
        self.write_settings(f"[General]\nautomaticactivation={automatic_activation}\n"
                            f"automaticactivationdelay=1\n\n[loadfiles]\n{lines}")

    def settings_bytes(self):
        try:
            with open(self.settings_path, "rb") as file:
                return file.read()
        except FileNotFoundError:
            return b""

    def settings(self, group):
        """The keys of one group of the settings, as they stand in the file now."""
        parser = configparser.ConfigParser(interpolation=None, strict=False)
        parser.optionxform = str
        parser.read_string(self.settings_bytes().decode())
        return dict(parser[group]) if group in parser else {}

    def loaded_files(self):
        """What the settings say is open: [(key, path), …] in the order of the file."""
        return list(self.settings("loadfiles").items())

    def stored_place(self, window="HierarchyWindow"):
        """(x, y, width, height) that the settings hold for a window, or None."""
        pos, size = self._stored_pair(window, "pos"), self.stored_size(window)
        return pos + size if pos and size else None

    def stored_size(self, window="HierarchyWindow"):
        """(width, height) that the settings hold for a window, or None."""
        return self._stored_pair(window, "size")

    def _stored_pair(self, window, key):
        numbers = re.findall(r"-?\d+", self.settings(window).get(key, ""))
        return tuple(map(int, numbers)) if len(numbers) == 2 else None


def _without_update_check(settings):
    """No test talks to the network."""
    if "[General]\n" not in settings:
        settings = f"[General]\n\n{settings}"
    return settings.replace("[General]\n", "[General]\ndontcheckforupdates=true\n", 1)


def _write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
