"""A gateway for the length of a test, and curl as its client."""

import os
import re
import signal
import subprocess
import tempfile

PROGRAM = os.environ["ARXGATE"]
PASSWORD = "correct horse"


class Reply:
    """What curl got: exit code, status, headers by lower-case name, body."""

    def __init__(self, exit_code, output):
        head, _, self.body = output.partition(b"\r\n\r\n")
        while head.startswith(b"HTTP/1.1 100"):
            head, _, self.body = self.body.partition(b"\r\n\r\n")
        lines = head.decode("latin-1").split("\r\n")
        self.exit_code = exit_code
        self.status = int(lines[0].split()[1]) if " " in lines[0] else 0
        fields = [line.partition(": ") for line in lines[1:]]
        self.headers = {name.lower(): value for name, _, value in fields}
        assert len(self.headers) == len(fields), lines  # none is there twice


class Site:
    """A root, a key and a user that several gateways may share."""

    def __init__(self):
        self._folder = tempfile.TemporaryDirectory(prefix="arxgate-")
        self.root = os.path.join(self._folder.name, "root & more")
        os.mkdir(self.root)
        with open(os.open(self.path("key"), os.O_CREAT | os.O_WRONLY, 0o600), "wb") as key:
            key.write(os.urandom(32))
        with open(self.path("config"), "w") as config:
            config.write(f"cryptoKeyFile={self.path('key')}\n")
        hashed = subprocess.run(["openssl", "passwd", "-6", PASSWORD], text=True, capture_output=True, check=True).stdout
        with open(self.path("users"), "w") as users:
            users.write(f"ann:{hashed}")

    def path(self, name):
        return os.path.join(self._folder.name, name)

    def store(self, name, content):
        with open(os.path.join(self.root, name), "wb") as file:
            file.write(content)
        return content

    def close(self):
        self._folder.cleanup()


class Gate:
    def __init__(self, site, *options):
        self._log = open(site.path("log"), "ab+")
        self._process = subprocess.Popen(
            [PROGRAM, "--root", site.root, "--listen", "127.0.0.1:0", "--config", site.path("config"), "--users",
             site.path("users"), *options], stdout=subprocess.PIPE, stderr=self._log)
        port = self._process.stdout.readline().decode().split()[-1]
        self.url = ("https" if "--tls-cert" in options else "http") + "://127.0.0.1:" + port
        self.pid = self._process.pid
        self.cookie = ""

    def command(self, path, *options, cookie=None):
        return ["curl", "-s", "-i", "-k", "--http1.1", "--path-as-is", "-m", "60", "-b",
                self.cookie if cookie is None else cookie, *options,
                self.url + path]

    def curl(self, path, *options, cookie=None):
        result = subprocess.run(self.command(path, *options, cookie=cookie), capture_output=True)
        return Reply(result.returncode, result.stdout)

    def log_in(self, user="ann", password=PASSWORD):
        reply = self.curl("/session", "-d", f"user={user}&password={password.replace(' ', '+')}")
        self.cookie = reply.headers.get("set-cookie", "").split(";")[0]
        return reply

    def upload(self, name, path, store):
        return self.curl("/upload", "-F", f"store={store}", "-F", f'file=@"{path}";filename="{name}"')

    def links(self):
        """The page's links by name."""
        page = self.curl("/").body.decode()
        return {name: url.replace("&#38;", "&") for url, name in re.findall(r'<a href="([^"]*)">([^<]*)</a>', page)}

    def read_log(self):
        self._log.seek(0)
        return self._log.read().decode()

    def stop(self):
        self._process.send_signal(signal.SIGTERM)
        self._process.stdout.close()
        self._log.close()
        return self._process.wait(60)
