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
        os.makedirs(os.path.dirname(self.settings_path), exist_ok=True)
        with open(self.settings_path, "w", encoding="utf-8") as file:
            file.write(text)

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
        values = self.settings(window)
        numbers = [re.findall(r"-?\d+", values.get(key, "")) for key in ("pos", "size")]
        if [len(found) for found in numbers] != [2, 2]:
            return None
        return tuple(int(number) for found in numbers for number in found)
