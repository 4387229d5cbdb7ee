#!/usr/bin/python3
"""The console in a real browser, against script/server; leaves pictures in build/screenshots.

    console_test.py [-v] [TEST...]
"""

import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

from selenium import webdriver
from selenium.common.exceptions import WebDriverException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

ROOT = pathlib.Path(__file__).resolve().parents[1]
sys.path.append(str(ROOT / "sim/machine"))
from web import fetch, free_port  # pylint: disable=wrong-import-position
SETTINGS = "var/tevo/website/www/xml/tevo_xml_cfg_file.xml"
TPM = "etc/xml_params/tpm_xml_cfg_file.xml"
COUNTERS = "sys/devices/platform/epon/pm/allCnt"
QUIET = """--headless=new --no-sandbox --disable-gpu --disable-quic --no-first-run --hide-scrollbars
--disable-background-networking --disable-component-update --disable-sync""".split()


class ConsoleTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.unit, cls.port = cls.folder / "unit", free_port()
        cls.start_server()
        options = webdriver.ChromeOptions()
        for argument in QUIET:
            options.add_argument(argument)
        options.add_experimental_option("prefs", {"download.default_directory": str(cls.folder)})
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        cls.page = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        cls.addClassCleanup(cls.page.quit)

    @classmethod
    def run_server(cls, *options):
        return subprocess.Popen([ROOT / "script/server", "--unit", cls.unit, *options], text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    @classmethod
    def start_server(cls):
        cls.server = cls.run_server("--port", str(cls.port), "--www", ROOT / "sim")
        cls.addClassCleanup(cls.server.stdout.close)
        cls.addClassCleanup(cls.server.wait, 20)
        cls.addClassCleanup(cls.server.terminate)
        next(line for line in cls.server.stdout if line.startswith("Ctrl-C"))  # the last one

    def file(self, name):
        return (self.unit / name).read_text()

    def change(self, name, old, new):
        """Changes a file of the unit until the end of the test."""
        path, text = self.unit / name, self.file(name)
        self.addCleanup(path.write_text, text)
        path.write_text(text.replace(old, new, 1))

    def open(self, view, selector="h1", *texts):
        self.page.get("about:blank")
        self.page.get(f"http://127.0.0.1:{self.port}/#{view}")
        self.shows("h1", view.partition("/")[0].capitalize())
        self.shows(selector, *texts)

    def until(self, condition, told=""):
        wait = WebDriverWait(self.page, 60, 0.1, [WebDriverException])
        return wait.until(lambda _: condition(), told)

    def find(self, selector):
        return self.page.find_element("css selector", selector)

    def shows(self, selector, *texts):
        """Waits until an element's text holds all these."""
        self.until(lambda: all(text in self.find(selector).text for text in texts),
                   f"{selector} lacks one of {texts}")

    def value(self, selector):
        return self.find(selector).get_property("value")

    def type(self, selector, text):
        self.find(selector).send_keys(Keys.CONTROL + "a", Keys.NULL, text)

    def press(self, *texts, within="main"):
        """Presses a button, and those of the dialog that comes."""
        for text in texts:
            self.find(within).find_element("xpath", f".//button[.='{text}']").click()
            within = "dialog"

    def send(self, request, *said):
        """Sends a request from the workbench; what comes of it says these texts."""
        self.type("#request", request)
        self.press("Send")
        self.shows(".results", *said)

    def store(self, number, *said, **values):
        """Stores values with the form of a command; its status then says these texts."""
        fold = f"#command-{number}"
        if not self.page.current_url.endswith(f"settings/{number}"):
            self.open(f"settings/{number}")
            time.sleep(0.5)  # the reading
        for name, value in values.items():
            self.type(f"{fold} [name={name}]", value)
        self.press("Store", within=fold)
        self.shows(f"{fold} .status", *said)

    # --- around the console

    def test_server(self):
        xml = "/xml/tevo_xml_cfg_file.xml"
        for path in [xml, f"/{xml}", f"/.{xml}", "/%78ml/tevo%5fxml_cfg_file.xml", xml.upper(),
                     f"/cgi-bin/..{xml}", f"/pages/..{xml}", f"/%2e%2e/%2e%2e/{SETTINGS}",
                     f"/pages/../../../{SETTINGS}", "/xml/", "/pages/"]:
            self.assertRegex(fetch(self.port, path), rb"^HTTP/1.\d 40[04] ", path)
        self.assertIn(b"200 OK", fetch(self.port, "/pages/console_test.py"))
        for said, *options in [
                ("served already", "--port", str(free_port())), ("served already", "--factory"),
                ("is taken", "--unit", self.folder / "other", "--port", str(self.port)),
                *(("is no port", "--port", port) for port in ("abc", "70000", "0", "-1", "", "8 ")),
                ("there is no folder", "--www", "/no/such")]:
            with self.run_server(*options) as refused:
                self.addCleanup(refused.kill)
                self.assertIn(said, refused.communicate(timeout=60)[0], options)
                self.assertNotEqual(refused.returncode, 0, options)
        self.assertFalse((self.folder / "other").exists())

    def test_files(self):
        files = [path for path in (ROOT / "sim/console").rglob("*") if path.is_file()]
        self.assertLess(sum(path.stat().st_size for path in files), 60 * 1024)
        for path in files:  # values reach the page as text nodes only, and nothing comes from afar
            self.assertNotRegex(path.read_text(), r"innerHTML|outerHTML|insertAdjacent|\beval\b|"
                                r"new Function|document.write|https?://(?!www\.w3\.org/2000/svg)")

    def test_reply_reader(self):
        self.open("overview")
        read = """const [reply, keys, done] = arguments;
            import('/reply.js').then(({ readReply, readTrace }) => {
              const { rows, bare, whole } = readReply(reply, keys);
              const trace = readTrace(new TextEncoder().encode(reply).buffer);
              const inner = (row) => Object.entries(row).map((pair) => pair.join('=')).join(' ');
              done(trace ? 'a trace' : bare
                ?? rows.map((row) => `<${inner(row)}>`).join('') + (whole ? '' : ' cut off'));
            });"""
        fec = ["fec_mode", "password", "sn"]
        for reply, want, *keys in [  # the keys where they are known
                (" 0\n", " 0"), ("", ""), ("set \n<HTML>{", "set \n<HTML>{"), ("[]\n", ""),
                ("{}\n", "<>"), ('[{a:"1"}]\n', "<a=1>"), ('{a:"1",b_2:""}\n', "<a=1 b_2=>"),
                ('[ {a:"1",b:"2"},{a:"3",b:"4"}]\n', "<a=1 b=2><a=3 b=4>"),
                ('{a:"1",b:"tr', "<a=1 b=tr> cut off"), ('{a:"1"', '<a=1"> cut off'),
                ('[{a:"1"},', '<a=1"},> cut off'), ('{a:"1",b:"2"},{"}\n', '<a=1 b=2"},{>'),
                ('{a:"say "hi" {\\"},",b:"}"}\n', '<a=say "hi" {\\"}, b=}>'),
                ('{a:"</script>\1\n\t&amp;"}\n', "<a=</script>\1\n\t&amp;>"),
                ('{b:"x",a:"y",c:"z"}\n', '<b=x",a:"y c=z>'),
                ('{__proto__:"x",constructor:"y"}\n', "<__proto__=x constructor=y>"),
                ('{fec_mode:"x",gg:"y",password:"p",sn:"s"}\n',
                 '<fec_mode=x",gg:"y password=p sn=s>', fec),
                ('{fec_mode:"x"},{fec_mode:"",password:"p",sn:"s"}\n',
                 '<fec_mode=x"},{fec_mode:" password=p sn=s>', fec),
                ("status 2\n1\n\nreply 6\n℃\na \n", "a trace"), ("reply 60\nabc", "reply 60\nabc")]:
            self.assertEqual(self.page.execute_async_script(read, reply, *keys or [None]), want)

    # --- the views

    def test_views(self):
        (ROOT / "build/screenshots").mkdir(parents=True, exist_ok=True)
        self.page.get_log("browser")
        views = ["overview", "optics", "counters", "settings", "maintenance", "workbench"]
        for width, view in [(width, view) for width in (360, 1280) for view in views]:
            with self.subTest(view=view, width=width):
                self.page.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
                    "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})
                self.open(view, "nav a[aria-current]", view.capitalize())
                self.until(lambda: self.find(".card"))
                if view == "workbench":
                    self.send("cmd_id=25&action=0")
                time.sleep(1)
                self.page.save_screenshot(f"{ROOT}/build/screenshots/{view}-{width}.png")
                self.assertLessEqual(self.page.execute_script(
                    "return document.documentElement.scrollWidth - innerWidth"), 0)
                self.assertEqual(self.page.get_log("browser"), [])

    def test_overview(self):
        self.open("overview", "main", "registered", "SFU-1GE-3FE", "00:0C:E7:41:9A:2F",
                  "255.255.255.0", "Port 3\ndisabled", "Loop detection\non", "0x0005")
        self.change("sys/devices/platform/epon/info/infoEpon", "Active", "Asleep")
        hostile = '"},{<img src=x onerror=alert(1)></script>'
        self.change(SETTINGS, "SFU-1GE-3FE", hostile.replace("<", "&lt;"))
        self.shows(".hero", "not registered", hostile)

    def test_optics(self):
        self.open("optics", ".reading", "−17.62", "normal")
        self.change("optical_module.registers", "-17.62", "-30.00")
        self.shows(".reading", "−30.00", "alarm", "−30.00 to −17.62 dBm")
        seen = self.page.current_window_handle
        self.page.switch_to.new_window("tab")  # hides the page, which then reads no more
        time.sleep(1)
        reads = self.file("record/i2c")
        time.sleep(5)
        self.assertEqual(self.file("record/i2c"), reads)
        self.page.close()
        self.page.switch_to.window(seen)
        self.until(lambda: self.file("record/i2c") != reads)

    def test_counters(self):
        self.open("counters", "#rxDataFrames", "631 793", "0 f/s")
        self.change(COUNTERS, "631793", "632793")
        self.shows("#rxDataFrames", "632 793")
        self.assertRegex(self.find("#rxDataFrames").text, r"\b(4|5)\d\d f/s")
        self.assertRegex(self.find("#rxDataFrames polyline").get_attribute("points"), r"\d .*\d")
        self.shows("#rxLongFrames", " 0 f/s")
        self.shows("#txByteAllow", "250 000")  # 0x3d090

    def test_settings_by_keyboard(self):
        def tab_to(selector, *keys):
            for _ in range(60):
                if (focused := self.page.switch_to.active_element) == self.find(selector):
                    break
                focused.send_keys(Keys.TAB)
            focused.send_keys(*keys)

        self.open("overview")
        tab_to("nav a[href='#settings']", Keys.ENTER)
        self.shows("h1", "Settings")
        tab_to("#command-25 summary", Keys.ENTER)
        before = self.until(lambda: self.value("#command-25 input"))
        tab_to("#command-25 input", Keys.CONTROL + "a", Keys.NULL, "4321")
        self.shows("#command-25 .was", f"now {before}")
        self.assertNotIn('time="4321"', self.file(SETTINGS))
        tab_to("#command-25 input", Keys.ENTER)
        self.shows("#command-25 .status", "Stored: the unit reads it back")
        self.assertIn('<eth_port time="4321">0<', self.file(SETTINGS))
        self.assertEqual(self.find("#command-25 .was").text, "")

    def test_settings(self):
        before = self.file(SETTINGS)
        self.store(6, "405 set ip fail", "fewer than 8 characters", ip="1.2.3.4")
        self.store(6, "neither & nor the name", "Nothing was sent", ip="192.168.1.1&netmask=0")
        self.store(19, "the present password is another", pwdold="wrong", pwdnew="x")
        self.assertEqual(self.file(SETTINGS), before)
        self.store(19, "cannot be read back", pwdold="admin", pwdnew='a"b<i>c</i>')
        self.assertIn("<admin>a\"b&lt;i", self.file(SETTINGS))

        self.open("settings/28")
        size = "#command-28 [name=voq_thresh]"
        self.until(lambda: self.value(size) == "192")
        self.page.execute_script("""const { fetch } = window;
            let late = 3000;  // the next reading, which the one after it overtakes
            window.fetch = async (...request) => {
              const wait = late;
              late = 0;
              const reply = await fetch(...request);
              await new Promise((done) => setTimeout(done, wait));
              return reply;
            };""")
        for name, choice in [("voq_id", "7"), ("voq_dir", "transmit")]:
            self.find(f"#command-28 [name={name}]").send_keys(choice)
        self.until(lambda: self.value(size) == "128")
        time.sleep(4)
        self.assertEqual(self.value(size), "128")
        self.store(28, "Stored", voq_thresh="99")
        self.assertIn('weight="8" size="99"', self.file(TPM))
        # A file that keeps what it has is not taken for one that stores.
        self.change(TPM, "<ipv4_mtu_ds>1500</ipv4_mtu_ds>", "")
        self.store(16, "but Downstream reads back as", ipv4DsMtu="1400")

        hostile = '",{}:"<img src=x onerror=alert(1)>\''
        self.store(5, "neither & nor the name", "for gpon_loid",
                   ponPassword=hostile.format("gpon_loid"))
        self.store(5, "reads it back, but for Serial number", ponPassword=hostile.format("zz"))
        self.open("settings/5")
        self.until(lambda: self.value("[name=ponPassword]") == hostile.format("zz"))
        self.open("workbench")
        self.send("cmd_id=5", f'ponPassword:"{hostile.format("zz")}"')

    def test_maintenance(self):
        self.open("maintenance")
        export, load, upgrade = (f"section:nth-of-type({n})" for n in (1, 2, 3))
        image, flash = self.folder / "rootfs.squashfs", self.unit / "dev/mtd2"
        image.write_bytes(bytes(range(1, 255)) * 16513 + b"end")  # 4 MiB
        self.find("#update_type").send_keys("root")
        self.find(f"{upgrade} [type=file]").send_keys(str(image))
        self.press("Upgrade", within=upgrade)
        self.shows("dialog", "rootfs.squashfs", "root file system", "restarts")
        self.press("Cancel", within="dialog")
        self.assertEqual(self.find(f"{upgrade} .status").text, "")
        self.page.execute_cdp_cmd("Network.enable", {})
        self.page.execute_cdp_cmd("Network.emulateNetworkConditions", {  # 2 MiB a second upwards
            "offline": False, "latency": 0, "downloadThroughput": -1, "uploadThroughput": 2 << 20})
        self.press("Upgrade", "Upgrade", within=upgrade)
        self.until(lambda: 0 < self.value(f"{upgrade} progress") < 1, "the bar stands still")
        self.shows(f"{upgrade} .status", "Sending", "%")
        self.shows(f"{upgrade} .status", "The unit is")  # up or, on a slow machine, back
        self.assertEqual(flash.read_bytes()[: image.stat().st_size], image.read_bytes())

        before, archive = self.file(SETTINGS), self.folder / "xml_config.tar"
        self.press("Export and download", within=export)
        self.until(archive.exists, "nothing comes")
        self.change(SETTINGS, "<model>SFU-1GE-3FE", "<model>other")
        self.find(f"{load} [type=file]").send_keys(str(archive))
        self.press("Import", "Import", within=load)
        self.shows(f"{load} .status", "Done")
        self.assertEqual(self.file(SETTINGS), before)

    def test_workbench(self):
        self.open("workbench")
        (self.folder / "small").write_text("x")
        manager = "/sys/devices/platform/tpm/cfg_traffic/rate_limit_if_set"
        for method, request, *said in [
                ("GET", "cmd_id=30&action=1&bs=2&bs_thresh=512",
                 "GET /cgi-bin/onu-cgi?cmd_id=30&action=1&bs=2&bs_thresh=512 HTTP/1.1",
                 "200 OK\\r\nContent-Type: application/json\\r\nConnection: close\\r\n\\r\n0",
                 f"echo 0 us UNI_ANY  512 1536 > {manager}", f"written {manager}"),
                ("Form", "cmd_id=22&action=1&portId=0&mode=2&def_vid=7 8",
                 "POST /cgi-bin/onu-cgi HTTP/1.1", "def_vid=7 8", "port vlan tag 0  7 8"),
                ("GET", "cmd_id=3", "temp:\"36.50 ℃\"", "select address=0x51 ok"),
                ("GET", "cmd_id=24&action=7", "(no reply)", "exit status 0", "Nothing."),
                ("GET", "cmd_id=99", "HTTP/1.1 404processor is not find\nConnection:close\n<HTML>"),
                ("Upload", "cmd_id=21&update_type=9",
                 "POST /cgi-bin/onu-cgi?cmd_id=21&update_type=9 HTTP", "made /tmp/recFile")]:
            self.find("#method").send_keys(method)
            if method == "Upload":
                self.find("[type=file]").send_keys(f"{self.folder}/small")
            self.send(request, *said)

    def test_unit_goes_and_returns(self):
        self.open("maintenance")
        self.press("Reboot", "Reboot")
        self.shows("section:nth-of-type(4) .status", "Waiting for the unit")
        self.shows("section:nth-of-type(4) .status", "The unit is up")
        self.assertIn("reboot", self.file("record/tools"))

        self.open("counters", "#swRegAckFrames", "1")
        self.server.kill()  # nothing of it may stay and keep the unit
        self.server.wait()
        self.shows("#notice", "does not answer")
        self.change(COUNTERS, "[sw_m 1 ", "[sw_m 77 ")
        self.start_server()
        self.shows("#notice", "The unit is back")
        self.shows("#swRegAckFrames", "77")
        self.until(lambda: not self.find("#notice").is_displayed())


if __name__ == "__main__":
    unittest.main()
