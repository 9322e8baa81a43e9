"""What a screen reader hears: the events of the accessibility bus, recorded by a process of their own.

A ScreenReader listens from its creation to the end of its Desktop. Called as a program it is that process: it writes
"listening", and then each event as a line of JSON: its type, its first number, what came with it, and the node it is of
as it answers by then, with nulls where it has gone.

    screen_reader.py EVENT...
"""

import json
import re
import sys

from jv_e2e import wait_for

EVENTS = ("object:announcement", "object:children-changed", "object:property-change:accessible-name",
          "object:property-change:accessible-value", "object:state-changed")


class ScreenReader:
    def __init__(self, desktop):
        self.path = desktop.path("heard.txt")
        with open(self.path, "w") as log:
            desktop._spawn([sys.executable, __file__, *EVENTS], stdout=log)
        self.past = 0
        wait_for("the recorder", lambda: self._lines()[:1] == ["listening"])

    def _lines(self):
        with open(self.path) as log:
            return [line.rstrip("\n") for line in log if line.endswith("\n")]

    def forget(self):
        """What was heard until now is not asked for any more."""
        self.past = len(self._lines())

    def heard(self, kind, name=None, value=None, **fields):
        """The first such event that is not forgotten, once it has come; `name` and `value` are found in the event's own
        where they are patterns."""
        def fits(wanted, there):
            if isinstance(wanted, re.Pattern):
                return isinstance(there, str) and wanted.search(there)
            return wanted is None or wanted == there

        def found():
            for line in self._lines()[max(self.past, 1):]:
                event = json.loads(line)
                if (event["type"] == "object:" + kind and fits(name, event["name"]) and fits(value, event["value"])
                        and all(event[field] == wanted for field, wanted in fields.items())):
                    return event
            return None
        return wait_for(f"the event {kind} of {name!r} with {value!r} {fields}", found)


def main():
    import gi

    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi

    def described(node):
        try:
            return {"role": node.get_role_name(), "name": node.get_name()}
        except Exception:  # it has gone
            return {"role": None, "name": None}

    def heard(event):
        value = event.any_data
        if isinstance(value, Atspi.Accessible):
            value = described(value)["name"]
        elif not isinstance(value, (str, int, float, type(None))):
            value = str(value)
        line = {"type": event.type, "detail": event.detail1, "value": value}
        print(json.dumps({**line, **described(event.source)}), flush=True)

    Atspi.set_timeout(20000, 20000)  # on a busy machine an answer takes longer than a person's reader would wait
    listener = Atspi.EventListener.new(heard)
    for kind in sys.argv[1:]:
        listener.register(kind)
    print("listening", flush=True)
    Atspi.event_main()


if __name__ == "__main__":
    main()
