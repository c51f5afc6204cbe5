# SPDX-License-Identifier: MIT
"""What CMake would build on a Mac: which sources, what they include, and the bundle."""

import json
import os
import pathlib
import plistlib
import re
import struct
import subprocess
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = HERE.parents[3]
SRC = SOURCE / "src"
MAKER_DOMAIN = "outlines.maker.example"
OLDEST_SYSTEM = "10.14"  # of the toolkit's first release that will do
OTHER_DESKTOPS = {"x11", "wayland", "portal", "dbus"}
FOREIGN_HEADER = re.compile(r"<(xcb|xkbcommon|X11|wayland|QDBus|QtDBus)")
LINUX_ONLY = re.compile(
    r"\b(pipe2|accept4|prctl|signalfd|eventfd|epoll_\w+|inotify_\w+)\(|\.st_[acm]tim\b|"
    r"<(sys/(epoll|eventfd|signalfd|inotify|prctl)|linux/.*)|/proc/|"
    r"\b(MSG_NOSIGNAL|SOCK_CLOEXEC)\b")
COMMENT = re.compile(r"(?<!:)//[^\n]*|/\*.*?\*/", re.DOTALL)
INCLUDE = re.compile(r'^\s*#\s*include\s+(?:"([^"]+)"|(<[^>]+>))', re.MULTILINE)


