"""Each check lets a sound tree pass and finds what is planted in it."""

import os
import subprocess
import sys
import tempfile
import unittest

SCRIPTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts")


class Tree:
    """A small project in a temporary folder."""

    def __init__(self, files):
        self.folder = tempfile.TemporaryDirectory()
        for path, text in files.items():
            whole = os.path.join(self.folder.name, path)
            os.makedirs(os.path.dirname(whole), exist_ok=True)
            with open(whole, "w", encoding="utf-8") as file:
                file.write(text)

    def check(self, script):
        result = subprocess.run([sys.executable, os.path.join(SCRIPTS, script), self.folder.name],
                                capture_output=True, text=True)
        self.folder.cleanup()
        return result.returncode, result.stdout + result.stderr


class Checks(unittest.TestCase):
    def assert_sound(self, script, files):
        code, output = Tree(files).check(script)
        self.assertEqual(code, 0, output)

    def assert_found(self, script, files, *parts):
        code, output = Tree(files).check(script)
        self.assertEqual(code, 1, output)
        for part in parts:
            self.assertIn(part, output)


class Includes(Checks):
    def test_what_the_arrows_allow_passes(self):
        self.assert_sound("check-includes", {
            "platform/a.h": "#include <memory>\n#include \"platform/b.h\"\n",
            "settings/a.h": "#include \"ledcolour/b.h\"\n#include <cstdint>\n",
            "ledcolour/a.h": "#include \"colourpicker/b.h\"\n",
            "kit/seat.h": "#include \"platform/a.h\"\n",
            "kit/uikit/a.cpp": "#include \"kit/quartz/b.h\"\n#include \"kit/seat.h\"\n",
            "kit/foundation/a.cpp": "#include <expat.h>\n",
            "system/files/a.cpp": "#include <unistd.h>\n#include \"kit/dispatch/b.h\"\n",
            "desktop/window/a.cpp": "#include <QWindow>\n#include <unistd.h>\n#include \"kit/uikit/b.h\"\n",
            "app/a.cpp": "#include \"desktop/window/a.h\"\n#include \"kit/uikit/Touches.h\"\n",
            "services/jvnd/a.cpp": "#include \"daemonlink/JVNControlFrame.h\"\n#include \"services/bluetooth/a.h\"\n",
            "tests/keymap/a.cpp": "#include \"keymap/a.h\"\n#include <gtest/gtest.h>\n",
        })

    def test_each_wrong_include_is_found_with_its_line(self):
        for path, include in {
            "platform/a.h": '"desktop/window/a.h"',
            "platform/b.h": "<QString>",
            "colourpicker/a.h": '"ledcolour/b.h"',
            "keymap/a.cpp": "<unistd.h>",
            "daemonlink/a.cpp": "<sys/socket.h>",
            "ledcolour/a.cpp": "<QtGui/QColor>",
            "settings/a.cpp": '"colourpicker/b.h"',
            "kit/seat.h": '"kit/quartz/pixels.h"',
            "kit/foundation/a.cpp": '"kit/dispatch/b.h"',
            "kit/quartz/a.cpp": '"kit/uikit/b.h"',
            "kit/quartz/b.cpp": "<expat.h>",
            "kit/uikit/a.cpp": '"kit/controllers/b.h"',
            "kit/alerts/a.cpp": '"kit/settings_framework/b.h"',
            "kit/tables/a.cpp": '"system/files/b.h"',
            "kit/dispatch/a.cpp": "<unistd.h>",
            "system/files/a.cpp": '"kit/uikit/b.h"',
            "system/socket/a.cpp": '"daemonlink/JVNControlFrame.h"',
            "system/bus/a.cpp": "<QString>",
            "desktop/window/a.cpp": '"app/b.h"',
            "services/jvnd/a.cpp": '"desktop/window/b.h"',
            "services/jvnd/b.cpp": '"daemonlink/exchanges.h"',
            "app/a.cpp": "<QGuiApplication>",
            "tests/keymap/a.cpp": "<QImage>",
            "kit/quartz/c.cpp": '"neighbour.h"',
            "elsewhere/a.h": "<vector>",
        }.items():
            with self.subTest(path=path, include=include):
                self.assert_found("check-includes", {path: f"\n#include {include}\n"}, f"{path}:2: ")


    def test_a_circle_of_rooms_is_found_with_the_files_that_make_it(self):
        self.assert_found("check-includes", {
            "system/bus/a.h": "#include \"system/notify/b.h\"\n",
            "system/notify/b.h": "#include \"system/files/c.h\"\n",
            "system/files/c.h": "#include \"system/bus/a.h\"\n",
        }, "a circle: ", "system/bus/a.h:1", "system/notify/b.h:1", "system/files/c.h:1")


