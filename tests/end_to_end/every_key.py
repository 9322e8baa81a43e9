"""Every key of a keyboard, pressed in a real window while a row of the keymap editor waits for one.

A virtual X server's key codes are the kernel's key numbers plus 8. Which usage each must come as is told by the order of
the Keyboard/Keypad usage page on one side and the kernel's names of keys on the other; both meet only here.

    every_key.py JOYVANE-SETTINGS
"""

import os
import plistlib
import re
import subprocess
import sys
import time
import unittest

from jv_e2e import App, Desktop, wait_for

PROGRAM = ""

# The usage page in its order, by the kernel's names; "-" where the kernel has no key of its own.
PAGE = {
    4: """A B C D E F G H I J K L M N O P Q R S T U V W X Y Z 1 2 3 4 5 6 7 8 9 0 ENTER ESC BACKSPACE TAB SPACE MINUS
        EQUAL LEFTBRACE RIGHTBRACE BACKSLASH - SEMICOLON APOSTROPHE GRAVE COMMA DOT SLASH CAPSLOCK F1 F2 F3 F4 F5 F6 F7
        F8 F9 F10 F11 F12 SYSRQ SCROLLLOCK PAUSE INSERT HOME PAGEUP DELETE END PAGEDOWN RIGHT LEFT DOWN UP NUMLOCK
        KPSLASH KPASTERISK KPMINUS KPPLUS KPENTER KP1 KP2 KP3 KP4 KP5 KP6 KP7 KP8 KP9 KP0 KPDOT 102ND COMPOSE POWER
        KPEQUAL F13 F14 F15 F16 F17 F18 F19 F20 F21 F22 F23 F24 OPEN HELP PROPS FRONT STOP AGAIN UNDO CUT COPY PASTE
        FIND MUTE VOLUMEUP VOLUMEDOWN - - - KPCOMMA - RO KATAKANAHIRAGANA YEN HENKAN MUHENKAN KPJPCOMMA - - - HANGEUL
        HANJA KATAKANA HIRAGANA ZENKAKUHANKAKU""",
    155: "CANCEL",
    182: "KPLEFTPAREN KPRIGHTPAREN",
    215: "KPPLUSMINUS",
    224: "LEFTCTRL LEFTSHIFT LEFTALT LEFTMETA RIGHTCTRL RIGHTSHIFT RIGHTALT RIGHTMETA",
}
ALSO = {"MENU": 118}  # a second key of that usage
# As they are said.
NAMES = {224: "Control", 225: "Left Shift", 79: "Right Arrow", 80: "Left Arrow", 81: "Down Arrow", 82: "Up Arrow", 226: "Alt",
         227: "Command", 44: "Space", 40: "Return", 229: "Right Shift", 42: "Backspace", 57: "Caps Lock", 43: "Tab", 41: "Escape"}
# Each row's controller input.
ROWS = {"D-pad right": 1, "D-pad left": 2, "D-pad up": 3, "D-pad down": 4, "face button A": 5, "face button B": 6,
        "face button X": 7, "face button Y": 8, "Left Shoulder (L1)": 9, "Right Shoulder (R1)": 10, "Pause": 21,
        "Left Analog Stick right": 11, "Left Analog Stick left": 12, "Left Analog Stick up": 13,
        "Left Analog Stick down": 14, "Right Analog Stick right": 15, "Right Analog Stick left": 16,
        "Right Analog Stick up": 17, "Right Analog Stick down": 18, "Left Trigger (L2)": 19, "Right Trigger (R2)": 20}
WAITING = "Press Key"


def kernel_keys():
    """The kernel's numbers by name."""
    with open("/usr/include/linux/input-event-codes.h") as file:
        return {name: int(number, 0) for name, number in re.findall(r"#define KEY_(\w+)\s+(0x[0-9a-f]+|\d+)", file.read())}


def keys_and_usages():
    """(X key code, usage) of every key of the page."""
    numbers = kernel_keys()
    pairs = [(name, first + i) for first, names in PAGE.items() for i, name in enumerate(names.split()) if name != "-"]
    return [(numbers[name] + 8, usage) for name, usage in [*pairs, *ALSO.items()]]


def shown(usage):
    if 4 <= usage <= 29:
        return chr(usage + 61)
    if 30 <= usage <= 38:
        return chr(usage + 19)
    return NAMES.get(usage, f"Key ({usage})")


