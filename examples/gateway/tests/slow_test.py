"""A file above 4 GiB, slow clients, and clients that go. Usage: ARXGATE=PROGRAM python3 slow_test.py"""

import os
import subprocess
import time
import unittest

from gate import Gate, Site

SIZE = (4 << 30) + 5


class SlowTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.site = Site()
        cls.addClassCleanup(cls.site.close)
        with open(os.path.join(cls.site.root, "sparse.bin"), "wb") as file:
            file.seek(SIZE - 5)
            file.write(b"12345")
        cls.site.store("large.bin", os.urandom(30000000))
        cls.gate = Gate(cls.site)
        cls.addClassCleanup(cls.gate.stop)
        cls.gate.log_in()
        cls.links = cls.gate.links()

    def test_file_above_4_gib(self):
        link = self.links["sparse.bin"]
        reply = self.gate.curl(link, "-r", f"{SIZE - 6}-")
        self.assertEqual((reply.body, reply.headers["content-range"]),
                         (b"\x0012345", f"bytes {SIZE - 6}-{SIZE - 1}/{SIZE}"))
        compare = "curl -s -b \"$1\" \"$2\" | cmp - \"$3\""
        subprocess.run(["sh", "-c", compare, "sh", self.gate.cookie, self.gate.url + link,
                        os.path.join(self.site.root, "sparse.bin")], check=True)

    def test_slow_clients_get_everything_and_hold_nobody_up(self):
        link = self.links["large.bin"]
        slow = [subprocess.Popen(self.gate.command(link, "--limit-rate", "4M"), stdout=subprocess.PIPE)
                for _ in range(20)]
        begin = time.monotonic()
        self.assertEqual(self.gate.curl("/").status, 200)
        self.assertLess(time.monotonic() - begin, 2)
        with open(os.path.join(self.site.root, "large.bin"), "rb") as file:
            expected = file.read()
        for client in slow:
            self.assertTrue(client.communicate()[0].endswith(expected))

    def test_clients_that_go_leave_nothing_open(self):
        def count_open():
            return len(os.listdir(f"/proc/{self.gate.pid}/fd"))

        before = count_open()
        for _ in range(50):
            with subprocess.Popen(self.gate.command(self.links["large.bin"]), stdout=subprocess.PIPE) as client:
                client.stdout.read(100000)
                client.kill()
        deadline = time.monotonic() + 10
        while count_open() > before and time.monotonic() < deadline:
            time.sleep(0.1)
        self.assertLessEqual(count_open(), before)


if __name__ == "__main__":
    unittest.main()