class Headers(Checks):
    def test_a_header_that_brings_what_it_needs_passes(self):
        self.assert_sound("check-headers", {
            "platform/a.h": "#pragma once\n#include <string>\ninline std::string a() { return {}; }\n",
            "keymap/a.h": "#pragma once\n#include \"platform/a.h\"\ninline std::string b() { return a(); }\n",
        })

    def test_a_header_that_leans_on_who_includes_it_is_found(self):
        self.assert_found("check-headers", {"platform/a.h": "#pragma once\ninline std::string a() { return {}; }\n"},
                          "platform/a.h does not compile by itself")

    def test_the_toolkit_is_out_of_reach_of_the_logic(self):
        self.assert_found("check-headers", {"keymap/a.h": "#pragma once\n#include <QString>\n"}, "keymap/a.h")


class Words(Checks):
    def test_a_tree_that_gives_its_own_reasons_passes(self):
        self.assert_sound("check-words", {"a.cpp": "// A part of 1.2 seconds, for the PSSpecifier\n"})

    def test_each_word_is_found_in_a_file_and_in_a_name(self):
        for word in ("Specifi" + "cation", "spec" + ".md", "the " + "spec", "Pa" + "rt 1.2", "Pa" + "rts 3.x"):
            with self.subTest(word=word):
                self.assert_found("check-words", {"docs/a.txt": f"as {word} says\n"}, "docs/a.txt:1")
        self.assert_found("check-words", {"docs/spec" + ".md": "\n"}, "the file's name")

    def test_a_commit_message_is_read_too(self):
        tree = Tree({"a.txt": "a\n"})
        git = ["git", "-C", tree.folder.name, "-c", "user.name=a", "-c", "user.email=a@example.com"]
        subprocess.run([*git, "init", "-q"], check=True)
        subprocess.run([*git, "add", "."], check=True)
        subprocess.run([*git, "commit", "-qm", "Do it", "-m", "As Pa" + "rt 4.1 has it"], check=True)
        code, output = tree.check("check-words")
        self.assertEqual(code, 1, output)
        self.assertIn("a commit message", output)


class Format(Checks):
    STYLE = "BasedOnStyle: LLVM\n"

    def test_formatted_source_passes(self):
        self.assert_sound("check-format", {".clang-format": self.STYLE, "a.cpp": "int a = 1;\n"})

    def test_other_source_is_found(self):
        self.assert_found("check-format", {".clang-format": self.STYLE, "a.cpp": "int  a=1 ;\n"}, "a.cpp")


class Exports(Checks):
    def exports(self, listed):
        with tempfile.TemporaryDirectory() as folder:
            source, module, names = (os.path.join(folder, name) for name in ("a.cpp", "a.so", "list"))
            with open(source, "w", encoding="utf-8") as file:
                file.write('extern "C" int one() { return 1; }\nextern "C" int two() { return 2; }\n')
            with open(names, "w", encoding="utf-8") as file:
                file.write("# what others call\n" + listed)
            subprocess.run(["g++", "-shared", "-fPIC", source, "-o", module], check=True)
            result = subprocess.run([sys.executable, os.path.join(SCRIPTS, "check-exports"), module, names],
                                    capture_output=True, text=True)
            return result.returncode, result.stdout + result.stderr

    def test_the_listed_names_pass(self):
        self.assertEqual(self.exports("one\ntwo\n")[0], 0)

    def test_a_name_too_many_and_a_name_too_few_are_found(self):
        code, output = self.exports("one\nthree\n")
        self.assertEqual(code, 1)
        self.assertIn("two is exported", output)
        self.assertIn("three is not exported", output)