def configure(folder, *options):
    """Configures the program in FOLDER, with OPTIONS, as a Mac would."""
    result = subprocess.run(
        [os.environ["BRINDLE_CMAKE"], "-G", "Ninja", "-S", SOURCE, "-B", folder,
         f"-DCMAKE_TOOLCHAIN_FILE={HERE / 'pretend-mac.cmake'}",
         f"-DCMAKE_CXX_COMPILER={os.environ['BRINDLE_CXX']}",
         f"-DQt6_DIR={os.environ['BRINDLE_QT6_DIR']}",
         f"-DBRINDLE_MAKER_DOMAIN={MAKER_DOMAIN}",
         *options,
         "-DPKG_CONFIG_EXECUTABLE=/no/pkg-config",
         "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"],
        env={name: value for name, value in os.environ.items()
             if name != "MACOSX_DEPLOYMENT_TARGET"},
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    if result.returncode != 0:
        raise AssertionError(f"configuring as on a Mac failed:\n{result.stdout}")


def info_in(build):
    """What the bundle in the folder BUILD says of itself."""
    return plistlib.loads(
        (build / "src" / "app" / "Brindle.app" / "Contents" / "Info.plist").read_bytes())


def linux_only_in(code):
    """The first thing in CODE, its comments aside, that only Linux has; None without any."""
    return LINUX_ONLY.search(COMMENT.sub("", code))


def includes_of(source):
    """The files of ours and the foreign headers that SOURCE includes, however deep."""
    ours, foreign, waiting = {source}, set(), [source]
    while waiting:
        current = waiting.pop()
        for quoted, angled in INCLUDE.findall(current.read_text(encoding="utf-8")):
            if angled:
                foreign.add(angled)
                continue
            for candidate in (current.parent / quoted, SRC / quoted):
                if candidate.exists() and candidate not in ours:
                    ours.add(candidate)
                    waiting.append(candidate)
    return ours, foreign


class MacBuild(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.build = pathlib.Path(folder.name)
        # What only a Mac sets before it knows for which system it builds.
        configure(cls.build, "-DCMAKE_HOST_APPLE=ON")
        commands = json.loads((cls.build / "compile_commands.json").read_text(encoding="utf-8"))
        cls.compiled = {pathlib.Path(command["file"]) for command in commands}
        cls.program = {path for path in cls.compiled if SRC in path.parents}
        cls.info = info_in(cls.build)

    def test_the_mac_sources_are_built_and_those_of_other_desktops_are_not(self):
        self.assertIn(SRC / "platform" / "mac" / "MacSupport.cpp", self.program)
        self.assertEqual({path for path in self.program if path.parent == SRC / "platform" / "mac"},
                         set((SRC / "platform" / "mac").glob("*.cpp")))
        self.assertEqual({path.name for path in self.program if path.parent.name in OTHER_DESKTOPS},
                         set())
        self.assertNotIn(SRC / "platform" / "PcDesktops.cpp", self.program)

    def test_no_source_includes_anything_of_other_desktops(self):
        self.assertGreater(len(self.program), 50)
        for source in sorted(self.program):
            ours, foreign = includes_of(source)
            with self.subTest(source=source.relative_to(SRC)):
                self.assertEqual(
                    [str(path) for path in ours if OTHER_DESKTOPS & set(path.parts)], [])
                self.assertEqual([name for name in foreign if FOREIGN_HEADER.match(name)], [])

    def test_no_source_and_no_header_asks_for_what_only_linux_has(self):
        read = set().union(*(includes_of(source)[0] for source in self.program))
        self.assertTrue({path.suffix for path in read} >= {".h", ".cpp"})
        for file in sorted(read):
            with self.subTest(file=file.relative_to(SRC)):
                self.assertIsNone(linux_only_in(file.read_text(encoding="utf-8")))

    def test_what_only_linux_has_is_recognised_with_and_without_colons(self):
        for code in ("pipe2(ends, 0);", "::pipe2(ends, 0);", "QFile(u\"/proc/self/exe\"_s);",
                     "send(fd, p, n, MSG_NOSIGNAL);", "SOCK_STREAM | SOCK_CLOEXEC",
                     "#include <sys/epoll.h>", "info.st_mtim;"):
            with self.subTest(code=code):
                self.assertIsNotNone(linux_only_in(code))
        for code in ("pipe(ends); // pipe2() is Linux' own", "info.st_mtimespec", "my_pipe2(ends)"):
            with self.subTest(code=code):
                self.assertIsNone(linux_only_in(code))

    def test_what_is_included_is_built_too(self):
        included = set().union(*(includes_of(source)[0] for source in self.program))
        needed = {header.with_suffix(".cpp") for header in included if header.suffix == ".h"}
        self.assertEqual({path for path in needed if path.exists()} - self.program, set())

    def test_only_the_header_made_for_it_includes_those_of_the_platform(self):
        including = [path.name for path in (SRC / "platform" / "mac").iterdir()
                     if re.search("<(Carbon|CoreFoundation)/", path.read_text(encoding="utf-8"))]
        self.assertEqual(including, ["CarbonHeaders.h"])

    def test_no_test_of_another_desktop_is_built(self):
        tests = {path.stem for path in self.compiled if SOURCE / "tests" in path.parents}
        self.assertIn("KeyOrderTest", tests)
        self.assertEqual({name for name in tests if "X11" in name or "Wayland" in name}, set())

    def test_the_bundle_says_who_it_is(self):
        self.assertEqual(self.info["CFBundleIdentifier"], "example.maker.outlines.Brindle")
        self.assertEqual(self.info["CFBundleName"], "Brindle")
        self.assertEqual(self.info["CFBundleExecutable"], "Brindle")
        self.assertEqual(self.info["CFBundlePackageType"], "APPL")
        self.assertEqual(self.info["CFBundleShortVersionString"], "0.3")
        self.assertEqual(self.info["CFBundleVersion"], "0.3")
        self.assertEqual(self.info["NSPrincipalClass"], "NSApplication")
        self.assertIs(self.info["NSHighResolutionCapable"], True)
        licence = (SOURCE / "LICENSE").read_text(encoding="utf-8")
        holder = re.search(r"Copyright \(c\) (.+)", licence).group(1)
        self.assertIn(holder, self.info["NSHumanReadableCopyright"])

    def test_the_bundle_names_the_oldest_system(self):
        self.assertEqual(self.info["LSMinimumSystemVersion"], OLDEST_SYSTEM)

    def test_whoever_builds_may_choose_the_oldest_system(self):
        with tempfile.TemporaryDirectory() as folder:
            configure(folder, "-DCMAKE_HOST_APPLE=ON", "-DCMAKE_OSX_DEPLOYMENT_TARGET=12.3")
            self.assertEqual(info_in(pathlib.Path(folder))["LSMinimumSystemVersion"], "12.3")

    def test_the_bundles_documents_are_the_programs_files(self):
        [declared] = self.info["UTExportedTypeDeclarations"]
        mime = (SOURCE / "packaging" / "brindle-mime.xml").read_text(encoding="utf-8")
        self.assertEqual(declared["UTTypeTagSpecification"],
                         {"public.filename-extension": re.findall(r'pattern="\*\.(\w+)"', mime),
                          "public.mime-type": re.search(r'type="([^"]+)"', mime).group(1)})
        [document] = self.info["CFBundleDocumentTypes"]
        self.assertEqual(document["LSItemContentTypes"], [declared["UTTypeIdentifier"]])
        self.assertEqual(document["CFBundleTypeRole"], "Editor")

    def test_the_bundle_gets_its_executable_and_its_icon(self):
        ninja = (self.build / "build.ninja").read_text(encoding="utf-8")
        bundle = "src/app/Brindle.app/Contents"
        self.assertRegex(ninja, rf"(?m)^build {bundle}/MacOS/Brindle: CXX_EXECUTABLE_LINKER")
        self.assertEqual(self.info["CFBundleIconFile"], "brindle.icns")
        icon = SOURCE / "packaging" / "mac" / "brindle.icns"
        self.assertRegex(ninja, rf"(?m)^build {bundle}/Resources/brindle.icns: .* {icon}$")

    def test_the_icon_has_every_size_for_both_densities(self):
        icon = (SOURCE / "packaging" / "mac" / "brindle.icns").read_bytes()
        kind, length = struct.unpack(">4sI", icon[:8])
        self.assertEqual((kind, length), (b"icns", len(icon)))
        entries, place = {}, 8
        while place < len(icon):
            kind, length = struct.unpack(">4sI", icon[place:place + 8])
            entries[kind] = icon[place + 8:place + length]
            place += length
        old_form = {b"is32", b"s8mk", b"il32", b"l8mk", b"ih32", b"h8mk", b"it32", b"t8mk"}
        png = {b"ic11": 32, b"ic12": 64, b"ic13": 256, b"ic08": 256, b"ic14": 512, b"ic09": 512,
               b"ic10": 1024}
        self.assertEqual(set(entries), old_form | set(png))
        for kind, pixels in png.items():
            with self.subTest(kind=kind):
                self.assertEqual(entries[kind][:8], b"\x89PNG\r\n\x1a\n")
                self.assertEqual(struct.unpack(">II", entries[kind][16:24]), (pixels, pixels))


if __name__ == "__main__":
    unittest.main()
