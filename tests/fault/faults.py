#!/usr/bin/env python3
"""Runs a command of arxhost, or an operation of the public classes, once for each point where something can fail.

    faults.py ROW SHIM ARXHOST PUBLIC_CLASSES

At each point an allocation or a system call fails, a transfer passes half, or the process is killed. Then exit code
0 must mean a complete and right result, and 2 a failure that standard error tells, with the old target untouched
and no file beside it. A kill leaves the old target or a complete new one. The shim counts the points of allocations
and transfers, strace those of system calls. Of more than LIMIT points of a kind, LIMIT evenly spread ones are tried.
"""
import collections
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import typing
import zipfile

LIMIT = 100
NAME, SHIM, ARXHOST, CLASSES = sys.argv[1], *map(os.path.abspath, sys.argv[2:])
TREE = {"a": b"old contents", "b/c": os.urandom(20000) + bytes(180000)}
SHIM_KINDS = {"allocation": "allocations", "memory": "allocations", "transfer": "transfers"}

# What other libraries do wrong, and what the back trace or the log then shows.
KNOWN = [
    ("crash", "zipOpenNewFileInZip4_64"),  # minizip doesn't look at its third allocation for a new entry,
    ("crash", "zipCloseFileInZipRaw64"),  # also where memory lacks since the end of the entry before,
    ("allocated", "deflateInit2_"),  # it loses the header of an entry that can't be deflated,
    ("allocated", "inflateInit2_"),  # the buffer of one that can't be inflated,
    ("allocated", "libminizip"),  # and an open file with the last allocation of unzOpen
    ("allocated", "CRYPTO_strndup"),  # OpenSSL loses a part of a fetched method
    ("crash", "directory_iterator"),  # libstdc++ may not raise here, but allocates
    ("crash", "asprintf"),  # the C library doesn't look at it when it reads the time zone
    ("open", "close("),  # strace doesn't close what it lets fail
]


def is_archive(path):
    with zipfile.ZipFile(path) as archive:
        return {name: archive.read(name) for name in archive.namelist()} == TREE


def is_sealed(path):
    plain = path.parent.with_name("plain")
    run([ARXHOST, "unseal", path, plain], path.parent).check_returncode()
    return plain.read_bytes() == TREE["b/c"]


class Row(typing.NamedTuple):
    arguments: str = ""
    target: str = "none"
    is_whole: typing.Callable = lambda target: True
    stdin: str = "/dev/null"
    repeats: bool = False  # an interrupted call, so that EINTR ends in success


ROWS = {
    "zip": Row("zip out tree", "out", is_archive),
    "unzip": Row("unzip in.zip new", "new", lambda new: all((new / name).read_bytes() == TREE[name] for name in TREE)),
    "seal": Row("seal tree/b/c out", "out", is_sealed, repeats=True),
    "unseal": Row("unseal sealed out", "out", lambda out: out.read_bytes() == TREE["b/c"], repeats=True),
    "list": Row("list in.zip"),
    "cat": Row("cat in.zip b/c"),
    "sign": Row("--config settings sign tree/a --session s"),
    "check": Row("--config settings check URL --session s"),
    "qp": Row("qp", stdin="tree/b/c"),
}
ROW = ROWS.get(NAME, Row())


class Fault(typing.NamedTuple):
    kind: str = "none"
    point: int = 0  # among the calls of that name, all allocations, or all transfers
    call: str = ""


class Trial(typing.NamedTuple):
    result: subprocess.CompletedProcess
    report: str  # the shim's
    log: str  # strace's
    problem: str = ""


def run(command, folder, stdin="/dev/null", **more):
    environment = {**os.environ, "TZ": "UTC", "LC_ALL": "C", "XDG_STATE_HOME": str(folder), **more}
    with open(folder / stdin, "rb") as source:
        return subprocess.run(command, cwd=folder, stdin=source, capture_output=True, env=environment, timeout=100)


def make_scene(scene):
    """Fills the folder of which each run gets a copy, and returns the command."""
    for name, contents in TREE.items():
        (scene / "tree" / name).parent.mkdir(parents=True, exist_ok=True)
        (scene / "tree" / name).write_bytes(contents)
    (scene / "settings").write_text("gatewayUrl = http://gate/and/something/longer\ndispatcherID = d1\n")
    for command in "zip in.zip tree", "seal tree/b/c sealed":
        run([ARXHOST, *command.split()], scene).check_returncode()
    url = run([ARXHOST, *ROWS["sign"].arguments.split()], scene).stdout.decode().strip()
    (scene / "out").write_bytes(b"old")
    return [ARXHOST, *ROW.arguments.replace("URL", url).split()] if NAME in ROWS else [CLASSES, NAME]


