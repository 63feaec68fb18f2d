#!/usr/bin/env python3
"""The page of `vxnls recognise --html` in a real browser: what it shows, in both colour schemes, by keyboard and for a
screen reader. Usage: report_page_test.py FOLDER_OF_VXNLS [FOLDER_FOR_SCREENSHOTS]. Exit code 77: no browser here."""
import base64
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import urllib.request

BINARIES = pathlib.Path(sys.argv[1]).resolve()
SCREENSHOTS = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else None
HOSTILE = '<script>document.title="taken"</script>&amp;\u202e\u00a0"'
ROWS = ["25/12/21", "03/04/21", "2021-03-05", "13/13/21", "5 March 2021", HOSTILE, "", "12/31/21"] + ["24/12/20"] * 60

CONTRAST = """
const parse = text => text.match(/[\\d.]+/g).map(Number);
const light = c => { const [r, g, b] = parse(c).map(v => { v /= 255;
  return v <= 0.04045 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4; }); return 0.2126 * r + 0.7152 * g + 0.0722 * b; };
const ratio = (a, b) => { const [x, y] = [light(a), light(b)].sort((p, q) => q - p); return (x + 0.05) / (y + 0.05); };
const page = getComputedStyle(document.body).backgroundColor;
const texts = [...document.querySelectorAll('body, h1, h2, h3, p, a, th, td, li, code, caption, .hidden-character')]
  .map(e => ratio(getComputedStyle(e).color, page));
const marks = [...document.querySelectorAll('.whole span')].map(e => ratio(getComputedStyle(e).backgroundColor, page));
return {page, text: Math.min(...texts), mark: Math.min(...marks)};
"""


class Browser:
    def __init__(self, folder):
        self.process = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                        text=True)
        for line in self.process.stdout:
            found = re.search(r"success.* on port (\d+)", line)
            if found:
                self.base = f"http://127.0.0.1:{found[1]}/session"
                break
        options = {"binary": shutil.which("chromium"),
                   "args": ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                            "--disable-background-networking", "--disable-component-update", "--disable-sync",
                            f"--user-data-dir={folder}", "--window-size=1100,1400"]}
        capabilities = {"browserName": "chrome", "goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"}}
        self.base += "/" + self.send("POST", "", {"capabilities": {"alwaysMatch": capabilities}})["sessionId"]

    def send(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)["value"]

    def run(self, script):
        return self.send("POST", "/execute/sync", {"script": script, "args": []})

    def devtools(self, command, **parameters):
        return self.send("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def press(self, key):
        keys = [{"type": "keyDown", "value": key}, {"type": "keyUp", "value": key}]
        self.send("POST", "/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": keys}]})

    def close(self):
        try:
            self.send("DELETE", "")
        finally:
            self.process.terminate()
            self.process.wait()


