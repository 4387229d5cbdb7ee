#!/usr/bin/python3
"""The console in a real browser, against script/server.

    console_test.py [-v] [TEST...]

Leaves pictures of the views at two widths in build/screenshots.
"""

import contextlib
import http.client
import itertools
import pathlib
import shutil
import socket
import subprocess
import tarfile
import tempfile
import time
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select, WebDriverWait

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCREENSHOTS = ROOT / "build/screenshots"
SETTINGS = "var/tevo/website/www/xml/tevo_xml_cfg_file.xml"
TPM = "etc/xml_params/tpm_xml_cfg_file.xml"
COUNTERS = "sys/devices/platform/epon/pm/allCnt"
VIEWS = ["overview", "optics", "counters", "settings", "maintenance", "workbench"]
WIDTHS = {"narrow": {"width": 360, "height": 740}, "wide": {"width": 1280, "height": 900}}
QUIET = """--headless=new --no-sandbox --disable-gpu --disable-quic --no-first-run --hide-scrollbars
--disable-background-networking --disable-component-update --disable-sync""".split()


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


class Server:
    """script/server with a unit of its own."""

    def __init__(self, folder):
        self.unit = folder / "unit"
        self.port = free_port()
        self.process = None

    def run(self, *options):
        """A server of the same unit; `options` may name other things."""
        return subprocess.Popen([ROOT / "script/server", "--unit", self.unit, *options],
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def start(self):
        self.process = self.run("--port", str(self.port), "--www", ROOT / "tests/console")
        said = ""
        while not said.endswith("Ctrl-C stops it.\n"):
            line = self.process.stdout.readline()
            assert line, f"script/server ended: {said}"
            said += line

    def stop(self):
        self.process.terminate()
        self.process.communicate(timeout=20)

    def get(self, path):
        """Status and body of exactly this path."""
        with contextlib.closing(http.client.HTTPConnection("127.0.0.1", self.port, 20)) as client:
            client.request("GET", path)
            reply = client.getresponse()
            return reply.status, reply.read()

    def file(self, name):
        return (self.unit / name).read_text()

    def write(self, name, old, new):
        text = self.file(name)
        assert old in text, old
        (self.unit / name).write_text(text.replace(old, new, 1))


def browser(folder):
    options = webdriver.ChromeOptions()
    for argument in [*QUIET, f"--user-data-dir={folder}/profile"]:
        options.add_argument(argument)
    downloads = {"download.default_directory": str(folder / "downloads")}
    options.add_experimental_option("prefs", downloads)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


class ConsoleTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        cls.server = Server(cls.folder)
        cls.server.start()
        cls.addClassCleanup(cls.server.stop)
        cls.page = browser(cls.folder)
        cls.addClassCleanup(cls.page.quit)

    def open(self, view, width="wide"):
        self.page.get("about:blank")
        size = {**WIDTHS[width], "deviceScaleFactor": 1, "mobile": False}
        self.page.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", size)
        self.page.get(f"http://127.0.0.1:{self.server.port}/#{view}")
        self.until(lambda: self.find("h1"))

    def until(self, condition):
        return WebDriverWait(self.page, 15, 0.1).until(lambda _: condition())

    def find(self, selector):
        return self.page.find_element(By.CSS_SELECTOR, selector)

    def text(self, selector):
        return self.find(selector).text

    def shows(self, selector, *texts):
        """Waits until an element's text holds all these."""
        with contextlib.suppress(Exception):
            self.until(lambda: all(text in self.text(selector) for text in texts))
        for text in texts:
            self.assertIn(text, self.text(selector))

    def holds_no_markup(self):
        self.assertEqual(self.page.find_elements(By.CSS_SELECTOR, "main img, main script"), [])

    def change(self, file, old, new):
        """Changes a file of the unit until the end of the test."""
        self.server.write(file, old, new)
        self.addCleanup(self.server.write, file, new, old)

    def type(self, selector, text):
        field = self.find(selector)
        field.clear()
        field.send_keys(text)

    def value(self, fold, name):
        return self.find(f"{fold} [name={name}]").get_attribute("value")

    def choose(self, selector, value):
        Select(self.find(selector)).select_by_value(value)

    def press(self, *texts, within="main"):
        """Presses a button, and those of the dialog that comes."""
        for text in texts:
            button = f".//button[normalize-space()='{text}']"
            self.find(within).find_element(By.XPATH, button).click()
            within = "dialog"

    def send(self, request):
        self.type("#request", request)
        self.press("Send")

    def store(self, fold, *said, **values):
        """Stores values with the form of a command; its status then says these texts."""
        for name, value in values.items():
            self.type(f"{fold} [name={name}]", value)
        self.press("Store", within=fold)
        self.shows(f"{fold} .status", *said)

    def command(self, number):
        """Opens the form of a command; the selector of its fold."""
        self.open(f"settings/{number}")
        self.until(lambda: not self.find(f"#command-{number} .primary").get_attribute("disabled")
                   or self.find(f"#command-{number} input, #command-{number} select"))
        time.sleep(0.3)  # the reading
        return f"#command-{number}"

    # --- around the console

    def test_server(self):
        settings = "/xml/tevo_xml_cfg_file.xml"
        self.assertIn("<account>", self.server.file(SETTINGS))
        for path in [settings, f"/{settings}", f"/.{settings}", "/%78ml/tevo%5fxml_cfg_file.xml",
                     settings.upper(), settings.replace("xml/", "XML/"), f"/cgi-bin/..{settings}",
                     f"/pages/..{settings}", f"/../var/tevo/website/www{settings}",
                     f"/%2e%2e/%2e%2e/{SETTINGS}", f"/pages/../../../{SETTINGS}",
                     "/xml/", "/pages/"]:
            with self.subTest(path):
                status, body = self.server.get(path)
                self.assertIn(status, (400, 404))
                self.assertNotIn(b"account", body)
        for options, said in [
            (["--port", str(free_port())], "is being served already"),
            (["--factory"], "is being served already"),
            (["--unit", self.folder / "other", "--port", str(self.server.port)], "is taken"),
            *((["--port", port], "is no port") for port in ["abc", "70000", "0", "-1", "", "8 0"]),
            (["--www", "/no/such"], "there is no folder"),
        ]:
            with self.subTest(options):
                refused = self.server.run(*options)
                self.addCleanup(refused.kill)
                self.assertIn(said, refused.communicate(timeout=60)[0])
                self.assertNotEqual(refused.returncode, 0)
        self.assertFalse((self.folder / "other").exists())
        self.assertEqual(self.server.get("/cgi-bin/onu-cgi?cmd_id=24&action=0")[1], b'{iso:"0"}\n')

    def test_files(self):
        folder = ROOT / "sim/console"
        files = [path for path in folder.rglob("*") if path.is_file()]
        self.assertLess(sum(path.stat().st_size for path in files), 60 * 1024)
        for path in files:  # values reach the page as text nodes only, and nothing comes from afar
            self.assertNotRegex(path.read_text(),
                                r"innerHTML|outerHTML|insertAdjacent|document\.write|\beval\b|"
                                r"new Function|https?://(?!www\.w3\.org/2000/svg)", path)

    def test_reply_reader(self):
        self.page.get(f"http://127.0.0.1:{self.server.port}/pages/reply_test.html")
        self.until(lambda: self.page.title != "running")
        self.assertRegex(self.page.title, r"^[1-9]\d+ passed$", self.text("pre"))

    # --- the views

    def test_views(self):
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        for width, view in itertools.product(WIDTHS, VIEWS):
            with self.subTest(view=view, width=width):
                self.page.get_log("browser")
                self.open(view, width)
                self.assertEqual(self.text("h1").lower(), view)
                self.assertEqual(self.text("nav a[aria-current]").lower(), view)
                self.until(lambda: self.find(".card"))
                if view == "workbench":
                    self.send(f"cmd_id=25&action=1&age_time={len(width)}00")
                time.sleep(1)
                self.page.save_screenshot(str(SCREENSHOTS / f"{view}-{width}.png"))
                self.assertLessEqual(self.page.execute_script(
                    "return document.documentElement.scrollWidth - innerWidth"), 0)
                self.assertEqual(self.page.get_log("browser"), [])

    def test_overview(self):
        self.open("overview")
        self.shows("main", "registered", "SFU-1GE-3FE", "00:0C:E7:41:9A:2F", "255.255.255.0",
                   "Port 3\ndisabled", "Loop detection\non", "0x0005")
        self.change("sys/devices/platform/epon/info/infoEpon", "Active", "Asleep")
        hostile = '"},{<img src=x onerror=alert(1)></script>'
        self.change(SETTINGS, "SFU-1GE-3FE", hostile.replace("<", "&lt;"))
        self.shows(".hero", "not registered", hostile)
        self.holds_no_markup()

    def test_optics_and_counters(self):
        self.open("optics")
        self.shows(".reading", "−17.62", "normal")
        self.change("optical_module.registers", "-17.62", "-30.00")
        self.shows(".reading", "−30.00", "alarm", "−30.00 to −17.62 dBm")
        seen = self.page.current_window_handle
        self.page.switch_to.new_window("tab")  # hides the page, which then reads no more
        time.sleep(1)
        reads = self.server.file("record/i2c")
        time.sleep(5)
        self.assertEqual(self.server.file("record/i2c"), reads)
        self.page.close()
        self.page.switch_to.window(seen)
        self.until(lambda: self.server.file("record/i2c") != reads)
        self.page.execute_script("location.hash = 'counters'")
        self.shows("#rxDataFrames", "631 793", "0 f/s")
        self.server.write(COUNTERS, "631793", "632793")
        self.shows("#rxDataFrames", "632 793")
        self.assertRegex(self.text("#rxDataFrames"), r"\b(4|5)\d\d f/s")
        self.assertIn("0 f/s", self.text("#rxLongFrames"))
        self.assertRegex(self.find("#rxDataFrames polyline").get_attribute("points"), r"\d .*\d")
        self.shows("#txByteAllow", "250 000")  # 0x3d090

    # --- what changes the unit

    def test_setting_by_keyboard(self):
        def tab_to(selector, *keys):
            element = self.find(selector)
            for _ in range(60):
                if self.page.switch_to.active_element == element:
                    return element.send_keys(*keys)
                self.page.switch_to.active_element.send_keys(Keys.TAB)
            return self.fail("no way there by keyboard")

        self.open("overview", "narrow")
        tab_to("nav a[href='#settings']", Keys.ENTER)
        self.until(lambda: self.text("h1") == "Settings")
        tab_to("#command-25 summary", Keys.ENTER)
        field = self.find("#command-25 input")
        before = self.until(lambda: field.get_attribute("value"))
        tab_to("#command-25 input", Keys.CONTROL + "a", Keys.NULL, "4321")
        self.shows("#command-25 .was", f"now {before}")
        self.assertNotIn('time="4321"', self.server.file(SETTINGS))
        field.send_keys(Keys.ENTER)
        self.shows("#command-25 .status", "Stored: the unit reads it back")
        self.assertIn('<eth_port time="4321">0<', self.server.file(SETTINGS))
        self.assertEqual(self.text("#command-25 .was"), "")

    def test_settings(self):
        fold = self.command(6)
        before = self.server.file(SETTINGS)
        self.store(fold, "405 set ip fail", "fewer than 8 characters", ip="1.2.3.4")
        self.store(fold, "neither & nor the name", "Nothing was sent", ip="192.168.1.1&netmask=0")
        self.assertEqual(self.server.file(SETTINGS), before)

        # A file that keeps what it has is not taken for one that stores.
        fold = self.command(16)
        text = self.server.file(TPM)
        self.server.write(TPM, "<ipv4_mtu_ds>1500</ipv4_mtu_ds>", "")
        self.store(fold, "but Downstream reads back as", ipv4DsMtu="1400")
        (self.server.unit / TPM).write_text(text)

        fold = self.command(28)
        for name, choice, size in [("voq_id", "7", "192"), ("voq_dir", "1", "128")]:
            self.choose(f"{fold} [name={name}]", choice)
            self.until(lambda: self.value(fold, "voq_thresh") == size)
        self.store(fold, "Stored", voq_thresh="99")
        self.assertIn('weight="8" size="99"', self.server.file(TPM))

        fold = self.command(19)
        new = 'a"b<i>c</i>'
        self.store(fold, "the present password is another", pwdold="wrong", pwdnew=new)
        self.store(fold, "cannot be read back", pwdold="admin", pwdnew=new)
        self.assertIn("<admin>a\"b&lt;i", self.server.file(SETTINGS))

        hostile = '",{}:"<img src=x onerror=alert(1)>\''
        fold = self.command(5)
        self.store(fold, "neither & nor the name", "for gpon_loid",
                   ponPassword=hostile.format("gpon_loid"))
        hostile = hostile.format("zz")
        self.store(fold, "Stored: the unit reads it back, but for Serial number",
                   ponPassword=hostile)
        self.command(5)
        self.assertEqual(self.value(fold, "ponPassword"), hostile)
        self.open("workbench")
        self.send("cmd_id=5")
        self.shows(".results", f'ponPassword:"{hostile}"')
        self.holds_no_markup()

    def throttle(self, upload):
        conditions = {"offline": False, "latency": 0, "downloadThroughput": -1}
        self.page.execute_cdp_cmd("Network.emulateNetworkConditions",
                                  {**conditions, "uploadThroughput": upload})

    def test_maintenance(self):
        self.open("maintenance")
        image = self.folder / "rootfs.squashfs"
        image.write_bytes(bytes(range(1, 255)) * 16513 + b"end")  # 4 MiB
        flash = self.server.unit / "dev/mtd2"
        card = "section:nth-of-type(3)"
        self.choose("#update_type", "2")
        self.find(f"{card} input[type=file]").send_keys(str(image))
        self.press("Upgrade", within=card)
        self.shows("dialog", "rootfs.squashfs", "root file system", "restarts")
        self.press("Cancel", within="dialog")
        self.assertEqual(self.text(f"{card} .status"), "")
        self.assertFalse(flash.read_bytes().startswith(b"\1"))
        self.page.execute_cdp_cmd("Network.enable", {})
        self.throttle(4 << 20)
        self.page.execute_script(
            "window.parts = []; const bar = document.querySelector(arguments[0]);"
            "new MutationObserver(() => parts.push(bar.value)).observe(bar, {attributes: true})",
            f"{card} progress")
        self.press("Upgrade", "Upgrade", within=card)
        self.shows(f"{card} .status", "Sending", "%")
        self.shows(f"{card} .status", "The unit is up")
        self.throttle(-1)
        parts = self.page.execute_script("return parts")
        self.assertTrue([part for part in parts if 0 < part < 1], parts)
        self.assertEqual(flash.read_bytes()[: image.stat().st_size], image.read_bytes())
        self.assertIn("flash_erase /dev/mtd2", self.server.file("record/tools"))

        archive = self.folder / "downloads/xml_config.tar"
        self.press("Export and download")
        self.until(lambda: archive.exists() and tarfile.is_tarfile(archive))
        with tarfile.open(archive) as tar:
            self.assertIn("xml_config/tevo_xml_cfg_file.xml", tar.getnames())
        before = self.server.file(SETTINGS)
        self.server.write(SETTINGS, "<model>SFU-1GE-3FE", "<model>other")
        self.find("section:nth-of-type(2) input[type=file]").send_keys(str(archive))
        self.press("Import", "Import")
        self.shows("section:nth-of-type(2) .status", "Done")
        self.assertEqual(self.server.file(SETTINGS), before)

    def test_workbench(self):
        self.open("workbench")
        manager = "/sys/devices/platform/tpm/cfg_traffic/rate_limit_if_set"
        cases = [
            ("GET", "cmd_id=30&action=1&bs=2&bs_thresh=512",
             ["GET /cgi-bin/onu-cgi?cmd_id=30&action=1&bs=2&bs_thresh=512 HTTP/1.1",
              "HTTP/1.0 200 OK\\r\nContent-Type: application/json\\r\nConnection: close\\r\n\\r\n0",
              f"echo 0 us UNI_ANY  512 1536 > {manager}", f"written {manager}",
              f"written /{SETTINGS}"]),
            ("form", "cmd_id=22&action=1&portId=0&mode=2&def_vid=7 8",
             ["POST /cgi-bin/onu-cgi HTTP/1.1", "def_vid=7 8", "port vlan tag 0  7 8"]),
            ("GET", "cmd_id=3", ["temp:\"36.50 ℃\"", "select address=0x51 ok"]),
            ("GET", "cmd_id=24&action=7", ["(no reply)", "exit status 0", "Nothing."]),
            ("GET", "cmd_id=99",
             ["HTTP/1.1 404processor is not find\nConnection:close\n<HTML><BODY>"]),
            ("upload", "cmd_id=21&update_type=9",
             ["POST /cgi-bin/onu-cgi?cmd_id=21&update_type=9 HTTP", "made /tmp/recFile"]),
        ]
        upload = self.folder / "small"
        upload.write_text("x")
        for method, request, said in cases:
            with self.subTest(request):
                self.choose("#method", method)
                if method == "upload":
                    self.find("input[type=file]").send_keys(str(upload))
                self.send(request)
                self.shows(".results", *said)

    def test_unit_goes_and_returns(self):
        self.open("maintenance")
        self.press("Reboot", "Reboot")
        self.shows("section:nth-of-type(4) .status", "Waiting for the unit")
        self.shows("section:nth-of-type(4) .status", "The unit is up")
        self.assertIn("reboot", self.server.file("record/tools"))

        self.open("counters")
        self.shows("#swRegAckFrames", "1")
        self.server.process.kill()  # nothing of it may stay and keep the unit
        self.server.process.communicate()
        self.shows("#notice", "does not answer")
        self.server.write(COUNTERS, "[sw_m 1 ", "[sw_m 77 ")
        self.server.start()
        self.shows("#notice", "The unit is back")
        self.shows("#swRegAckFrames", "77")
        self.until(lambda: not self.find("#notice").is_displayed())


if __name__ == "__main__":
    unittest.main()
