#!/usr/bin/env python3
"""tests/support/http_server.py misbehaves as it says: looked at with curl, all kinds at once.

Runs alone: python3 tests/structure/http_server_selftest.py
"""

import concurrent.futures
import os
import pathlib
import subprocess
import tempfile
import time
import unittest

SERVER = pathlib.Path(__file__).resolve().parents[1] / "support" / "http_server.py"
SECONDS = 2  # after which curl gives up

# Codes that curl ends with.
DONE, NO_HTTP, REFUSED, PARTIAL, TIMEOUT, NO_REPLY, RECEIVE = 0, 1, 7, 18, 28, 52, 56
TOO_MANY_REDIRECTS = 47


def curl(*arguments):
    """Curl's exit code, the status, how many bytes came, and the first of them."""
    with tempfile.NamedTemporaryFile() as out:
        result = subprocess.run(
            ["curl", "-s", "--noproxy", "", "-m", str(SECONDS), "-o", out.name, "-w",
             "%{http_code} %{size_download}", *arguments],
            stdout=subprocess.PIPE, env={"PATH": os.environ["PATH"]}, check=False)
        status, size = result.stdout.decode().split()
        return result.returncode, int(status), int(size), out.read(40)


class HttpServer(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.process = subprocess.Popen(["/usr/bin/python3", str(SERVER), cls.folder.name])
        cls.ports_file = os.path.join(cls.folder.name, "ports")
        deadline = time.monotonic() + 30
        while not os.path.exists(cls.ports_file) and time.monotonic() < deadline:
            time.sleep(0.02)
        with open(cls.ports_file, encoding="ascii") as file:
            cls.port, cls.refused, cls.full = file.read().split()

    @classmethod
    def tearDownClass(cls):
        os.remove(cls.ports_file)
        cls.process.wait(30)
        cls.folder.cleanup()

    def ask(self, path, *arguments):
        return curl(f"http://127.0.0.1:{self.port}/{path}", *arguments)

    def test_each_kind_does_what_it_says(self):
        ok = b"OK".hex()
        back = b"/text/4F4B".hex()
        expected = {
            "text/" + ok: (DONE, 200, 2, b"OK"),
            "text/": (DONE, 200, 0, b""),
            "chunked/" + b"0123456789".hex(): (DONE, 200, 10, b"0123456789"),
            "until-close/" + ok: (DONE, 200, 2, b"OK"),
            "pieces/100/" + ok: (DONE, 200, 2, b"OK"),
            "size/12": (DONE, 200, 12, b"012345678901"),
            "size/10485760": (DONE, 200, 10485760, b"0123456789" * 4),
            "late/100/" + ok: (DONE, 200, 2, b"OK"),
            "status/404/" + ok: (DONE, 404, 2, b"OK"),
            "status/204/": (DONE, 204, 0, b""),
            "redirect/302/" + back: (DONE, 200, 2, b"OK"),
            "loop": (TOO_MANY_REDIRECTS, 302, 0, b""),
            "cookie/" + ok: (DONE, 200, 2, b"OK"),
            "cacheable/" + ok: (DONE, 200, 2, b"OK"),
            "auth/" + ok: (DONE, 401, 2, b"OK"),
            "short/" + ok: (PARTIAL, 200, 2, b"OK"),
            "reset/" + ok: (RECEIVE, 200, 2, b"OK"),
            "close": (NO_REPLY, 0, 0, b""),
            "raw/" + b"no reply\r\n".hex(): (NO_HTTP, 0, 0, b""),
            "silent": (TIMEOUT, 0, 0, b""),
        }
        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            answers = pool.map(lambda path: self.ask(path, "-L", "--max-redirs", "3"), expected)
            for (path, answer), got in zip(expected.items(), answers):
                self.assertEqual(answer, got, path)

    def test_what_does_not_end_comes_in_drops_or_without_pause(self):
        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            headers = pool.submit(self.ask, "drip-headers/100")
            body = pool.submit(self.ask, "drip-body/100")
            endless = pool.submit(self.ask, "endless")
            endless_headers = pool.submit(self.ask, "endless-headers")
        self.assertEqual((TIMEOUT, 0), headers.result()[::2])
        code, status, size, _ = body.result()
        self.assertEqual((TIMEOUT, 200), (code, status))
        self.assertTrue(5 <= size <= 25, size)
        code, _, size, data = endless.result()
        self.assertEqual(TIMEOUT, code)
        self.assertTrue(size > 100000, size)
        self.assertEqual(b"a" * 40, data)
        self.assertNotEqual(DONE, endless_headers.result()[0])

    def test_ports_that_refuse_and_that_are_full(self):
        self.assertEqual(REFUSED, curl(f"http://127.0.0.1:{self.refused}/")[0])
        self.assertEqual(TIMEOUT, curl(f"http://127.0.0.1:{self.full}/")[0])

    def test_script_answers_other_paths_also_as_a_proxy_and_requests_are_kept(self):
        with open(os.path.join(self.folder.name, "script"), "w", encoding="ascii") as file:
            file.write("1\ntext/41\ntext/42\n")
        address = "http://some.example/updates/index.php"
        got = [curl("-x", "127.0.0.1:" + self.port, "-d", "a=1", address) for _ in range(3)]
        self.assertEqual([b"A", b"B", b"B"], [answer[3] for answer in got])
        requests = os.path.join(self.folder.name, "requests")
        with open(os.path.join(requests, max(os.listdir(requests))), "rb") as file:
            head, body = file.read().split(b"\r\n\r\n")
        self.assertTrue(head.startswith(b"POST " + address.encode() + b" HTTP/1.1\r\n"))
        self.assertIn(b"Host: some.example", head)
        self.assertEqual(b"a=1", body)


if __name__ == "__main__":
    unittest.main()
