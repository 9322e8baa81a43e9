"""The rows and the table of ./bench."""

import os
import unittest

import history
from table import Row, figure, google_benchmark, key_values, render


class Limits(unittest.TestCase):
    def test_the_strictest_limit_counts(self):
        row = Row("drag", "ms", ours=1.0, bare=1.0, peer=1.5, most_bare=1.3, most_peer=0.6)

        self.assertAlmostEqual(row.limit, 0.9)
        self.assertEqual(row.verdict, "MISSED")

    def test_a_figure_at_its_limit_keeps_it(self):
        self.assertEqual(Row("idle", "", ours=0, most=0).verdict, "kept")
        self.assertEqual(Row("idle", "", ours=1, most=0).verdict, "MISSED")

    def test_without_the_other_figure_there_is_no_limit(self):
        row = Row("frame", "ms", ours=20, most_bare=1.25)

        self.assertIsNone(row.limit)
        self.assertEqual(row.verdict, "")

    def test_what_was_not_measured_says_why(self):
        row = Row("frame", "ms", problem="no display")

        self.assertFalse(row.is_missed)
        self.assertEqual(row.verdict, "not measured: no display")


class Table(unittest.TestCase):
    def test_every_row_has_its_figures_under_their_heads(self):
        text = render([
            Row("first frame", "ms", 20.04, 16, "empty window", 40, "dialog", most_bare=1.25),
            Row("a longer name than that", "us", 1234.5, most=50_000),
            Row("broken", "", problem="it is gone"),
        ]).splitlines()

        self.assertEqual(len(text), 5)
        self.assertLess(text[0].index("ours"), text[0].index("limit"))
        self.assertEqual(text[2].split("  ")[0], "first frame")
        self.assertIn("20.0 ms", text[2])
        self.assertIn("1.25 x", text[2])
        self.assertIn("empty window", text[2])
        self.assertIn("0.50 x", text[2])
        self.assertTrue(text[2].endswith("MISSED"))
        self.assertIn("1234 us", text[3])
        self.assertTrue(text[3].endswith("kept"))
        self.assertTrue(text[4].endswith("not measured: it is gone"))

    def test_figures_have_three_digits_and_counts_have_no_fraction(self):
        self.assertEqual(figure(1.234, "ms"), "1.23 ms")
        self.assertEqual(figure(12.34, "ms"), "12.3 ms")
        self.assertEqual(figure(1234.5, "us"), "1234 us")
        self.assertEqual(figure(3, ""), "3")
        self.assertEqual(figure(None, "ms"), "-")


class Reports(unittest.TestCase):
    REPORT = {"benchmarks": [
        {"name": "write/16", "run_name": "write/16", "run_type": "iteration", "real_time": 9, "time_unit": "ms"},
        {"name": "write/16_median", "run_name": "write/16", "aggregate_name": "median", "real_time": 2,
         "cpu_time": 1.5, "time_unit": "ms"},
        {"name": "flush/real_time", "run_name": "flush/real_time", "real_time": 500, "time_unit": "ns"},
        {"name": "broken", "run_name": "broken", "error_occurred": True, "real_time": 0, "time_unit": "us"},
    ]}

    def test_the_median_is_read_in_microseconds(self):
        self.assertEqual(google_benchmark(self.REPORT, "write/16"), 2000)
        self.assertEqual(google_benchmark(self.REPORT, "write/16", "cpu_time"), 1500)
        self.assertEqual(google_benchmark(self.REPORT, "flush"), 0.5)

    def test_a_benchmark_that_failed_or_is_missing_is_no_figure(self):
        for name in ("broken", "absent"):
            with self.assertRaises(ValueError):
                google_benchmark(self.REPORT, name)

    def test_a_line_of_results_is_read_by_name(self):
        self.assertEqual(key_values("exchange ratio=1.10 ours_us=12.5"), {"ratio": 1.1, "ours_us": 12.5})


class History(unittest.TestCase):
    ROWS = [Row("first frame, Joyvane's page", "ms", ours=30, bare=20), Row("keymap load", "us", ours=2, peer=20),
            Row("drag step on the colour field", "ms", problem="no display")]
    DOCUMENT = "\n".join(["# Figures", "", history.MARK, "", *history.head(), ""])

    def test_a_release_has_a_cell_for_each_column(self):
        line = history.line("1.0", "2030-01-02", "4 x Processor", self.ROWS)

        self.assertEqual(line.count("|"), history.head()[0].count("|"))
        self.assertTrue(line.startswith("| 1.0 | 2030-01-02 | 4 x Processor | 30.0 ms (1.50 x) | - |"), line)
        self.assertIn("| 2.00 us (0.10 x) |", line)

    def test_the_newest_release_comes_first_and_replaces_its_own_line(self):
        one, two = (history.line(release, "2030-01-02", "m", self.ROWS) for release in ("1.0", "2.0"))
        text = history.add(history.add(self.DOCUMENT + "\nText after it.\n", one), two)
        self.assertEqual(text, self.DOCUMENT + two + "\n" + one + "\n\nText after it.\n")

        again = history.line("2.0", "2031-01-02", "m", self.ROWS)
        self.assertEqual(history.add(text, again), self.DOCUMENT + again + "\n" + one + "\n\nText after it.\n")

    def test_a_document_with_other_columns_is_left_alone(self):
        with self.assertRaises(ValueError):
            history.add("# Figures\n", history.line("1.0", "2030-01-02", "m", self.ROWS))

    def test_the_document_of_this_project_takes_a_line(self):
        path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "docs", "performance.md")
        with open(path, encoding="utf-8") as file:
            text = file.read()

        line = history.line("999", "2030-01-02", history.machine(), self.ROWS)
        self.assertIn(line, history.add(text, line))


if __name__ == "__main__":
    unittest.main()
