# SPDX-License-Identifier: MIT
"""What is kept of a failure: logs, the screen, the user's files, what was on the accessibility bus."""

import os
import shutil


def keep(folder, desktop, home, programs):
    """Writes it all into the folder, which is emptied first."""
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    for name in os.listdir(desktop.folder):
        if name.endswith(".log"):
            shutil.copy(os.path.join(desktop.folder, name), folder)
    try:
        desktop.picture(os.path.join(folder, "screen.png"))
    except Exception as error:  # a desktop that is gone must not hide how it went
        print(f"no picture of the screen: {error}", flush=True)
    shutil.copytree(home.folder, os.path.join(folder, "home"), symlinks=True,
                    ignore=shutil.ignore_patterns("runtime", "cache", "example.*"),
                    ignore_dangling_symlinks=True)
    for index, brindle in enumerate(programs):
        with open(os.path.join(folder, f"tree-{index}.txt"), "w", encoding="utf-8") as file:
            file.write(brindle.report())
    print(f"evidence of the failure is in {folder}", flush=True)
