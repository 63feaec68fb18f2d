#!/usr/bin/env python3
"""The page of `vxnls recognise --html` in a real browser: what it shows, in both colour schemes, by keyboard and for a
screen reader. Usage: report_page_test.py FOLDER_OF_VXNLS. Exit code 77: no browser here."""
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

HOSTILE = '<script>document.title="taken"</script>&amp;\u202e\u00a0"'
ROWS = ["25/12/21", "03/04/21", "2021-03-05", "13/13/21", "5 March 2021", HOSTILE, "", "12/31/21"] + ["24/12/20"] * 60

# The page's colour, and the least contrast of any text with it.
CONTRAST = """
const light = color => { const [r, g, b] = color.match(/[\\d.]+/g).map(v => ((v / 255 + 0.055) / 1.055) ** 2.4);
  return 0.2126 * r + 0.7152 * g + 0.0722 * b + 0.05; };
const color = getComputedStyle(document.body).backgroundColor, page = light(color);
const texts = document.querySelectorAll('body, h1, h2, h3, p, a, th, td, li, code, caption, .hidden-character');
return [color, Math.min(...[...texts].map(e => {
  const text = light(getComputedStyle(e).color); return Math.max(text, page) / Math.min(text, page); }))];
"""


class Browser:
    def __init__(self, folder):
        self.process = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                        text=True)
        port = next(filter(None, (re.search(r"success.* on port (\d+)", line) for line in self.process.stdout)))[1]
        self.base = f"http://127.0.0.1:{port}/session"
        options = {"args": ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-background-networking",
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

    def close(self):
        self.send("DELETE", "")
        self.process.terminate()
        self.process.wait()


class ReportPage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        path = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        quoted = ['"' + row.replace('"', '""') + '"' for row in ROWS]
        (path / "orders.csv").write_text("when,amount\n" + "".join(f'{row},"1.234,50"\n' for row in quoted))
        programs = pathlib.Path(sys.argv[1]).resolve()
        environment = {"PATH": f"{programs}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8", "TZ": "UTC"}
        command = ["vxnls", "recognise", "orders.csv", "--html", "page.html", "--json"]
        result = subprocess.run(command, cwd=path, env=environment, capture_output=True, text=True, check=False)
        assert result.returncode == 1, result
        cls.report = json.loads(result.stdout)["columns"][0]
        cls.browser = Browser(path / "browser")
        cls.addClassCleanup(cls.browser.close)
        cls.browser.send("POST", "/url", {"url": (path / "page.html").as_uri()})

    def test_nothing_runs_and_nothing_is_fetched(self):
        self.assertEqual(self.browser.run("""return [document.title, document.scripts.length,
            performance.getEntriesByType('resource').length]"""), ["Columns of orders.csv", 0, 0])
        self.assertEqual(self.browser.send("POST", "/se/log", {"type": "browser"}), [])

    def test_cells_are_shown_as_they_are(self):
        rows = self.browser.run("""return [...document.querySelectorAll('#column-1 table')]
            .filter(t => t.caption.innerText.startsWith('Unread'))
            .flatMap(t => [...t.tBodies[0].rows].map(r => [...r.cells].map(c => c.textContent)))""")
        lines = [cell["line"] for cell in self.report["first-unread"]]
        visible = [ROWS[line - 2].replace("\u202e", "U+202E").replace("\u00a0", "U+00A0") for line in lines]
        self.assertIn("U+202E", "".join(visible))
        self.assertEqual([(int(row[0]), row[2].removesuffix("\u00a0")) for row in rows], list(zip(lines, visible)))

    def test_both_colour_schemes_are_readable(self):
        pages = set()
        for scheme in ("light", "dark"):
            self.browser.devtools("Emulation.setEmulatedMedia",
                                  features=[{"name": "prefers-color-scheme", "value": scheme}])
            page, contrast = self.browser.run(CONTRAST)
            self.assertGreaterEqual(contrast, 4.5, scheme)
            pages.add(page)
        self.assertEqual(len(pages), 2)

    def test_the_keyboard_reaches_everything(self):
        wanted = self.browser.run("return document.querySelectorAll('a, [tabindex=\"0\"]').length")
        self.browser.run("document.activeElement.blur(); window.getSelection().removeAllRanges(); window.scrollTo(0, 0)")
        tab = [{"type": "keyDown", "value": "\ue004"}, {"type": "keyUp", "value": "\ue004"}]
        for place in range(wanted):
            self.browser.send("POST", "/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": tab}]})
            seen = self.browser.run("""const e = document.activeElement;
                return [[...document.querySelectorAll('a, [tabindex="0"]')].indexOf(e), getComputedStyle(e).outlineStyle]""")
            self.assertEqual(seen, [place, "solid"])

    def test_a_screen_reader_hears_names(self):
        named = {}
        for node in self.browser.devtools("Accessibility.getFullAXTree")["nodes"]:
            if not node.get("ignored"):
                named.setdefault(node["role"]["value"], []).append(node.get("name", {}).get("value", ""))
        self.assertEqual(named["image"], self.browser.run(
            "return [...document.querySelectorAll('.whole')].map(e => e.getAttribute('aria-label'))"))
        self.assertTrue(named.get("columnheader"))
        for role in ("region", "table", "navigation", "link", "heading"):
            self.assertTrue(named.get(role) and all(named[role]), role)


if __name__ == "__main__":
    if not shutil.which("chromedriver") or not shutil.which("chromium"):
        print("no chromium and chromedriver here")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
