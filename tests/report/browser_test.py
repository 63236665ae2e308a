#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0

"""usage: browser_test.py COMMAND [--files FOLDER] [--pictures FOLDER] [--validator PROGRAM] [unittest's own options]

Opens the pages that `COMMAND report` makes in headless Chromium: of every sample, of hostile inventories and, with
--files, of every CDS file and database in a folder. With --pictures, what was rendered is kept in one. With --validator,
html-validate has to find nothing in the pages.
"""

import argparse
import base64
import json
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest
from xml.sax.saxutils import escape

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.wait import WebDriverWait

SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "samples"
TIME = "2026-11-22T12:00:00Z"
SERVER = SAMPLES / "two-socket-server.xml"
OPTIONS = argparse.Namespace()

HOSTILE = {
    "markup": "<script>alert(1)</script><img src=x onerror=alert(1)>&lt;b&gt;&amp;",
    "quotes": "\"'` onmouseover=\"alert(1)\" '",
    "script-end": "</script><!--<script>]]>--></style></title></textarea>",
    "directions": "\u202eabc\u2066def\u2069\u200f\u05d0\u061c",
    "long": "W" * 10000,
    "template": "{{name}}{{{name}}}{{#rows}}{{/rows}}",
}


def run(*arguments, folder=None):
    command = [OPTIONS.command, *map(str, arguments)]
    return subprocess.run(command, cwd=folder, check=True, capture_output=True).stdout.decode()


def server_with(names):
    """The server in which every locator, designation and model has that text at its end."""
    named = "Socket Designation|Device Locator|Bank Locator|Slot Designation|Processor Version|Serial Number|Part Number"
    pattern = re.compile(rf"(<name>(?:{named})</name>\s*<text_value>)([^<]*)")
    return pattern.sub(lambda found: found[1] + found[2] + escape(names), SERVER.read_text())


def printable(text):
    """As the command shows text: on one line, without marks that turn the direction of writing."""
    def shown(found):
        code = ord(found[0])
        known = {9: r"\t", 10: r"\n", 13: r"\r"}
        return known.get(code, f"\\x{code:02x}" if code < 0x100 else f"\\u{code:04x}")
    return re.sub("[\x00-\x1f\x7f-\x9f\u202a-\u202e\u2066-\u2069]", shown, text)


def address(row, device, function):
    def digits(column, width):
        return "-" if row[column] is None else f"{row[column]:0{width}x}"
    return f"{digits('SegNo', 4)}:{digits('BusNo', 2)}:{digits(device, 2)}.{digits(function, 1)}"


PLACES = {
    "processors": lambda row: row["Socket"] or "",
    "memory": lambda row: row["DevLocator"] or "",
    "bridges": lambda row: address(row, "DevNo", "FunNo"),
    "devices": lambda row: address(row, "DeviceNo", "FunctionNo"),
}


def expected_parts(rows):
    """Each row of show's JSON with the id, the kind and the place that its element has."""
    counts = {}
    for kind, place_of in PLACES.items():
        for row in rows[kind]:
            place = place_of(row)
            wanted = printable(place).replace(" ", "_") or "unnamed"
            counts[wanted] = counts.get(wanted, 0) + 1
            yield (wanted if counts[wanted] == 1 else f"{wanted}~{counts[wanted]}"), kind, place, row


