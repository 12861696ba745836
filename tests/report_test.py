#!/usr/bin/env python3
"""The report: its numbers are those of the filters behind them and of the statistics, and its page stands on its own in a browser."""
import collections
import html.parser
import json
import os
import shlex
import shutil
import struct
import subprocess
import tempfile
import unittest
import urllib.request

from questions_test import QXVIEW, ROOT, tcp, write_capture

HOSTILE = "<script>hit=1</script>\"'>\x1b]0;hit\x07\xff"


def sample(name):
    return os.path.join(ROOT, "samples", name)


def run(*words, status=0):
    ran = subprocess.run([QXVIEW, *words], capture_output=True, timeout=60, check=False)
    assert ran.returncode == status, (words, ran.returncode, ran.stderr)
    return ran


def rows(*words):
    return [json.loads(line) for line in run(*words, "--format", "json", "--modern").stdout.splitlines()]


class Page(html.parser.HTMLParser):
    """The elements with a number, and the cells of the tables by their sections."""

    def __init__(self, text):
        super().__init__()
        self.figures, self.command, self.where, self.ids, self.elements = [], "", "", set(), collections.Counter()
        self.rows, self.section, self.cell, self.weights = collections.defaultdict(list), "", None, []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        has = dict(attributes)
        self.elements[tag] += 1
        self.ids.add(has.get("id"))
        if tag == "article":
            self.command, self.where = has["data-command"], has["data-where"]
        if tag == "section":
            self.section = has["id"].partition("-")[2]
        if tag == "tr":
            self.rows[self.section].append([])
        if tag == "td":
            self.rows[self.section][-1].append("")
            self.cell = True
        if "data-n" in has:
            self.figures.append((has["data-w"], int(has["data-n"])))

    def handle_endtag(self, tag):
        if tag == "td":
            self.cell = None

    def handle_data(self, data):
        if self.cell:
            self.rows[self.section][-1][-1] += data

    def table(self, section):
        return {row[0].strip(): row for row in self.rows[section] if row}


def report(*words):
    return Page(run("report", *words, "-o", "-").stdout.decode())


