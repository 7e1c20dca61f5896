"""The gateway as curl sees it. Usage: ARXGATE=PROGRAM python3 gateway_test.py"""

import base64
import io
import os
import re
import signal
import socket
import subprocess
import time
import unittest
import zipfile

from gate import PASSWORD, Gate, Site


class GatewayTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.site = Site()
        cls.addClassCleanup(cls.site.close)
        cls.content = cls.site.store("plain.pdf", os.urandom(300000))
        os.mkdir(os.path.join(cls.site.root, "folder"))
        cls.gate = Gate(cls.site)
        cls.addClassCleanup(cls.gate.stop)
        cls.gate.log_in()
        reply = cls.gate.upload("sealed.pdf", os.path.join(cls.site.root, "plain.pdf"), "sealed")
        assert reply.status == 303, (reply.status, reply.body, cls.gate.read_log())
        cls.links = cls.gate.links()

    def test_status(self):
        link = self.links["plain.pdf"]
        for name, path, options, status in [
                ("page", "/", [], 200), ("file", link, [], 200), ("head", link, ["-I"], 200),
                ("other method", link, ["-X", "DELETE"], 405), ("method without body", "/", ["-X", "OPTIONS"], 405),
                ("unknown path", "/other", [], 404), ("file as folder", "/download.zip" + link[8:], [], 404),
                ("changed signature", link.replace("&s=", "&s=A"), [], 403), ("more values", link + "&x=1", [], 403),
                ("escaped name", link.replace("f=c", "f=%63"), [], 403), ("no values", "/gateway", [], 403),
                ("upload of no form", "/upload", ["-d", "a"], 415),
                ("body of a GET", link, ["-X", "GET", "-d", "a"], 400), ("metrics", "/metrics", [], 200)]:
            with self.subTest(name):
                reply = self.gate.curl(path, *options)
                self.assertEqual(reply.status, status)
                if status == 403:
                    self.assertEqual(reply.body, b"This link is not valid in this session.\n")
        self.assertEqual(self.gate.curl(link, cookie="").status, 403)
        self.assertEqual(self.gate.curl("/upload", "-F", "file=x", cookie="").status, 403)

    def test_headers_of_a_file(self):
        headers = self.gate.curl(self.links["plain.pdf"], "-I").headers
        self.assertEqual(headers["content-length"], str(len(self.content)))
        self.assertEqual(headers["content-type"], "application/pdf")
        self.assertEqual(headers["content-disposition"], "inline; filename*=UTF-8''plain.pdf")
        self.assertEqual(headers["x-content-type-options"], "nosniff")

    def test_conditions(self):
        link = self.links["plain.pdf"]
        headers = self.gate.curl(link, "-I").headers
        etag, modified = headers["etag"], headers["last-modified"]
        for condition, status in [
                (f"If-None-Match: {etag}", 304), (f'If-None-Match: "a", W/{etag}', 304), ("If-None-Match: *", 304),
                ('If-None-Match: "a"', 200)]:
            with self.subTest(condition):
                self.assertEqual(self.gate.curl(link, "-H", condition).status, status)
        for condition, status in [(etag, 206), ('"a"', 200), (f"W/{etag}", 200), (modified, 200)]:
            with self.subTest("If-Range", condition=condition):
                self.assertEqual(self.gate.curl(link, "-r", "1-2", "-H", f"If-Range: {condition}").status, status)

    def test_ranges(self):
        size = len(self.content)
        for text, status, first, end in [
                ("0-0", 206, 0, 1), ("65535-65536", 206, 65535, 65537), ("131072-", 206, 131072, size),
                (f"{size - 1}-{size + 9}", 206, size - 1, size), ("-65537", 206, size - 65537, size),
                (f"-{size + 1}", 206, 0, size), (f"{size}-", 416, 0, 0), ("-0", 416, 0, 0),
                ("5-1", 200, 0, size), ("1-2,4-5", 200, 0, size), ("-", 200, 0, size)]:
            for name in ["plain.pdf", "sealed.pdf"]:
                with self.subTest(text, name=name):
                    reply = self.gate.curl(self.links[name], "-H", f"Range: bytes={text}")
                    self.assertEqual((reply.status, reply.body), (status, self.content[first:end]))
                    expected = {206: f"bytes {first}-{end - 1}/{size}", 416: f"bytes */{size}"}.get(status)
                    self.assertEqual(reply.headers.get("content-range"), expected)
        self.assertEqual(self.gate.curl(self.links["plain.pdf"], "-H", "Range: lines=1-2").status, 200)

    def test_altered_sealed_file_never_arrives_whole(self):
        path = os.path.join(self.site.root, "altered.pdf")
        with open(os.path.join(self.site.root, "sealed.pdf"), "rb") as file:
            sealed = file.read()
        self.site.store("altered.pdf", sealed)
        link = self.gate.links()["altered.pdf"]
        for name, altered in [("first segment", sealed[:60] + b"?" + sealed[61:]), ("cut", sealed[:-70000]),
                              ("later segment", sealed[:200000] + b"????" + sealed[200004:]),
                              ("appended", sealed + b"?"), ("header", sealed[:20] + b"????" + sealed[24:])]:
            with self.subTest(name):
                self.site.store("altered.pdf", altered)
                reply = self.gate.curl(link)
                if reply.status == 200:
                    self.assertEqual(reply.exit_code, 18)  # closed with bytes outstanding
                    self.assertTrue(self.content.startswith(reply.body) and len(reply.body) < len(self.content))
                else:
                    self.assertEqual(reply.status, 500)
        os.remove(path)

    def test_names_that_could_lead_out_are_refused(self):
        before = set(os.listdir(os.path.dirname(self.site.root)))
        source = os.path.join(self.site.root, "plain.pdf")
        for name in ["../out", "a/b", "a\\\\b", "C:out", "a..b", ".hidden", "a%2fb", "a%5Cb", "%2E%2E", "a\tb", ""]:
            with self.subTest(name):
                self.assertEqual(self.gate.upload(name, source, "plain").status, 400)
                signed = base64.urlsafe_b64encode(name.encode()).decode().rstrip("=")
                self.assertEqual(self.gate.curl(re.sub("f=[^&]*", "f=" + signed, self.links["plain.pdf"])).status, 403)
        for path in ["/../../etc/passwd", "/gateway/..%2f..%2fetc%2fpasswd", "/%2e%2e/"]:
            self.assertEqual(self.gate.curl(path).status, 404)
        self.assertEqual(set(os.listdir(os.path.dirname(self.site.root))), before)

    def test_symbolic_link_in_place_of_a_file_is_not_followed(self):
        self.site.store("swapped.txt", b"content")
        link = self.gate.links()["swapped.txt"]
        path = os.path.join(self.site.root, "swapped.txt")
        os.remove(path)
        os.symlink("/etc/passwd", path)
        self.assertEqual(self.gate.curl(link).status, 404)
        self.assertNotIn("swapped.txt", self.gate.links())

    def test_session(self):
        other = Gate(self.site)
        self.addCleanup(other.stop)
        for user, password in [("ann", "wrong"), ("bob", PASSWORD), ("", "")]:
            self.assertEqual(other.log_in(user, password).status, 403)
            self.assertEqual(other.cookie, "")
        cookie = other.log_in().headers["set-cookie"]
        self.assertRegex(cookie, r"^arxgate=[0-9a-f]{104}; Max-Age=43200; Path=/; HttpOnly; Secure; SameSite=Strict$")
        self.assertEqual(other.curl(self.links["plain.pdf"]).status, 403)  # a link of the other session
        good = other.cookie
        other.cookie = self.gate.cookie
        self.assertEqual(other.curl(self.links["plain.pdf"]).body, self.content)  # begun by the other gateway
        for place in [8, 39, 41, 103]:
            other.cookie = good[:place] + ("0" if good[place] != "0" else "1") + good[place + 1:]
            self.assertEqual(other.links(), {})

    def test_upload(self):
        source = os.path.join(self.site.root, "plain.pdf")
        for store in ["plain", "sealed"]:
            name = f"größe & {store}.txt"
            reply = self.gate.upload(name, source, store)
            self.assertEqual(reply.status, 303)
            notice = reply.headers["set-cookie"].split(";")[0]
            self.assertRegex(self.gate.curl("/", cookie=f"{self.gate.cookie}; {notice}").body.decode(),
                             rf"größe &#38; {store}.txt: 300000 bytes stored {store} in [0-9]+ µs")
            link = self.gate.links()[f"größe &#38; {store}.txt"]
            self.assertEqual(self.gate.curl(link).body, self.content)
            with open(os.path.join(self.site.root, name), "rb") as file:
                self.assertEqual(file.read() == self.content, store == "plain")
            os.remove(os.path.join(self.site.root, name))

    def test_folder_as_archive(self):
        os.makedirs(os.path.join(self.site.root, "folder", "deep"))
        self.site.store("folder/deep/a.txt", b"text")
        with open(os.path.join(self.site.root, "sealed.pdf"), "rb") as sealed:
            self.site.store("folder/sealed.pdf", sealed.read())
        os.symlink("/etc", os.path.join(self.site.root, "folder", "etc"))
        reply = self.gate.curl(self.links["folder"])
        self.assertIn("filename*=UTF-8''folder.zip", reply.headers["content-disposition"])
        with zipfile.ZipFile(io.BytesIO(reply.body)) as archive:
            self.assertEqual(sorted(archive.namelist()), ["deep/a.txt", "sealed.pdf"])
            self.assertEqual(archive.read("sealed.pdf"), self.content)

    def test_request_after_an_unread_body_is_not_served(self):
        host, port = self.gate.url[7:].split(":")
        inner = b"GET /metrics HTTP/1.1\r\nHost: a\r\n\r\n"
        head = b"POST /other HTTP/1.1\r\nHost: a\r\nContent-Length: %d\r\n\r\n" % len(inner)
        with socket.create_connection((host, int(port))) as connection:
            connection.sendall(head + inner)
            received = b"".join(iter(lambda: connection.recv(65536), b""))
        self.assertEqual(received.count(b"HTTP/1.1 "), 1)
        self.assertIn(b"Connection: close", received)

    def test_log_and_metrics(self):
        self.gate.curl('/no%0a"line')
        self.assert_soon(r'(?m)^127\.0\.0\.1 - - \[[^]]+ \+0000\] "GET /no%0a\\x22line HTTP/1\.1" 404 23$',
                         self.gate.read_log)
        self.assert_soon(r'(?m)^arxgate_requests_total\{code="404"\} [1-9]',
                         lambda: self.gate.curl("/metrics").body.decode())

    def assert_soon(self, pattern, read):
        """A request is logged and counted after its response has been sent."""
        deadline = time.monotonic() + 10
        while not re.search(pattern, read()) and time.monotonic() < deadline:
            time.sleep(0.05)
        self.assertRegex(read(), pattern)

    def test_end_waits_for_requests_in_flight(self):
        large = self.site.store("large.bin", os.urandom(20000000))
        gate = Gate(self.site)
        gate.log_in()
        link = gate.links()["large.bin"]
        with subprocess.Popen(gate.command(link, "--limit-rate", "10M"), stdout=subprocess.PIPE) as client:
            begin = client.stdout.read(1000000)
            os.kill(gate.pid, signal.SIGTERM)
            self.assertTrue((begin + client.stdout.read()).endswith(large))
        self.assertEqual(gate.stop(), 0)

    def test_tls(self):
        certificate, key = self.site.path("cert.pem"), self.site.path("cert.key")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=localhost", "-keyout",
                        key, "-out", certificate], check=True, capture_output=True)
        gate = Gate(self.site, "--tls-cert", certificate, "--tls-key", key)
        self.addCleanup(gate.stop)
        gate.log_in()
        self.assertEqual(gate.curl(gate.links()["plain.pdf"]).body, self.content)


if __name__ == "__main__":
    unittest.main()