class Hardening(unittest.TestCase):
    SOURCE = """#include <cstring>
#include <vector>
std::vector<char> all(100);
int main(int count, char** words) { char line[64]; std::strcpy(line, words[0]); return all[count] + line[0]; }
"""
    GUARDS = ["-O1", "-D_FORTIFY_SOURCE=2", "-fPIE", "-pie", "-fstack-protector-strong", "-D_GLIBCXX_ASSERTIONS",
              "-Wl,-z,relro", "-Wl,-z,now", "-Wl,-z,noexecstack", "-Wl,-rpath,$ORIGIN/../lib/joyvane"]

    def check(self, without="", also=(), source=SOURCE):
        with tempfile.TemporaryDirectory() as folder:
            program = os.path.join(folder, "program")
            options = [option for option in self.GUARDS if option != without]
            subprocess.run(["g++", "-x", "c++", "-", "-o", program, *options, *also], input=source, text=True, check=True)
            result = subprocess.run([sys.executable, os.path.join(SCRIPTS, "check-hardening"), program],
                                    capture_output=True, text=True)
            return result.returncode, result.stdout + result.stderr

    def test_a_program_with_every_guard_passes(self):
        code, output = self.check()
        self.assertEqual(code, 0, output)

    def test_each_missing_guard_is_found(self):
        for without, also, found in [
                ("-pie", ["-no-pie"], "not position-independent"),
                ("-fstack-protector-strong", ["-fno-stack-protector"], "without stack protector"),
                ("-D_GLIBCXX_ASSERTIONS", [], "without checked containers"),
                ("-D_FORTIFY_SOURCE=2", [], "without fortified calls"),
                ("-Wl,-z,relro", ["-Wl,-z,norelro"], "tables stay writable"),
                ("-Wl,-z,now", ["-Wl,-z,lazy"], "tables stay writable"),
                ("-Wl,-z,noexecstack", ["-Wl,-z,execstack"], "executable stack"),
                ("-Wl,-rpath,$ORIGIN/../lib/joyvane", ["-Wl,-rpath,$ORIGIN::/usr/local/lib"], 'libraries in "/usr/local/lib"'),
                ("-Wl,-rpath,$ORIGIN/../lib/joyvane", ["-Wl,-rpath,$ORIGIN::/usr/local/lib"], 'libraries in ""')]:
            with self.subTest(without=without, also=also):
                code, output = self.check(without, also)
                self.assertEqual(code, 1, output)
                self.assertIn(found, output)

    def test_a_name_that_nothing_has_is_found(self):
        code, output = self.check(source=self.SOURCE + "void nobody(); void call() { nobody(); }\n", without="-pie",
                                  also=["-shared", "-fPIC"])
        self.assertEqual(code, 1, output)
        self.assertIn("needs _Z6nobodyv, which nothing has", output)

    def test_the_table_shows_what_a_file_has(self):
        def cells(*options):
            with tempfile.TemporaryDirectory() as folder:
                program = os.path.join(folder, "program")
                subprocess.run(["g++", "-x", "c++", "-", "-o", program, *options], input=self.SOURCE, text=True, check=True)
                said = subprocess.run([sys.executable, os.path.join(SCRIPTS, "check-hardening"), "--table", program],
                                      capture_output=True, text=True).stdout.splitlines()
                names, _, values = ([cell.strip() for cell in line.split("|")[1:-1]] for line in said[:3])
                return dict(zip(names, values))
        hard, soft = cells(*self.GUARDS), cells("-O1", "-no-pie", "-Wl,-z,lazy", "-Wl,-z,execstack", "-fno-stack-protector")
        for name, has, has_not in [("position-independent", "PIE", "no"), ("read-only relocations", "full, at the start", "no"),
                                   ("stack protector", "yes", "nothing to guard"),
                                   ("checked containers", "yes", "nothing to guard"), ("executable stack", "no", "yes"),
                                   ("run path", "`$ORIGIN/../lib/joyvane`", "none"), ("undefined names", "none", "none")]:
            with self.subTest(name=name):
                self.assertEqual((hard[name], soft[name]), (has, has_not))
        self.assertRegex(hard["fortified"], "[1-9] functions")

    def test_of_a_folder_every_program_and_library_is_looked_at(self):
        with tempfile.TemporaryDirectory() as folder:
            def check():
                result = subprocess.run([sys.executable, os.path.join(SCRIPTS, "check-hardening"), folder],
                                        capture_output=True, text=True)
                return result.returncode, result.stdout + result.stderr

            os.makedirs(os.path.join(folder, "lib/joyvane"))
            with open(os.path.join(folder, "text"), "w") as file:
                file.write("no program")
            self.assertEqual(check()[0], 2, "a folder without programs proves nothing")

            # The program itself has nothing to guard; the library that it needs has.
            library = os.path.join(folder, "lib/joyvane/libguarded.so")
            subprocess.run(["g++", "-x", "c++", "-", "-o", library, *self.GUARDS, "-fPIC", "-shared", "-Wl,-soname,libguarded.so"],
                           input=self.SOURCE.replace("main", "guarded"), text=True, check=True)
            program = os.path.join(folder, "program")
            build = ["g++", "-x", "c++", "-", "-o", program, *self.GUARDS, "-x", "none", library]
            subprocess.run(build, input="int guarded(int, char**); int main() { return guarded(0, nullptr); }", text=True,
                           check=True)
            code, output = check()
            self.assertEqual(code, 0, output)
            self.assertIn("2 built files", output)

            subprocess.run([*build, "-Wl,-z,execstack"], input="int guarded(int, char**); int main() { return 0; }",
                           text=True, check=True)
            code, output = check()
            self.assertEqual(code, 1, output)
            self.assertIn("program has an executable stack", output)

    def test_a_name_for_tests_among_the_exports_is_found(self):
        code, output = self.check(also=["-rdynamic"], source=self.SOURCE + "void forgetEverythingForTests() {}\n")
        self.assertEqual(code, 1, output)
        self.assertIn("forgetEverythingForTests(), which is for tests", output)


if __name__ == "__main__":
    unittest.main(verbosity=2)
