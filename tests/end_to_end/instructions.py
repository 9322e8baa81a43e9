"""The pairing instructions on a real desktop: handed to a mail program; without one, the browser.

    instructions.py JOYVANE-SETTINGS
"""

import email
import email.policy
import os
import re
import shutil
import stat
import sys
import unittest
import urllib.parse

from jv_e2e import App, Desktop, wait_for

PROGRAM = ""


class Instructions(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def setUp(self):
        shutil.rmtree(self.desktop.path("data", "applications"), ignore_errors=True)
        for name in os.listdir(self.desktop.folder):
            if name.endswith((".log", ".taken")):
                os.remove(self.desktop.path(name))

    def start(self):
        self.app = App(self.desktop, [PROGRAM, "--simulate", "--root", self.desktop.path("root")])
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.find(name="Controller")
        self.app.take_keyboard()

    def install(self, media_type, name):
        """A program of the desktop that keeps what it is started with: the argument, and the file if it is one."""
        program = self.desktop.path(name)
        with open(program, "w") as file:
            file.write(f'#!/bin/sh\n[ ! -f "$2" ] || cp "$2" "$0.taken"\nprintf "%s\\n" "$@" >"$0.new"\nmv "$0.new" "$0.log"\n')
        os.chmod(program, stat.S_IRWXU)
        applications = self.desktop.path("data", "applications")
        os.makedirs(applications, exist_ok=True)
        with open(os.path.join(applications, f"{name}.desktop"), "w") as file:
            file.write(f"[Desktop Entry]\nType=Application\nName={name}\nExec={program} --open %u\n")
        with open(os.path.join(applications, "mimeinfo.cache"), "a") as file:
            file.write(f"[MIME Cache]\n{media_type}={name}.desktop;\n")

    def started_with(self, name):
        path = self.desktop.path(name) + ".log"
        wait_for(f"{name} to start", lambda: os.path.exists(path))
        with open(path) as file:
            return file.read().splitlines()

    def open_composer(self):
        self.app.find(name="E-mail Pairing Instructions").press()
        return wait_for("Open to have the keyboard", lambda: next(
            (node for node in self.app.nodes(name="Open") if "focused" in node.states), None))

    def drafts(self):
        folder = self.desktop.path("root", "tmp", "mail")
        return os.listdir(folder) if os.path.isdir(folder) else []

    def test_the_message_is_handed_over(self):
        self.install("message/rfc822", "mailer")
        self.start()
        self.open_composer().press()
        option, path = self.started_with("mailer")
        self.assertEqual(option, "--open")
        self.assertTrue(path.startswith(self.desktop.path("root") + "/"), path)
        with open(self.desktop.path("mailer.taken"), "rb") as file:
            message = email.message_from_binary_file(file, policy=email.policy.default)
        self.assertEqual(message["X-Unsent"], "1")
        self.assertEqual((message["To"], message["Subject"], message["From"]), ("", "", None))
        self.assertEqual(message.get_content_type(), "text/html")
        self.assertTrue(message.get_content().startswith("<p><h1>Pairing Your PS3 Controller</h1>"))
        self.app.gone(name="Open")
        self.assertEqual(self.app.close(), 0)
        self.assertEqual(self.drafts(), [], "the mail program has read it")

    def test_keys_alone_will_do(self):
        self.install("message/rfc822", "mailer")
        self.start()
        self.open_composer()
        self.desktop.key("Escape")
        self.app.gone(name="Open")
        self.assertFalse(os.path.exists(self.desktop.path("mailer.log")))
        self.open_composer()
        self.desktop.key("Return")
        self.started_with("mailer")
        self.app.gone(name="Open")
        self.assertEqual(self.app.close(), 0)

    def test_a_mail_program_that_cannot_be_started_is_said_and_the_message_stays(self):
        self.install("message/rfc822", "mailer")
        self.start()
        composer = self.open_composer()
        os.remove(self.desktop.path("mailer"))
        composer.press()
        self.assertIn("could not be started", self.app.find(role="alert").name)
        self.install("message/rfc822", "mailer")
        self.app.find(name="Open").press()
        self.started_with("mailer")
        self.app.gone(name="Open")
        self.assertEqual(self.app.close(), 0)

    def test_a_program_for_addresses_gets_the_text(self):
        self.install("x-scheme-handler/mailto", "webmail")
        self.start()
        self.open_composer().press()
        address = self.started_with("webmail")[1]
        self.assertTrue(address.startswith("mailto:?body="), address)
        text = urllib.parse.unquote(address.partition("=")[2])
        self.assertTrue(text.startswith("Pairing Your PS3 Controller\r\n"), text)
        self.assertIn("sixpairmac.zip>", text)
        self.assertEqual(self.app.close(), 0)

    def test_links_in_the_message_open(self):
        self.install("message/rfc822", "mailer")
        self.install("x-scheme-handler/http", "browser")
        self.start()
        self.open_composer()
        link = self.app.find(role="push button", name="SixaxisPairTool")
        self.assertIn("http://", link.description)
        self.desktop.click(*link.middle)
        self.assertEqual(self.started_with("browser")[1], link.description)
        self.app.find(name="Open")
        self.assertEqual(self.app.close(), 0)

    def assert_is_the_page(self, path):
        self.assertTrue(path.startswith("/") and path.endswith("/sixpair_instructions.html"), path)
        with open(path) as file:
            page = file.read()
        for heading in ("Pairing Your PS3 Controller", "Mac OS X:", "Windows:", "Linux:"):
            self.assertIn(heading, page)
        self.assertNotIn(".example", page, "a reserved name leads nowhere")

    def test_without_mail_the_browser_opens_the_page_that_came_with_the_program(self):
        self.install("x-scheme-handler/http", "browser")
        self.start()
        self.app.find(name="E-mail Pairing Instructions").press()
        self.app.find(role="alert")
        self.assertFalse(os.path.exists(self.desktop.path("browser.log")))
        self.app.find(name="Dismiss").press()
        option, path = self.started_with("browser")
        self.assertEqual(option, "--open")
        self.assert_is_the_page(path)
        self.assertEqual(self.app.close(), 0)

    def test_without_a_browser_the_notice_says_where_the_page_is(self):
        self.start()
        self.app.find(name="E-mail Pairing Instructions").press()
        self.app.find(role="alert")
        self.app.find(name="Dismiss").press()
        notice = self.app.find(role="alert", name=re.compile("No browser"))
        self.assert_is_the_page(notice.name.rpartition(": ")[2])
        self.assertEqual(self.app.close(), 0)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