def strike(scene, command, fault, expected=None):
    with tempfile.TemporaryDirectory() as place:
        folder, report, log = (pathlib.Path(place, name) for name in ("run", "report", "log"))
        shutil.copytree(scene, folder)
        settings = {"FAULT_REPORT": str(report), "LD_LIBRARY_PATH": os.path.dirname(SHIM)}
        if NAME in ROWS:
            settings["LD_PRELOAD"] = os.path.basename(SHIM)  # a path must have no blanks
        else:
            settings["FAULT_WAITS"] = "1"
        if fault.kind in SHIM_KINDS:
            result = run(command, folder, ROW.stdin, **settings, FAULT=f"{fault.kind}:{fault.point}")
        else:
            trace = ["strace", "-fy", "-o", log, "-e", "trace=file,desc,getrandom"]
            trace += [word for item in settings.items() for word in ("-E", "=".join(item))]
            if fault.call:
                trace += ["-e", f"inject={fault.call}:{fault.kind}:when={fault.point}"]
            result = run(trace + command, folder, ROW.stdin)
        texts = (path.read_text(errors="replace") if path.exists() else "" for path in (report, log))
        trial = Trial(result, *texts)
        return trial._replace(problem=find_problem(scene, folder, fault, trial, expected))


def find_problem(scene, folder, fault, trial, expected):
    code, told = trial.result.returncode, trial.result.stderr.decode(errors="replace")
    target, old = folder / ROW.target, scene / ROW.target
    is_old = target.read_bytes() == old.read_bytes() if old.exists() else not target.is_file()
    try:
        is_whole = ROW.is_whole(target)
    except Exception:  # what reads a broken file raises errors of many kinds
        is_whole = False
    if code == -signal.SIGKILL and "KILL" in fault.kind:
        return "" if is_old or is_whole else "a kill loses the old target"
    if code < 0:
        return "a crash"
    if code == 0:
        return "" if is_whole and expected in (None, trial.result.stdout) else "a false success"
    if code != 2 or not told:
        return f"exit code {code}: {told}"
    # What fails after the new target took its name leaves it there.
    is_placed = not fault.call or re.search(r"(rename|link)\w*\(.* = 0\n", trial.log.partition("(INJECTED)")[0])
    if not is_old and not (is_placed and is_whole):
        return "a failure loses the old target"
    extra = [path.name for path in folder.iterdir() if not (scene / path.name).exists() and path != target]
    if extra and NAME in ROWS:
        return f"a failure leaves {extra}"
    if "EINTR" in fault.kind and ROW.repeats and fault.call in ("read", "write", "openat", "fsync"):
        return "an interrupted call is not repeated"
    return ""


def find_faults(trial):
    """All faults that are possible in a run like that one, by kind."""
    counts = dict(line.split() for line in trial.report.splitlines())
    faults = {kind: [Fault(kind, 1 + point) for point in range(int(counts[SHIM_KINDS[kind]]))] for kind in SHIM_KINDS}
    before, _, during = trial.log.rpartition("/faults begin")
    seen = collections.Counter(re.findall(r"^\d+ +(\w+)\(", before, re.MULTILINE))
    calls = []
    for line in during.partition("/faults end")[0].splitlines()[1:]:
        call = re.match(r"\d+ +(\w*)", line)[1]
        seen[call] += 1
        if call not in ("mmap", "ioctl", "access", "") and ".gcda" not in line:
            calls.append((seen[call], call))
    kinds = ["error=EIO", "error=EINTR"] + ["signal=KILL"] * (ROW.target != "none")
    return {**faults, **{kind: [Fault(kind, *call) for call in calls] for kind in kinds}}


def main():
    with tempfile.TemporaryDirectory() as scene:
        scene = pathlib.Path(scene)
        command = make_scene(scene)
        good = strike(scene, command, Fault())
        if good.problem or good.result.returncode:
            sys.exit(f"without a fault: {good}")
        codes, problems, known = collections.Counter(), 0, 0
        for kind, faults in find_faults(good).items():
            chosen = faults[:: 1 + len(faults) // LIMIT]
            print(f"{NAME} {kind}: {len(faults)} points, {len(chosen)} tried", flush=True)
            for fault in chosen:
                trial = strike(scene, command, fault, good.result.stdout)
                codes[trial.result.returncode] += 1
                where = "".join(line for line in trial.log.splitlines(True) if "INJECTED" in line) or trial.report
                if any(what in trial.problem and place in where for what, place in KNOWN):
                    known += 1
                elif trial.problem:
                    problems += 1
                    print(fault, trial.problem, trial.result.stderr.decode(errors="replace"), where, flush=True)
        print(f"{NAME}: {codes[0]} succeeded, {codes[2]} failed, {codes[-signal.SIGKILL]} were killed; "
              f"{problems} problems, {known} known faults of other libraries")
        sys.exit(problems > 0)


if not shutil.which("strace") or subprocess.run(["strace", "-o", "/dev/null", "true"], check=False).returncode:
    print("skipped: strace can't trace processes here")
    sys.exit(77)
main()
