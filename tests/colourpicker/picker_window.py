#!/usr/bin/env python3
"""The picker alone in a window, used as a user and as assistive technology use it.

picker_window.py JOYVANE_PICKER [PICTURES]
"""

import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "end_to_end"))
import jv_e2e  # noqa: E402

MAP = "Hue and saturation"


def expect(what, actual, expected):
    assert actual == expected, f"{what}: {actual!r}, expected {expected!r}"


class Picker:
    def __init__(self, desktop, app, pictures):
        self.desktop = desktop
        self.app = app
        self.pictures = pictures
        app.window
        app.take_keyboard()

    @property
    def map(self):
        return self.app.find(name=MAP)

    @property
    def slider(self):
        return self.app.find("slider", "Brightness")

    def reported(self):
        """The next colour that the picker reports."""
        return self.app.process.stdout.readline().strip()

    def shows(self, code):
        self.app.find(name="#" + code)

    def tile(self, column, row):
        x, y, *_ = self.map.extents
        return x + column * 16 + 8, y + row * 16 + 8

    def picture(self, name):
        if self.pictures:
            os.makedirs(self.pictures, exist_ok=True)
            self.desktop.picture(os.path.join(self.pictures, name + ".png"))


def dragging_on_the_map_reports_its_last_colour(picker):
    picker.desktop.drag(picker.tile(2, 3), picker.tile(0, 0))
    expect("drag", picker.reported(), "fd0000")
    picker.shows("fd0000")


def tapping_shows_the_colour_and_reports_the_one_before(picker):
    picker.desktop.click(*picker.tile(0, 31))
    expect("tap", picker.reported(), "fd0000")
    picker.app.gone(name="#fd0000")


def dragging_the_slider_is_reported_by_the_next_tap_only(picker):
    x, y, width, height = picker.slider.extents
    middle = y + height / 2
    picker.desktop.drag((x + 12, middle), (x + width + 6, middle))  # the extents are the bar's
    picker.desktop.click(*picker.tile(0, 0))
    darkest = picker.reported()
    expect("red of the darkest", darkest[:2], "66")


def assistive_technology_steps_and_each_step_is_reported(picker):
    slider = picker.slider
    slider.set_value(100)
    picker.reported()
    jv_e2e.wait_for("full brightness", lambda: round(picker.slider.value) == 100)
    expect("range", [round(end) for end in slider.range], [40, 100])
    slider.do("Decrease")
    picker.reported()
    jv_e2e.wait_for("one percent less", lambda: round(picker.slider.value) == 99)
    slider.do("Increase")
    picker.reported()
    jv_e2e.wait_for("one percent more", lambda: round(picker.slider.value) == 100)

    picker.map.do("Far Right")
    expect("a step", picker.reported(), "ff8500")
    picker.shows("ff8500")


def the_slider_stands_inside_the_window(picker):
    x, _, width, _ = picker.slider.extents
    left, _, window, _ = picker.map.extents  # as wide as the window
    assert left < x and x + width < left + window, f"the slider is from {x} to {x + width}"


def arrow_keys_step(picker):
    picker.map.focus()
    picker.desktop.key("Left")
    expect("left", picker.reported(), "ff4200")
    picker.desktop.key("shift+Left")
    expect("far left, cut at the edge", picker.reported(), "ff0000")
    picker.desktop.key("Tab", "Down")
    dimmer = picker.reported()
    expect("one percent dimmer", dimmer, "fc0000")


def resizing_lays_the_picker_out_anew(picker):
    picker.desktop.xdotool("windowsize", "--sync", picker.app.window, 500, 700)
    jv_e2e.wait_for("the wider map", lambda: picker.map.extents[2:] == (496, 592))


def main():
    pictures = sys.argv[2] if len(sys.argv) > 2 else None
    with jv_e2e.Desktop() as desktop:
        command = [sys.argv[1], "--size", "375x623", "--scale", "1", "--color", "004EFD"]
        with desktop.start(command) as app:
            picker = Picker(desktop, app, pictures)
            picker.shows("004efd")
            for step in (
                dragging_on_the_map_reports_its_last_colour,
                tapping_shows_the_colour_and_reports_the_one_before,
                dragging_the_slider_is_reported_by_the_next_tap_only,
                assistive_technology_steps_and_each_step_is_reported,
                the_slider_stands_inside_the_window,
                arrow_keys_step,
                resizing_lays_the_picker_out_anew,
            ):
                step(picker)
                picker.picture(step.__name__)
                print("ok:", step.__name__.replace("_", " "))
            expect("exit code", app.close(), 0)


main()
