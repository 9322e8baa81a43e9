"""A desktop's settings portal that says what its arguments say: SCHEME CONTRAST [no-accent] [text=FACTOR] [silent]. Each line of
the same kind on its standard input changes that, and tells everybody. A silent one answers nobody.

Says "ready" when it has its name.
"""

import sys

from gi.repository import Gio, GLib

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
INTERFACE = "org.freedesktop.portal.Settings"
SPACE = "org.freedesktop.appearance"
TEXT_SPACE = "org.gnome.desktop.interface"
DESCRIPTION = f"""<node><interface name="{INTERFACE}">
  <method name="ReadAll"><arg type="as" direction="in"/><arg type="a{{sa{{sv}}}}" direction="out"/></method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>"""


def values(words):
    scheme, contrast = map(int, words[:2])
    wanted = {"color-scheme": GLib.Variant("u", scheme), "contrast": GLib.Variant("u", contrast)}
    if "no-accent" not in words:
        wanted["accent-color"] = GLib.Variant("(ddd)", (0.6, 0.2, 0.7))
    return wanted


def text_values(words):
    return {"text-scaling-factor": GLib.Variant("d", float(word.split("=")[1])) for word in words if word.startswith("text=")}


def main():
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    now = values(sys.argv[1:])
    text = text_values(sys.argv[1:])

    def call(_connection, _sender, _path, _interface, _method, _arguments, invocation):
        if "silent" not in sys.argv:
            invocation.return_value(GLib.Variant("(a{sa{sv}})", ({SPACE: now, TEXT_SPACE: text},)))

    def line(_source, _condition):
        words = sys.stdin.readline().split()
        if not words:
            return False
        now.update(values(words))
        text.update(text_values(words))
        bus.emit_signal(None, PATH, INTERFACE, "SettingChanged",
                        GLib.Variant("(ssv)", (SPACE, "color-scheme", now["color-scheme"])))
        return True

    bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0], call)
    Gio.bus_own_name_on_connection(bus, NAME, 0, lambda *_: print("ready", flush=True), None)
    GLib.io_add_watch(0, GLib.IO_IN, line)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