class EveryKey(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop(size="800x1200")  # all rows at once
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def start(self, *more):
        name = self.id().rpartition(".")[2]
        self.root = self.desktop.path(name)
        folder = os.path.join(self.root, "var/mobile/Library/Preferences")
        os.makedirs(folder)
        self.file = os.path.join(folder, "com.quorrel.joyvane.plist")
        with open(self.file, "wb") as file:
            plistlib.dump({"controller_type": 6, "JVNKeyboardKeymapKey": {}}, file)
        self.app = App(self.desktop, [PROGRAM, "--root", self.root, "--size", "400x1100", *more],
                       errors=self.desktop.path(name + ".txt"))
        self.addCleanup(self.app.__exit__, None, None, None)
        self.open()
        self.app.take_keyboard()

    def open(self):
        self.app.find("list item", "Configure Keymap").press()
        self.app.find("list item", "D-pad right")

    def leave(self):
        """Back to the page, which is when the keymap is saved; gives back what was saved."""
        self.app.find("push button", re.compile("^Back")).press()
        self.app.find("list item", "Configure Keymap")

        def saved():
            with open(self.file, "rb") as file:
                return file.read(8) == b"bplist00"
        wait_for("the file to be saved", saved)
        with open(self.file, "rb") as file:
            keymap = plistlib.load(file)["JVNKeyboardKeymapKey"]
        # What is saved next time is to be told from this time's.
        with open(self.file, "wb") as file:
            plistlib.dump({"controller_type": 6, "JVNKeyboardKeymapKey": keymap}, file)
        return keymap

    def rows(self):
        """What each row shows, and the name of what has the keyboard."""
        nodes = {node.name: node for node in self.app.nodes(role="list item")}
        focus = [name for name, node in nodes.items() if "focused" in node.states]
        return {name: node.description for name, node in nodes.items()}, focus

    def give_focus(self, row):
        self.app.find("list item", row).focus()
        wait_for(f"{row} to have the keyboard", lambda: self.rows()[1] == [row])

    def wait_shown(self, row, text, focus):
        def now():
            texts, focused = self.rows()
            self.assertEqual(list(texts), list(ROWS), "the editor has gone")
            self.assertEqual(focused, [focus], "the focus has moved")
            return texts.get(row) == text
        wait_for(f"{row} to show {text!r}", now)

    def arm(self, row, focus):
        self.app.find("list item", row).press()
        self.wait_shown(row, WAITING, focus)

    def code(self, verb, code):
        # A digit alone is the key that types it.
        self.desktop.xdotool(verb, code if code > 9 else "Escape")

    def strike(self, code):
        self.code("keydown", code)
        self.code("keyup", code)

    def test_each_key_comes_as_its_usage_and_does_nothing_else(self):
        self.start()
        keys = keys_and_usages()
        self.assertGreater(len(keys), 149)
        focus = "Pause"
        for begin in range(0, len(keys), len(ROWS)):
            self.give_focus(focus)
            batch = dict(zip(ROWS, keys[begin:begin + len(ROWS)]))
            for row, (code, usage) in batch.items():
                with self.subTest(code=code, usage=usage):
                    self.arm(row, focus)
                    self.strike(code)
                    self.wait_shown(row, shown(usage), focus)
            keymap = self.leave()
            for row, (code, usage) in batch.items():
                with self.subTest(code=code, usage=usage, saved=True):
                    self.assertEqual(keymap.get(str(usage)), ROWS[row])
            self.assertEqual(len(set(keymap.values())), len(keymap), "an input has two keys")
            self.open()

    def test_keys_of_no_usage_leave_the_row_waiting(self):
        self.start()
        self.give_focus("Pause")
        self.arm("D-pad up", "Pause")
        known = {code for code, _ in keys_and_usages()}
        unknown = [code for code in range(10, 256) if code not in known]
        self.assertGreater(len(unknown), 60)
        for code in unknown:
            self.strike(code)
        time.sleep(0.3)
        self.wait_shown("D-pad up", WAITING, "Pause")
        self.strike(38)
        self.wait_shown("D-pad up", "A", "Pause")

    def test_the_layout_makes_no_difference(self):
        self.start()
        keys = dict(keys_and_usages())
        numbers = kernel_keys()
        for layout in ("de", "fr", "ru"):
            # Its dead keys, its letters in other places, its letters of another script.
            subprocess.run(["setxkbmap", layout], env=self.desktop.environment, check=True)
            time.sleep(0.2)
            for row, name in zip(ROWS, ("GRAVE", "EQUAL", "Y", "Z", "Q", "A", "M", "1", "LEFTBRACE", "RIGHTALT")):
                with self.subTest(layout=layout, key=name):
                    code = numbers[name] + 8
                    self.give_focus("Pause")
                    self.arm(row, "Pause")
                    self.strike(code)
                    self.wait_shown(row, shown(keys[code]), "Pause")
        subprocess.run(["setxkbmap", "us"], env=self.desktop.environment, check=True)

    def test_a_row_armed_by_the_keyboard_takes_the_keys_that_would_work_the_page(self):
        self.start()
        keys = dict(keys_and_usages())
        numbers = kernel_keys()
        row = "D-pad left"
        self.give_focus(row)
        for name in ("ENTER", "SPACE", "KPENTER", "TAB", "ESC", "UP", "DOWN", "HOME", "END", "PAGEUP", "PAGEDOWN"):
            with self.subTest(key=name):
                self.desktop.key("Return")
                self.wait_shown(row, WAITING, row)
                self.strike(numbers[name] + 8)
                self.wait_shown(row, shown(keys[numbers[name] + 8]), row)
                time.sleep(0.1)
                self.wait_shown(row, shown(keys[numbers[name] + 8]), row)

    def test_a_key_that_is_held_is_taken_until_it_is_up(self):
        self.start()
        row = "D-pad down"
        self.give_focus(row)
        for name, code in (("Down", 116), ("Tab", 23), ("Return", 36)):
            with self.subTest(key=name):
                self.arm(row, row)
                self.code("keydown", code)
                time.sleep(1.2)  # the server repeats a key after 0.66 seconds
                self.code("keyup", code)
                self.wait_shown(row, shown(dict(keys_and_usages())[code]), row)
                time.sleep(0.1)
                self.wait_shown(row, shown(dict(keys_and_usages())[code]), row)
        self.desktop.key("Down")
        wait_for("the focus to move again", lambda: self.rows()[1] == ["face button A"])

    def change_keymap(self, *changes):
        """Other symbols on some keys, as a program that types for the user brings its own; back in the end."""
        shown = self.desktop.environment["DISPLAY"]
        plain = subprocess.run(["xkbcomp", "-w0", "-xkb", shown, "-"], capture_output=True, text=True, check=True,
                               env=self.desktop.environment).stdout
        changed = plain
        for key, symbol in changes:
            changed, count = re.subn(rf"key +<{key}> *{{[^}}]*}};", f"key <{key}> {{ [ {symbol} ] }};", changed)
            self.assertGreater(count, 0, f"there is no key {key}")

        def load(keymap):
            subprocess.run(["xkbcomp", "-w0", "-", shown], input=keymap, text=True, check=True, capture_output=True,
                           env=self.desktop.environment)
        self.addCleanup(load, plain)
        load(changed)

    def test_keys_navigate_by_their_symbols_and_are_captured_by_their_places(self):
        self.start()
        self.give_focus("Pause")
        self.change_keymap(("ESC", "h"), ("AC06", "F20"), ("AC01", "Escape"), ("AC02", "Up"), ("UP", "e"))
        self.desktop.key("h")  # the place of Escape, which types a letter now
        self.strike(111)  # so does that of the upward arrow
        self.strike(39)  # the place of S, which is the upward arrow now
        row = "Right Shoulder (R1)"
        wait_for("the focus to move once, by the symbol", lambda: self.rows()[1] == [row])
        self.arm("D-pad up", row)
        self.strike(38)
        self.wait_shown("D-pad up", "A", row)
        self.arm("D-pad up", row)
        self.desktop.key("h")
        self.wait_shown("D-pad up", "Escape", row)
        self.strike(38)  # the place of A, which is Escape now
        self.app.find("list item", "Configure Keymap")

    def test_a_message_that_the_daemon_is_away_takes_no_key(self):
        self.start()  # without a daemon there is such a message for a few seconds
        self.give_focus("Pause")
        self.arm("D-pad up", "Pause")
        self.assertTrue(self.app.nodes(role="alert"), "the message has gone already")
        self.strike(23)
        self.wait_shown("D-pad up", "Tab", "Pause")

    def test_each_usage_of_the_page_is_spoken_for(self):
        """Nothing of the page is left out but what no key sends."""
        named = {usage for _, usage in keys_and_usages()}
        without_a_key = {
            50,  # the key beside Return on some keyboards; the kernel has one number for it and the backslash
            *range(130, 133),  # locking locks
            134,  # a keypad's equals sign on one old kind of keyboard
            *range(141, 144), *range(149, 155), *range(156, 165),  # further languages, and terminals' keys
            *range(165, 176), *range(222, 224),  # reserved
            *range(176, 182), *range(184, 215), *range(216, 222),  # calculators' keys
        }
        self.assertEqual(set(range(4, 232)) - named, without_a_key)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
