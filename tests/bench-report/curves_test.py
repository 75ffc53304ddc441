#!/usr/bin/env python3
"""Tests that curves are drawn, and drawn the same each time. Needs python3-matplotlib."""

import tempfile
import unittest
from pathlib import Path
from xml.etree import ElementTree

import support  # noqa: F401 the path of the report's modules

import curves
from goals import Curve

LINES = {
    "ours": [(16, 9.0, 10.0, 11.0), (1024, 12.0, 12.5, 13.0), (65536, 20.0, 21.0, 22.0)],
    "boost::dynamic_bitset": [(16, 14.0, 15.0, 16.0), (1024, 90.0, 95.0, 99.0),
                              (65536, 4e3, 5e3, 6e3)],
}


def curve(**changes):
    keys = {"file": "f", "title": "Free & allocate", "x": "entries", "subject": "a", "who": [],
            "sizes": {}, "path": "x"}
    return Curve(**{**keys, **changes})


class Drawing(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = Path(folder.name) / "f.svg"

    def draw(self, which, lines):
        curves.draw(which, lines, self.path)
        return self.path.read_text(encoding="utf-8")

    def texts(self, image):
        root = ElementTree.fromstring(image)
        return ["".join(node.itertext()) for node in root.iter("{http://www.w3.org/2000/svg}text")]

    def test_the_image_names_its_lines_axes_and_unit(self):
        texts = self.texts(self.draw(curve(), LINES))
        for text in ("Free & allocate", "entries", "ns", "ours", "boost::dynamic_bitset", "65,536"):
            self.assertIn(text, texts)

    def test_the_same_figures_make_the_same_bytes_without_a_date(self):
        image = self.draw(curve(), LINES)
        self.assertEqual(self.draw(curve(), LINES), image)
        self.assertNotIn("<dc:date>", image)

    def test_other_figures_make_another_image(self):
        image = self.draw(curve(), LINES)
        self.assertNotEqual(self.draw(curve(), {"ours": LINES["ours"]}), image)

    def test_sizes_from_none_and_a_counter(self):
        texts = self.texts(self.draw(curve(counter="each", unit="bytes"),
                                     {"ours": [(0, 9.0, 10.0, 11.0), (64, 12.0, 12.5, 13.0)]}))
        for text in ("bytes", "0", "64"):
            self.assertIn(text, texts)

    def test_more_lines_than_colours(self):
        lines = {f"who{number}": LINES["ours"] for number in range(12)}
        texts = self.texts(self.draw(curve(), {**lines, "ours": LINES["ours"]}))
        self.assertTrue({"ours", *lines} <= set(texts))


class Axes(unittest.TestCase):
    def test_units(self):
        for smallest, unit in ((0.5, "ns"), (999, "ns"), (1000, "us"), (3e6, "ms"), (2e9, "s")):
            self.assertEqual(curves.unit_of_times(smallest), unit)

    def test_scales(self):
        for values, scale in (([1, 9], "linear"), ([1, 10], "log"), ([0, 64], "linear")):
            self.assertEqual(curves.scale_of(values), scale)


if __name__ == "__main__":
    unittest.main()
