"""The pairing instructions on a real desktop: typed, pasted and handed to a mail program; without one, the browser.

    instructions.py JOYVANE-SETTINGS
"""

import email
import email.policy
import os
import shutil
import stat
import subprocess
import sys
import unittest

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
        return wait_for("the field to have the keyboard", lambda: next(
            (node for node in self.app.nodes(name="To") if "focused" in node.states), None))

    def test_what_the_user_types_is_handed_over(self):
        self.install("message/rfc822", "mailer")
        self.start()
        to = self.open_composer()
        self.assertIn("editable", to.states)
        self.desktop.xdotool("type", "--delay", 20, "ann@home.exampleX")
        self.desktop.key("BackSpace")
        wait_for("the typed text", lambda: to.text == "ann@home.example")

        self.desktop.key("Tab")
        subject = self.app.find(name="Subject")
        wait_for("the next field", lambda: "focused" in subject.states)
        # Letters of another layout, one of them made of two keys.
        subprocess.run(["setxkbmap", "de"], env=self.desktop.environment, check=True)
        self.addCleanup(subprocess.run, ["setxkbmap", "us"], env=self.desktop.environment, check=True)
        self.desktop.key("g", "r", "udiaeresis", "ssharp", "e", "space", "r", "e", "n", "dead_acute", "e", "e")
        wait_for("the typed letters", lambda: subject.text == "grüße renée")
        self.desktop.key("Control_L+a", "Control_L+c", "End", "space", "Control_L+v")
        wait_for("the pasted text", lambda: subject.text == "grüße renée grüße renée")

        self.app.find(name="Send").press()
        self.assertEqual(self.started_with("mailer")[0], "--open")
        with open(self.desktop.path("mailer.taken"), "rb") as file:
            message = email.message_from_binary_file(file, policy=email.policy.default)
        self.assertEqual(message["X-Unsent"], "1")
        self.assertEqual(message["To"], "ann@home.example")
        self.assertEqual(message["Subject"], "grüße renée grüße renée")
        self.assertEqual(message.get_content_type(), "text/html")
        self.assertTrue(message.get_content().startswith("<p><h1>Pairing Your PS3 Controller</h1>"))
        self.app.gone(name="Send")
        self.assertEqual(self.app.close(), 0)

    def test_assistive_technology_reads_and_writes_the_fields(self):
        self.install("message/rfc822", "mailer")
        self.start()
        to = self.open_composer()
        editable = to.accessible.get_editable_text_iface()
        typed = "Jörg <j@home.example>"
        self.assertTrue(editable.insert_text(0, typed, len(typed.encode())))
        wait_for("the inserted text", lambda: to.text == typed)
        self.assertTrue(editable.delete_text(0, 5))
        wait_for("the shortened text", lambda: to.text == "<j@home.example>")
        self.assertTrue(editable.set_text_contents("ann@home.example"))
        wait_for("the new text", lambda: to.text == "ann@home.example")
        text = to.accessible.get_text_iface()
        self.assertTrue(text.set_caret_offset(3))
        wait_for("the caret", lambda: text.get_caret_offset() == 3)
        self.desktop.xdotool("type", "a")
        wait_for("a key where the caret was put", lambda: to.text == "anna@home.example")
        self.desktop.key("Escape")
        self.app.gone(name="Send")
        self.assertFalse(os.path.exists(self.desktop.path("mailer.log")))
        self.assertEqual(self.app.close(), 0)

    def test_without_mail_the_browser_opens_them(self):
        self.install("x-scheme-handler/http", "browser")
        self.start()
        self.app.find(name="E-mail Pairing Instructions").press()
        self.app.find(role="alert")
        self.assertFalse(os.path.exists(self.desktop.path("browser.log")))
        self.app.find(name="Dismiss").press()
        arguments = self.started_with("browser")
        self.assertEqual(arguments[0], "--open")
        self.assertTrue(arguments[1].endswith("/sixpair_instructions.html"), arguments)
        self.assertEqual(self.app.close(), 0)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