class Page(unittest.TestCase):
    """A browser with one page at a time."""

    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="report."))
        options = webdriver.ChromeOptions()
        options.binary_location = shutil.which("chromium")
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                         "--window-size=1280,900", "--force-device-scale-factor=1",
                         f"--user-data-dir={cls.folder / 'profile'}"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        cls.browser = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
        cls.browser.execute_cdp_cmd("Network.enable", {})

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()
        shutil.rmtree(cls.folder, ignore_errors=True)

    def setUp(self):
        self.pages = self.folder / "pages"
        shutil.rmtree(self.pages, ignore_errors=True)
        self.pages.mkdir()

    def tearDown(self):
        self.emulate(width=1280)
        self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": False})

    def make(self, *arguments):
        path = self.folder / "page.html"
        path.write_text(run("report", *arguments, "--at", TIME, folder=self.folder), encoding="utf-8")
        return path

    def open(self, *arguments, fragment=""):
        path = self.make(*arguments)
        self.browser.get("about:blank")
        for kind in ("browser", "performance"):
            self.browser.get_log(kind)
        self.browser.get(path.as_uri() + fragment)

    def script(self, text, *arguments):
        return self.browser.execute_script(text, *arguments)

    def emulate(self, width, dark=False, media=""):
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "media": media,
            "features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})

    def keep(self, name, data):
        if OPTIONS.pictures:
            pathlib.Path(OPTIONS.pictures, name).write_bytes(data)

    def keep_picture(self, name, whole=True):
        taken = self.browser.execute_cdp_cmd("Page.captureScreenshot", {"captureBeyondViewport": whole})
        self.keep(name + ".png", base64.b64decode(taken["data"]))

    def press(self, *keys):
        webdriver.ActionChains(self.browser).send_keys(*keys).perform()

    def copy_and_paste_keys(self):
        webdriver.ActionChains(self.browser).key_down(Keys.CONTROL).send_keys("v").key_up(Keys.CONTROL).perform()

    # Nothing but the page itself is asked for, and the browser has nothing to complain of.
    def check_quiet(self):
        complaints = [entry["message"] for entry in self.browser.get_log("browser")]
        self.assertEqual([], complaints)
        asked = []
        for entry in self.browser.get_log("performance"):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent":
                asked.append(message["params"]["request"]["url"].split("#")[0])
        outside = [url for url in asked if not url.startswith("data:") and not url.startswith(self.folder.as_uri())]
        self.assertEqual([], outside)
        self.assertEqual(1, sum(url.startswith("file:") for url in asked))

    # Each row of `show` is at its id, with all its values, and once more for programs.
    def check_rows(self, *arguments):
        rows = json.loads(run("show", *arguments, "--format", "json"))
        parts = list(expected_parts(rows))
        found = self.script("""
            return arguments[0].map((id) => {
                const part = document.getElementById(id);
                if (part === null) return null;
                const values = part.querySelector(":scope > .values, :scope > .more > .values");
                const told = {};
                for (const line of values.children) {
                    const small = line.querySelector("small");
                    told[line.querySelector("dt").textContent] =
                        (small === null ? line.querySelector("dd") : small).textContent;
                }
                return {kind: part.dataset.kind, place: part.dataset.place, told};
            })""", [part[0] for part in parts])
        for (identity, kind, place, row), part in zip(parts, found):
            self.assertIsNotNone(part, identity[:100])
            self.assertEqual((kind, printable(place)), (part["kind"], part["place"]))
            values = {name: printable(str(value)) for name, value in row.items() if value is not None}
            self.assertEqual(values, {name: told for name, told in part["told"].items() if name in row}, identity[:100])
        document = self.document()
        self.assertEqual({kind: rows[kind] for kind in PLACES}, {kind: document[kind] for kind in PLACES})
        return len(parts)

    def document(self):
        return json.loads(self.script("return document.getElementById('inventory').textContent"))

    # What was left out has an element with its reason, and the ids are all different.
    def check_left_out(self):
        for part in self.document()["left_out"] or []:
            reason = self.script("const part = document.getElementById(arguments[0]);"
                                 "return part && part.dataset.reason", part["id"])
            self.assertEqual(part["code"], reason, part["id"][:100])
        ids = self.script("return [...document.querySelectorAll('[id]')].map((element) => element.id)")
        self.assertEqual(len(ids), len(set(ids)))
        broken = self.script("""return [...document.querySelectorAll("a")].map((link) => link.getAttribute("href"))
            .filter((href) => document.getElementById(decodeURIComponent(href.slice(1))) === null)""")
        self.assertEqual([], broken)

    def check_fits(self, width):
        self.emulate(width)
        self.assertLessEqual(self.script("return document.documentElement.scrollWidth"), width)

    def check_page(self, *arguments):
        self.open(*arguments)
        self.check_quiet()
        self.check_rows(*arguments)
        self.check_left_out()
        self.check_fits(360)
        self.check_fits(1280)
        shutil.copy(self.folder / "page.html", self.pages / f"{len(list(self.pages.iterdir())):03}.html")

    # All pages that were checked in a test, at once, because the validator takes long to start.
    def check_valid(self):
        pages = sorted(self.pages.iterdir())
        self.assertNotEqual([], pages)
        if OPTIONS.validator:
            settings = pathlib.Path(__file__).with_name("html-validate.json")
            told = subprocess.run([OPTIONS.validator, "--config", settings, "--formatter", "text", *pages],
                                  capture_output=True, text=True, check=False)
            self.assertEqual((0, ""), (told.returncode, (told.stdout + told.stderr)[:3000]))


