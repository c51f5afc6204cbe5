# SPDX-License-Identifier: MIT
"""The check for updates in the whole program, over a real connection to a server that stands in."""

import http.server
import os
import threading

from brindle_e2e import datafile
from brindle_e2e.case import BrindleTestCase, main
from brindle_e2e.waiting import stays, wait_for
from brindle_e2e.windows import Window

ANNOUNCEMENT = "Updates Available"
PAGE = "<html><body><a href='http://updates.example/'>Version 0.4</a> is out.</body></html>"


class UpdateServer:
    """Plays the proxy through which the program asks for every host, so that no name is looked up."""

    def __init__(self, status, page=""):
        self.requests = []
        server = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                server.requests.append((self.path, dict(self.headers)))
                body = page.encode("latin-1")
                self.send_response(status)
                self.send_header("Content-Type", "text/html")
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    @property
    def env(self):
        """What makes the program go through it."""
        return {"http_proxy": f"http://127.0.0.1:{self._server.server_port}", "no_proxy": ""}

    def stop(self):
        self._server.shutdown()
        self._server.server_close()


class UpdateCheck(BrindleTestCase):
    def serve(self, status, page=""):
        server = UpdateServer(status, page)
        self.addCleanup(server.stop)
        return server

    def start_asking(self, server, **env):
        """Starts the program with the check on, as it is without settings."""
        path = datafile.create(self.home.path("tasks.bdl"), "First")
        with open(self.home.settings_path, "w", encoding="utf-8") as file:
            file.write(f"[General]\nautomaticactivation=false\n\n[loadfiles]\n0={path}\n")
        brindle = self.launch(env={**server.env, **env})
        brindle.end_splash()
        return brindle

    def test_the_makers_server_is_asked_once_and_its_page_shown(self):
        server = self.serve(200, PAGE)
        brindle = self.start_asking(server)
        announcement = Window(brindle, ANNOUNCEMENT)
        wait_for(announcement.is_shown, "the announcement")
        (path, _headers), = server.requests
        self.assertEqual(path, "http://updates.osterlane.example/updates/0.3.html")
        self.assertIn("lastcheckforupdates", self.home.settings("General"))

    def test_without_a_newer_version_nothing_is_shown(self):
        server = self.serve(404)
        brindle = self.start_asking(server)
        brindle.wait_for_main_window()
        wait_for(lambda: server.requests, "the request")
        wait_for(lambda: "lastcheckforupdates" in self.home.settings("General"), "the check noted")
        stays(lambda: not Window(brindle, ANNOUNCEMENT).is_shown(), "no announcement", 0.5)

    def test_a_link_opens_in_a_browser_that_makes_its_own_choice_of_display(self):
        server = self.serve(200, PAGE)
        folder = self.home.path("bin")
        os.makedirs(folder)
        seen = self.home.path("seen")
        with open(os.path.join(folder, "xdg-open"), "w", encoding="utf-8") as file:
            file.write(f"#!/bin/sh\nenv > '{seen}.new'; echo \"link=$1\" >> '{seen}.new'\n"
                       f"mv '{seen}.new' '{seen}'\n")
        os.chmod(os.path.join(folder, "xdg-open"), 0o755)
        brindle = self.start_asking(server, PATH=f"{folder}:{os.environ['PATH']}")
        announcement = Window(brindle, ANNOUNCEMENT)
        wait_for(announcement.is_shown, "the announcement")
        announcement.wait_until_in_front()
        x, y, _width, _height = announcement.spot(announcement.part("label"))
        self.desktop.click(x + 25, y + 12)  # the link is how the page begins
        wait_for(lambda: os.path.exists(seen), "the browser")
        with open(seen, encoding="utf-8") as file:
            variables = file.read().splitlines()
        self.assertIn("link=http://updates.example/", variables)
        self.assertEqual([line for line in variables if line.startswith("QT_QPA_PLATFORM=")], [])


if __name__ == "__main__":
    main()