class ReportPage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        path = pathlib.Path(cls.folder.name)
        quoted = ['"' + row.replace('"', '""') + '"' for row in ROWS]
        (path / "orders.csv").write_text("when,amount\n" + "".join(f'{row},"1.234,50"\n' for row in quoted))
        environment = {"PATH": f"{BINARIES}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8", "TZ": "UTC"}
        command = ["vxnls", "recognise", "orders.csv", "--html", "page.html", "--json"]
        cls.result = subprocess.run(command, cwd=path, env=environment, capture_output=True, text=True, check=False)
        cls.report = json.loads(cls.result.stdout)["columns"][0]
        cls.browser = Browser(path / "browser")
        cls.browser.send("POST", "/url", {"url": (path / "page.html").as_uri()})

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        cls.folder.cleanup()

    def test_nothing_runs_and_nothing_is_fetched(self):
        self.assertEqual(self.result.returncode, 1)
        self.assertEqual(self.browser.run("return document.title"), "Columns of orders.csv")
        self.assertEqual(self.browser.run("return document.scripts.length"), 0)
        self.assertEqual(self.browser.run("return performance.getEntriesByType('resource').map(e => e.name)"), [])
        self.assertEqual(self.browser.send("POST", "/se/log", {"type": "browser"}), [])

    def test_cells_are_shown_as_they_are(self):
        rows = self.browser.run("""return [...document.querySelectorAll('#column-1 table')]
            .filter(t => t.caption.innerText.startsWith('Unread'))
            .flatMap(t => [...t.tBodies[0].rows].map(r => [...r.cells].map(c => c.textContent)))""")
        shown = {int(row[0]): row[2] for row in rows}
        lines = {line: ROWS[line - 2] for line in shown}
        self.assertEqual(sorted(shown), [cell["line"] for cell in self.report["first-unread"]])
        for line, text in shown.items():
            visible = lines[line].replace("\u202e", "U+202E").replace("\u00a0", "U+00A0")
            self.assertEqual(text, visible if text != visible + "\u00a0" else text)
        self.assertIn(HOSTILE.replace("\u202e", "U+202E").replace("\u00a0", "U+00A0"), shown.values())

    def test_bars_are_as_wide_as_their_shares(self):
        widths = self.browser.run("""return [...document.querySelectorAll('#column-1 .whole span')]
            .map(s => [s.className, s.getBoundingClientRect().width])""")
        counts = {name: self.report[name] for name in ("read", "ambiguous", "contradicting", "unread", "empty")}
        total, whole = sum(counts.values()), sum(width for _, width in widths)
        self.assertEqual({name for name, _ in widths}, {name for name, count in counts.items() if count})
        for name, width in widths:
            self.assertAlmostEqual(width / whole, counts[name] / total, delta=0.02)

    def test_both_colour_schemes_are_readable(self):
        pages = set()
        for scheme in ("light", "dark"):
            self.browser.devtools("Emulation.setEmulatedMedia",
                                  features=[{"name": "prefers-color-scheme", "value": scheme}])
            contrast = self.browser.run(CONTRAST)
            self.assertGreaterEqual(contrast["text"], 4.5, scheme)
            self.assertGreaterEqual(contrast["mark"], 3, scheme)
            pages.add(contrast["page"])
            if SCREENSHOTS:
                SCREENSHOTS.mkdir(parents=True, exist_ok=True)
                image = base64.b64decode(self.browser.send("GET", "/screenshot"))
                (SCREENSHOTS / f"report-{scheme}.png").write_bytes(image)
        self.assertEqual(len(pages), 2)

    def test_a_narrow_window_scrolls_in_one_direction(self):
        self.browser.devtools("Emulation.setDeviceMetricsOverride", width=360, height=740, deviceScaleFactor=1,
                              mobile=False)
        try:
            self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), 360)
        finally:
            self.browser.devtools("Emulation.clearDeviceMetricsOverride")

    def test_the_keyboard_reaches_everything(self):
        wanted = self.browser.run("return document.querySelectorAll('a, [tabindex=\"0\"]').length")
        self.browser.run("document.activeElement.blur(); window.getSelection().removeAllRanges(); window.scrollTo(0, 0)")
        seen = []
        for _ in range(wanted):
            self.browser.press("\ue004")
            seen.append(self.browser.run("""const e = document.activeElement;
                return [[...document.querySelectorAll('a, [tabindex="0"]')].indexOf(e), getComputedStyle(e).outlineStyle]"""))
        self.assertEqual(seen, [[place, "solid"] for place in range(wanted)])

    def test_a_screen_reader_hears_names(self):
        nodes = self.browser.devtools("Accessibility.getFullAXTree")["nodes"]
        named = {}
        for node in nodes:
            if not node.get("ignored"):
                named.setdefault(node["role"]["value"], []).append(node.get("name", {}).get("value", ""))
        self.assertEqual(named["image"], self.browser.run(
            "return [...document.querySelectorAll('.whole')].map(e => e.getAttribute('aria-label'))"))
        for role in ("region", "table", "navigation", "link", "heading", "columnheader"):
            self.assertTrue(named.get(role), role)
            if role != "columnheader":
                self.assertTrue(all(named[role]), role)


if __name__ == "__main__":
    if not shutil.which("chromedriver") or not shutil.which("chromium"):
        print("no chromium and chromedriver here")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