class Samples(Page):
    def test_every_sample_has_a_page(self):
        for file in sorted(SAMPLES.glob("*.xml")):
            with self.subTest(file=file.name):
                self.check_page(file)
        self.check_valid()

    def test_every_file_of_the_folder_has_a_page(self):
        if OPTIONS.files is None:
            self.skipTest("no folder is named by --files")
        files = sorted(path for path in pathlib.Path(OPTIONS.files).iterdir() if path.suffix in (".xml", ".db"))
        self.assertNotEqual([], files)
        for file in files:
            with self.subTest(file=file.name):
                self.check_page(file)
        self.check_valid()

    def test_a_database_has_a_page_that_says_what_it_does_not_know(self):
        database = self.folder / "inventory.db"
        run("load", SERVER, "--database", database)
        self.check_page(database)
        self.check_valid()
        self.assertIn("what was left out is not known", self.script("return document.body.textContent"))


class Hostile(Page):
    def test_every_name_is_nothing_but_text(self):
        for name, text in HOSTILE.items():
            with self.subTest(name=name):
                file = self.folder / f"{name}.xml"
                file.write_text(server_with(text), encoding="utf-8")
                self.check_page(file)
                self.assertEqual([1, 2], [self.script("return document.images.length + 1"),
                                          self.script("return document.scripts.length")])
        self.check_valid()

    def test_bytes_that_no_xml_file_has_are_text_too(self):
        database = self.folder / "hostile.db"
        run("load", SERVER, "--database", database)
        with sqlite3.connect(database) as connection:
            connection.execute("UPDATE Memory SET DevLocator = CAST(x'410042' AS TEXT) WHERE Id % 2 = 0")
            connection.execute("UPDATE Memory SET BankLocator = CAST(x'1b5b316d0dff0c' AS TEXT)")
            connection.execute("UPDATE Processor SET Socket = NULL, Version = ''")
        connection.close()
        self.check_page(database)
        self.check_valid()

    def test_changes_are_text_too(self):
        file = self.folder / "changed.xml"
        file.write_text(server_with(HOSTILE["script-end"]), encoding="utf-8")
        self.open(file, "--against", SERVER)
        self.check_quiet()
        shutil.copy(self.folder / "page.html", self.pages)
        self.check_valid()
        self.assertEqual(2, self.script("return document.scripts.length"))