class Numbers(unittest.TestCase):
    def check_filters(self, page, most):
        """The packets that the filters behind a sample of the numbers let through, all read in one run each."""
        asked = sorted(set(page.figures))
        for where, number in asked[::max(len(asked) // most, 1)]:
            if page.where and where:
                where = f"({page.where}) and ({where})"
            where = where or page.where
            words = shlex.split(page.command)[1:] + (["--where", where] if where else [])
            found = run(*words, "--format", "json").stdout.count(b"\n")
            self.assertEqual(found, number, where)

    def test_come_from_the_filters_behind_them(self):
        for name in ("dns.pcap", "web.pcap", "lan.pcap", "tunnels.pcap", "sctp.pcap", "segments.pcap"):
            self.check_filters(report(sample(name)), 20)
        self.check_filters(report(sample("http.pcap"), "-Y", "tcp.port == 80 or udp", "-c", "20", "--packets", "3-"), 10)
        self.check_filters(report("--merge", sample("dns.pcap"), sample("http.pcap"), "-f", "ip"), 10)

    def test_are_those_of_the_statistics(self):
        for name in ("web.pcap", "tunnels.pcap", "resolver.pcap", "segments.pcap"):
            page = report(sample(name))
            self.assertEqual([(row[0].strip(), int(row[2].replace(",", ""))) for row in page.rows["protocols"] if row],
                             [(row["protocol"].strip(), row["packets"]) for row in rows("stat", "protocols", sample(name))])
            endpoints = {row["address"]: row["packets"] for row in rows("stat", "endpoints", sample(name)) if row["layer"] in ("IPv4", "IPv6")}
            hosts = {host: int(row[2].replace(",", "")) for host, row in page.table("hosts").items() if host in endpoints}
            self.assertEqual(hosts, endpoints)
            trouble = rows("stat", "tcp", sample(name))
            again = next((int(row[2].replace(",", "")) for row in page.rows["trouble"] if row and row[1].startswith("TCP segments sent again")), 0)
            self.assertEqual(again, sum(row["retransmissions"] for row in trouble))
        servers = {row["server"]: row for row in rows("stat", "dns", "-f", "port 53", sample("resolver.pcap")) if row.get("server")}
        for server, row in report(sample("resolver.pcap")).table("dns").items():
            if server in servers:   # those of multicast DNS are not counted here
                self.assertEqual((int(row[1]), int(row[2])), (servers[server]["requests"], servers[server]["answers"]))

    def test_of_what_is_not_there_are_told_as_such(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "empty.pcap")
            write_capture(path, [])
            self.assertIn(b"There is no packet.", run("report", path, "-o", "-").stdout)
            write_capture(path, [bytes(20)])
            text = run("report", path, "-o", "-").stdout
            for empty in (b"No trouble found.", b"No DNS in this capture.", b"All packets carry the same time.", b"No TCP in this capture."):
                self.assertIn(empty, text)
        self.assertEqual(run("report", sample("dns.pcap"), sample("http.pcap"), "-o", "-").stdout.count(b"<article"), 2)

    def test_are_in_a_file_that_is_whole_or_not_there(self):
        with tempfile.TemporaryDirectory() as folder:
            out, cut = os.path.join(folder, "out.html"), os.path.join(folder, "cut.pcap")
            run("report", sample("dns.pcap"), "-o", out)
            with open(out, "rb") as file:
                whole = file.read()
            with open(sample("dns.pcap"), "rb") as file, open(cut, "wb") as half:
                half.write(file.read()[:-7])
            self.assertIn(b"stays as it was", run("report", cut, "-o", out, status=3).stderr)
            with open(out, "rb") as file:
                self.assertEqual(file.read(), whole)
            self.assertIn(b"/dev/full: ", run("report", sample("dns.pcap"), "-o", "/dev/full", status=3).stderr)
            self.assertIn(b"nowhere", run("report", sample("dns.pcap"), "-o", os.path.join(folder, "nowhere", "x"), status=3).stderr)
            self.assertIn(b"-o is missing", run("report", sample("dns.pcap"), status=2).stderr)
            self.assertIn(b"is a capture that is read", run("report", cut, "-o", cut, status=2).stderr)
            self.assertEqual(sorted(os.listdir(folder)), ["cut.pcap", "out.html"])


def dns_answer(name):
    """A response over UDP that gives a name an address."""
    question = bytes([len(name)]) + name + b"\x04test\0" + struct.pack(">HH", 1, 1)
    message = struct.pack(">HHHHHH", 7, 0x8180, 1, 1, 0, 0) + question + struct.pack(">HHHIH4s", 0xC00C, 1, 1, 60, 4, bytes([10, 0, 0, 9]))
    datagram = struct.pack(">HHHH", 53, 40000, 8 + len(message), 0) + message
    head = struct.pack(">BBHHHBBH", 0x45, 0, 20 + len(datagram), 1, 0, 64, 17, 0) + bytes([10, 0, 0, 2, 10, 0, 0, 1])
    return bytes.fromhex("0200000000010200000000020800") + head + datagram


def hostile_capture(folder):
    path = os.path.join(folder, "<img src=x onerror=hit=1>'\" &amp;.pcap")
    name = HOSTILE.encode("latin-1")
    request = b"GET /" + name.replace(b" ", b"") + b" HTTP/1.1\r\nHost: " + name + b"\r\n\r\n"
    write_capture(path, [dns_answer(name), tcp(1025, 80, 1, 1, 0x18, request), tcp(80, 1025, 1, 500, 0x18, b"HTTP/1.1 404 No\r\n\r\n")])
    return path


class Driver:
    """A browser without a window, driven as the WebDriver protocol has it."""

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.process = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        for line in self.process.stdout:
            if "started successfully on port" in line:
                self.url = f"http://127.0.0.1:{line.split()[-1].strip('.')}/session"
                break
        arguments = ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", f"--user-data-dir={self.folder.name}"]
        self.session = self.call("", {"capabilities": {"alwaysMatch": {
            "goog:chromeOptions": {"args": arguments}, "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}}})["sessionId"]
        return self

    def __exit__(self, *_):
        try:
            request = urllib.request.Request(f"{self.url}/{self.session}", method="DELETE")
            urllib.request.urlopen(request, timeout=20).close()
        finally:
            self.process.terminate()
            self.process.wait(10)
            self.process.stdout.close()
            self.folder.cleanup()

    def call(self, command, body):
        target = f"{self.url}/{self.session}/{command}" if command else self.url
        request = urllib.request.Request(target, json.dumps(body).encode(), {"Content-Type": "application/json"})
        with urllib.request.urlopen(request, timeout=30) as answer:
            return json.load(answer)["value"]

    def cdp(self, command, **parameters):
        return self.call("goog/cdp/execute", {"cmd": command, "params": parameters})

    def run(self, script):
        return self.call("execute/sync", {"script": script, "args": []})

    def open(self, path, width, dark=False):
        self.cdp("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1, mobile=False)
        self.cdp("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.call("url", {"url": "file://" + urllib.request.pathname2url(path)})

    def log(self, kind):
        return self.call("se/log", {"type": kind})

    def requested(self):
        messages = [json.loads(entry["message"])["message"] for entry in self.log("performance")]
        return [m["params"]["request"]["url"] for m in messages if m["method"] == "Network.requestWillBeSent"]


@unittest.skipUnless(shutil.which("chromedriver") and shutil.which("chromium"), "needs chromium and its driver")
class Browser(unittest.TestCase):
    def test_page_stands_on_its_own(self):
        with tempfile.TemporaryDirectory() as folder, Driver() as driver:
            page = os.path.join(folder, "report.html")
            run("report", sample("web.pcap"), "-o", page)
            for width in (400, 1600):
                driver.open(page, width)
                self.assertLessEqual(driver.run("return document.documentElement.scrollWidth"), width)
                sizes = driver.run("return [...document.querySelectorAll('svg.plot')].map(s=>[s.clientWidth,s.clientHeight])")
                self.assertTrue(sizes and all(w > 200 and h > 40 for w, h in sizes), sizes)
            # What a number shows is the command that gives it.
            number = driver.run("const e=[...document.querySelectorAll('#c1-ports .n')].pop();e.click();return e.dataset.n")
            command = driver.run("return document.querySelector('#source code').textContent")
            shown = run(*shlex.split(command)[1:], "--format", "json").stdout.count(b"\n")
            self.assertEqual(str(shown), number, command)
            back = "return getComputedStyle(document.body).backgroundColor"
            light = driver.run(back)
            driver.run("document.querySelector('.theme').click()")
            dark = driver.run(back)
            self.assertNotEqual(light, dark)
            driver.open(page, 1200, dark=True)
            self.assertEqual(driver.run(back), dark)
            printed = driver.cdp("Page.printToPDF", printBackground=True)["data"]
            self.assertGreater(len(printed), 20000)
            capture = hostile_capture(folder)
            run("report", capture, "-o", page)
            driver.open(page, 1200)
            self.assertFalse(driver.run("return 'hit' in window || document.querySelector('img') !== null"))
            driver.run("document.querySelectorAll('[data-n]').forEach(e=>e.dispatchEvent(new MouseEvent('click',{bubbles:true})))")
            self.assertFalse(driver.run("return 'hit' in window"))
            self.assertEqual([url for url in driver.requested() if not url.startswith(("file:", "data:", "chrome"))], [])
            self.assertEqual([entry for entry in driver.log("browser") if entry["level"] in ("SEVERE", "WARNING")], [])


class Hostile(unittest.TestCase):
    def test_texts_stay_texts(self):
        with tempfile.TemporaryDirectory() as folder:
            path = hostile_capture(folder)
            text = run("report", path, "-o", "-").stdout
            page = Page(text.decode())   # whatever the packets hold, the page is UTF-8
            self.assertNotIn(b"<script>hit", text)
            self.assertEqual((page.elements["script"], page.elements["img"]), (1, 0))
            self.assertFalse([byte for byte in text if byte < 0x20 and byte != 0x0A])
            names = [row[1] for row in page.rows["names"] if row]
            self.assertTrue(any("<script>hit=1</script>" in name for name in names), names)
            ran = subprocess.run(["bash", "-c", "printf '%s\\n' " + page.command], capture_output=True, check=True)
            self.assertEqual(ran.stdout.decode().split("\n")[-2], path)
            for where, number in sorted(set(page.figures)):
                words = ["list", "--modern", path] + (["--where", where] if where else [])
                self.assertEqual(run(*words, "--format", "json").stdout.count(b"\n"), number, where)


if __name__ == "__main__":
    unittest.main()
