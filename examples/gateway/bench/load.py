"""Requests a second beside nginx, latency, memory, and one of two gateways killed.

Usage: ARXGATE=PROGRAM PYTHONPATH=FOLDER_OF_GATE python3 load.py [SECONDS of each load]
"""

import base64
import contextlib
import hashlib
import os
import re
import signal
import subprocess
import sys
import time

from gate import Gate, Site

FILES = 100
SECONDS = int(sys.argv[1]) if len(sys.argv) > 1 else 5
PATHS_SCRIPT = """
local paths, next = {}, 0
function init(arguments)
    for path in io.lines(arguments[1]) do paths[#paths + 1] = path end
end
function request()
    next = next % #paths + 1
    return wrk.format(nil, paths[next])
end
"""
NGINX = """
user root;
worker_processes auto;
pid nginx.pid;
error_log error.log warn;
events {{ worker_connections 4096; }}
http {{
    access_log access.log;
    client_body_temp_path temporary; proxy_temp_path temporary; fastcgi_temp_path temporary;
    uwsgi_temp_path temporary; scgi_temp_path temporary;
    sendfile on;
    keepalive_requests 1000000;
    upstream plain {{ server {plain}; keepalive 64; keepalive_requests 1000000; keepalive_timeout 4s; }}
    upstream accel {{ server {accel}; keepalive 64; keepalive_requests 1000000; keepalive_timeout 4s; }}
    proxy_http_version 1.1;
    proxy_set_header Connection "";
    server {{
        listen 127.0.0.1:9001;
        root "{root}";
        location / {{
            secure_link $arg_md5;
            secure_link_md5 "$uri$cookie_arxgate secret";
            if ($secure_link = "") {{ return 403; }}
        }}
    }}
    server {{ listen 127.0.0.1:9002; location / {{ proxy_pass http://plain; }} }}
    server {{
        listen 127.0.0.1:9003;
        location / {{ proxy_pass http://accel; }}
        location /plain/ {{ internal; alias "{root}/"; }}
    }}
}}
"""


def measure(url, paths, cookie, connections=200, seconds=SECONDS, meanwhile=None):
    """The output of wrk, which asks for all paths in turn."""
    with open("paths", "w") as file:
        file.write("\n".join(paths) + "\n")
    with open("paths.lua", "w") as file:
        file.write(PATHS_SCRIPT)
    with subprocess.Popen(["wrk", "-t1", f"-c{connections}", f"-d{seconds}", "--latency", "-H", f"Cookie: {cookie}",
                           "-s", "paths.lua", url, "--", "paths"], stdout=subprocess.PIPE, text=True) as wrk:
        if meanwhile:
            meanwhile()
        return wrk.stdout.read()


def report(name, output):
    rate, transfer = re.search(r"Requests/sec: *([0-9.]+)\nTransfer/sec: *(\S+)", output).groups()
    latency = re.search(r" 50% *(\S+)(?:.|\n)* 99% *(\S+)", output)
    failed = " ".join(re.findall(r"(?:Non-2xx|Socket errors).*", output)) or "no failed request"
    print(f"{name:36} {float(rate):8.0f} requests/s, {transfer}/s, half below {latency[1]}, 99 % below {latency[2]}, "
          f"{failed}", flush=True)


def read_memory(pid):
    with open(f"/proc/{pid}/status") as status:
        return int(re.search(r"VmRSS:\s*(\d+)", status.read())[1])


def write_nginx_configuration(site, plain, accel):
    os.mkdir("temporary")
    with open("nginx.conf", "w") as file:
        file.write(NGINX.format(plain=plain.url[7:], accel=accel.url[7:], root=site.root))


def sign_for_nginx(names, cookie):
    session = cookie.partition("=")[2]
    for name in names:
        digest = hashlib.md5(f"/{name}{session} secret".encode()).digest()
        yield f"/{name}?md5=" + base64.urlsafe_b64encode(digest).decode().rstrip("=")


def compare_with_secure_link(site, cleanup):
    plain, accel = Gate(site), Gate(site, "--accel", "/plain/")
    cleanup.callback(plain.stop)
    cleanup.callback(accel.stop)
    plain.log_in()
    write_nginx_configuration(site, plain, accel)
    nginx = subprocess.Popen(["nginx", "-p", os.getcwd(), "-c", "nginx.conf", "-g", "daemon off;"])
    cleanup.callback(end, nginx)
    time.sleep(1)
    links = plain.links()
    large = links.pop("large.bin")
    small = list(links.values())
    for title, paths, names, connections in [(f"{FILES} files of 1 KiB", small, links, 200),
                                             ("a file of 16 MiB", [large], ["large.bin"], 16)]:
        secure = list(sign_for_nginx(names, plain.cookie))
        for _ in range(3):
            print(f"{title}, {connections} connections, load {os.getloadavg()[0]:.1f} before", flush=True)
            for name, url, asked in [("nginx secure_link", "http://127.0.0.1:9001", secure),
                                     ("arxgate", plain.url, paths),
                                     ("nginx, arxgate", "http://127.0.0.1:9002", paths),
                                     ("nginx, arxgate with X-Accel-Redirect", "http://127.0.0.1:9003", paths)]:
                report(name, measure(url, asked, plain.cookie, connections))
    before, count = read_memory(plain.pid), 0
    while count < 100000:
        count += int(re.search(r"(\d+) requests in", measure(plain.url, small, plain.cookie))[1])
    print(f"memory {before} KiB, {read_memory(plain.pid)} KiB after {count} more requests", flush=True)


def kill_one_of_two(site, cleanup):
    here = os.path.dirname(os.path.abspath(__file__))
    run = subprocess.Popen([os.path.join(here, "../compose/run"), os.environ["ARXGATE"], site.root],
                           stdout=subprocess.PIPE, text=True)
    cleanup.callback(end, run)
    while not (announced := re.search(r"password (\S+), logs in (\S+)", run.stdout.readline())):
        pass
    time.sleep(1)
    gate = Gate(site)  # only its client is used, for the gateways that run has started
    cleanup.callback(gate.stop)
    gate.url = "https://127.0.0.1:8443"
    assert gate.log_in("demo", announced[1].replace("+", "%2B")).status == 303

    def kill():
        time.sleep(2)
        with open(os.path.join(announced[2], "8081.pid")) as pid:
            os.kill(int(pid.read()), signal.SIGKILL)

    small = [link for name, link in gate.links().items() if name != "large.bin"]
    report("one of two killed and restarted", measure(gate.url, small, gate.cookie, 50, 8, kill))


def end(process):
    process.terminate()
    process.wait()


def main():
    with contextlib.ExitStack() as cleanup:
        site = Site()
        cleanup.callback(site.close)
        for number in range(FILES):
            site.store(f"file{number}.txt", os.urandom(1024))
        site.store("large.bin", os.urandom(16 << 20))
        os.chdir(os.path.dirname(site.root))
        compare_with_secure_link(site, cleanup)
        kill_one_of_two(site, cleanup)


if __name__ == "__main__":
    main()