class Use(Page):
    def shown(self, selector):
        return self.script("return [...document.querySelectorAll(arguments[0])].filter((each) => !each.hidden).length",
                           selector)

    def test_the_keyboard_filters(self):
        self.open(SERVER)
        everything = self.shown(".item")
        self.press("/")
        self.press("CPU2_DIMM_A1")
        WebDriverWait(self.browser, 5).until(lambda _: self.shown(".slot") == 1)
        self.assertEqual("CPU2_DIMM_A1", self.script("return document.querySelector('.slot:not([hidden])').id"))
        self.press(Keys.ESCAPE)
        self.assertEqual(everything, self.shown(".item"))
        self.assertEqual("", self.script("return document.getElementById('filter').value"))

    def test_a_bridge_stays_where_something_behind_it_is_found(self):
        self.open(SERVER)
        self.press("/")
        self.press("0000:3c:00.0")
        WebDriverWait(self.browser, 5).until(lambda _: self.shown(".slot") == 0)
        self.assertTrue(self.script("return document.getElementById('0000:3c:00.0').checkVisibility()"))
        self.assertTrue(self.script("return document.getElementById('0000:3a:02.0').checkVisibility()"))
        self.assertFalse(self.script("return document.getElementById('0000:00:17.0').checkVisibility()"))

    def test_the_keyboard_sorts_by_the_recorded_value(self):
        self.open(SERVER)
        column = """const table = [...document.querySelectorAll(".sortable")].find(
                        (each) => each.caption || each.closest("details").textContent.trim().startsWith("Memory"));
                    const heading = [...table.tHead.rows[0].cells].find((each) => each.textContent === "Size");"""
        self.script(column + "heading.querySelector('button').focus()")
        keys = column + """return [...table.tBodies[0].rows].map((row) => {
            const small = row.cells[heading.cellIndex].querySelector("small");
            return Number((small || row.cells[heading.cellIndex]).textContent)})"""
        self.press(Keys.ENTER)
        rising = self.script(keys)
        self.assertEqual(sorted(rising), rising)
        self.assertEqual("ascending", self.script(column + "return heading.getAttribute('aria-sort')"))
        self.press(Keys.ENTER)
        self.assertEqual(rising[::-1], self.script(keys))
        self.assertNotEqual(rising, rising[::-1])

    def test_an_address_is_copied(self):
        self.open(SERVER)
        self.browser.find_element(By.ID, "CPU1_DIMM_A1").find_element(By.TAG_NAME, "summary").send_keys(Keys.ENTER)
        button = WebDriverWait(self.browser, 5).until(
            lambda browser: browser.find_element(By.CSS_SELECTOR, "#CPU1_DIMM_A1 > .copy"))
        button.send_keys(Keys.ENTER)
        WebDriverWait(self.browser, 5).until(lambda _: button.text == "Copied")
        self.press("/")
        self.copy_and_paste_keys()
        self.assertEqual("CPU1_DIMM_A1", self.script("return document.getElementById('filter').value"))

    def test_an_address_behind_the_page_leads_to_its_part(self):
        self.open(SERVER, fragment="#0000:3c:00.0")
        WebDriverWait(self.browser, 5).until(lambda _: self.script(
            "const top = document.getElementById('0000:3c:00.0').getBoundingClientRect().top;"
            "return top >= 0 && top < innerHeight"))

    def test_it_is_complete_without_scripts(self):
        self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        self.open(SERVER)
        self.check_rows(SERVER)
        self.assertFalse(self.script("return document.getElementById('filter').checkVisibility()"))

    def test_a_move_is_named_as_one(self):
        text = SERVER.read_text()
        moved = text.replace("CPU1_DIMM_A1", "\0").replace("CPU1_DIMM_B2", "CPU1_DIMM_A1").replace("\0", "CPU1_DIMM_B2")
        file = self.folder / "moved.xml"
        file.write_text(moved)
        self.open(file, "--against", SERVER)
        self.check_quiet()
        self.assertIn("moved", self.script("return document.querySelector('#section-changes').textContent"))


class Rendering(Page):
    def open_compared(self):
        text = SERVER.read_text()
        (self.folder / "old.xml").write_text(text)
        (self.folder / "new.xml").write_text(text.replace("Gold 6248 CPU @ 2.50GHz", "Gold 6252 CPU @ 2.10GHz"))
        self.open("new.xml", "--against", "old.xml")

    def background(self):
        return self.script("return getComputedStyle(document.body).backgroundColor")

    def test_light_and_dark(self):
        self.open_compared()
        self.emulate(1280)
        light = self.background()
        self.keep_picture("light")
        self.emulate(1280, dark=True)
        self.keep_picture("dark")
        self.assertNotEqual(light, self.background())

    def test_the_first_screen_has_the_answers(self):
        self.open_compared()
        self.emulate(1280)
        bottoms = self.script("return [...document.querySelectorAll('.verdict, .tile')]"
                              ".map((each) => each.getBoundingClientRect().bottom)")
        self.assertLess(max(bottoms), 900)
        self.keep_picture("screen", whole=False)

    def test_narrow_and_wide(self):
        self.open_compared()
        for width in (360, 768, 3840):
            self.check_fits(width)
            self.keep_picture(f"width-{width}")

    def test_print_opens_everything(self):
        self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        self.open_compared()
        self.emulate(1000, media="print")
        hidden = self.script("return [...document.querySelectorAll('main dd')]"
                             ".filter((each) => each.getClientRects().length === 0).length")
        self.assertEqual(0, hidden)
        self.emulate(1280)
        printed = self.browser.execute_cdp_cmd("Page.printToPDF", {"preferCSSPageSize": True})
        self.keep("print.pdf", base64.b64decode(printed["data"]))

    def test_the_focus_is_seen(self):
        self.open(SERVER)
        for _ in range(4):
            self.press(Keys.TAB)
        width = self.script("return getComputedStyle(document.activeElement).outlineWidth")
        self.assertEqual("3px", width)


del Page  # it has no tests of its own

if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[1], add_help=False)
    parser.add_argument("command", type=os.path.abspath)
    parser.add_argument("--files")
    parser.add_argument("--pictures")
    parser.add_argument("--validator")
    OPTIONS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])
