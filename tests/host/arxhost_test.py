"""What an operator sees of arxhost: exit codes, output, errors, and what is on the disk afterwards."""

import base64
import json
import os
import re
import signal
import subprocess
import tempfile
import time
import unittest
import zipfile
import zlib
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

ARXHOST = os.path.abspath(os.environ['ARXHOST'])
BIG = b''.join(b'needle %d%s' % (i, b' =\x80' if i % 7 else b'\n') for i in range(30000))
SETTINGS = 'gatewayUrl=http://g/x\nexternalDispatcherUrl = http://e?x\n# comment\ndispatcherID=d1\n'


@dataclass(frozen=True)
class Row:
    """One command line, run in a fresh folder with $A for arxhost; patterns match the whole text."""
    name: str
    command: str
    exit_code: int = 0
    output: str = ''
    errors: str = ''
    set_up: Callable[[], None] = lambda: None


def archive(**contents):
    """Makes NAME.zip of entries, for each NAME given."""
    def make():
        for name, entries in contents.items():
            with zipfile.ZipFile(name + '.zip', 'w') as file:
                for entry, data in entries.items():
                    file.writestr(entry, data)
    return make


def dates(*each):
    """Makes z.zip of an entry for each date, which need not exist."""
    return archive(z={zipfile.ZipInfo(str(i), date): b'' for i, date in enumerate(each)})


def replace_last(old, new):
    head, _, tail = Path('z.zip').read_bytes().rpartition(old)
    Path('z.zip').write_bytes(head + new + tail)


def damaged(entries, old, new):
    """Makes z.zip of entries, with the last old in it replaced by new."""
    def make():
        archive(z=entries)()
        replace_last(old, new)
    return make


def needs(path):
    """Skips where a root was set up without that file."""
    def check():
        if not os.path.exists(path):
            raise unittest.SkipTest(path + ' is not there')
    return check


def many_entries():
    os.mkdir('many')
    for i in range(65600):
        Path('many', str(i)).touch()
    subprocess.run([ARXHOST, 'zip', 'z.zip', 'many'], check=True, stdout=subprocess.PIPE)


def many_entries_and_a_broken_one():
    many_entries()
    replace_last(b'PK\1\2', b'PK\1\3')


def checksum(text):
    """Of UTF-16, terminator included, in the byte order that the program's ELF header names; it may run emulated."""
    order = 'utf-16-le' if Path(ARXHOST).read_bytes()[5] == 1 else 'utf-16-be'
    return '%08x\n' % zlib.crc32((text + '\0').encode(order))


def require_this_machine():
    machines = {Path(program).read_bytes()[18:20] for program in ('/proc/self/exe', ARXHOST)}
    if len(machines) > 1:
        raise unittest.SkipTest('an emulator opens the streams that are closed')


def sealed_file():
    subprocess.run([ARXHOST, 'seal', 'big', 'sealed'], check=True)


OLD_STAYS = '; code=$?; cat old.zip; exit $code'
ROWS = [
    Row('SignsForTheGateway', '$A --config conf sign dir/f.txt --session s', 0,
        r'http://g/x\?b_action=dc&f=Zi50eHQ&k=[-\w]{43}&s=[-\w]{43}&did=d1\n'),
    Row('SignsForTheDispatcher', '$A sign dir/f.txt --session s --dispatcher --config conf', 0,
        r'http://e\?x\?b_action.*\n'),
    Row('RefusesToSignWhatIsNoFile', '$A sign dir --session s', 2,
        errors='arxhost: sign: dir: is no regular file\n'),
    Row('RefusesAnEmptySession', "$A sign dir/f.txt --session ''", 2,
        errors='arxhost: sign: --session: must not be empty .*\n'),
    Row('TellsWhyItDoesNotStart', 'chmod 644 arxium/master.key; $A sign dir/f.txt --session s', 2,
        errors='arxhost: sign: .*master.key is open to group or others.*\n', set_up=sealed_file),
    Row('TellsExceptionsOnRequest', '$A --trace unseal big out', 2,
        errors='arxhost: unseal: big: .*\nNEBException\n(.*\n)*  NEB_THROW at crypto/.*\n(.*\n)*'),
    Row('NamesWhatIsNoCommand', '$A frob; $A path frob; $A list a b', 2,
        errors='.*: frob: no such command.*\n.*path: frob: .*\n.*list: b: .*\n'),
    Row('RefusesEmptyNames', "$A --config '' list z; $A unzip z ''; $A zip '' dir; $A zip z dir --base ''; $A seal big ''; "
        "$A unseal s ''; $A unseal '' s; $A list ''", 2, errors='(arxhost: \\w+: [-\\w]+: must not be empty .*\n){8}'),
    Row('TellsWhyTheSettingsCannotBeRead', 'for name in none dir keyless twice; do $A --config $name checksum x; done', 2,
        errors='.*: none: No such file .*\n.*: dir: Is a directory\n.*: keyless:3: no "key=value"\n'
        '.*: twice:2: "a" is set twice\n',
        set_up=lambda: (Path('keyless').write_text('a=1\n\n=2'), Path('twice').write_text('a=1\na=2'))),
    Row('LetsASignalEndTheWaitForSettings', 'mkfifo p; timeout -k 9 0.2 $A --config p checksum x', 124),
    Row('TakesItsTour', '$A tour dir/f.txt', 0,
        r'(.*\n)*.*checked: right\n(.*\n)*.*copy refused\n.*stopped\n'),

    Row('SealsAndUnseals', '$A seal big s && $A unseal s p && cmp big p && ! grep -q needle s && ls', 0,
        'arxium\nbig\nconf\ndir\np\ns\n'),
    Row('SealsFromAndUnsealsToStreams', 'cat big | $A seal - s && $A unseal s - | cmp - big'),
    Row('UnsealsByTheNameThatItSealed', "mkdir a; $A seal big 'a\\b' && $A unseal 'a\\b' - | cmp - big"),
    Row('RefusesStreamsThatCannotBe', '$A seal big -; $A unseal - p; $A zip - dir', 2,
        errors="(arxhost: \\w+: an .* can't .*\n){3}"),
    Row('TellsAClosedInput', '$A seal - s <&-', 2, errors='arxhost: seal: standard input: Bad file descriptor\n',
        set_up=require_this_machine),
    Row('KeepsUnsealedDataPrivate', 'umask 0; $A unseal sealed p; stat -c %a p', 0, '600\n', set_up=sealed_file),
    Row('KeepsTheModeOfAReplacedFile', 'echo > o; chmod 640 o; $A seal big o; stat -c %a o', 0, '640\n'),
    Row('RefusesLinksAndFoldersAsTargets', 'echo old > l; ln -s l o; for name in o dir/; do $A seal big $name; '
        '$A unseal sealed $name; $A zip $name dir/sub; done; cat l', 0, 'old\n',
        '(arxhost: .*(not a regular|something else).*\n){6}', set_up=sealed_file),
    Row('PlacesFilesOfTheLongestNames', 'n=$(printf %0255d 0); $A seal big $n && $A unseal $n ${n%0}1 && ls | wc -l', 0,
        '6\n'),
    Row('TellsAReadErrorWhileSealing', 'echo old > o; $A seal /proc/self/mem o; cat o; ls -A', 0,
        'old\narxium\nbig\nconf\ndir\no\n', 'arxhost: seal: /proc/self/mem: Input/output error\n'),
    Row('KeepsTheOldFileWhenUnsealingFails', 'echo old > p; truncate -s 70000 sealed; $A unseal sealed p; cat p; ls -A', 0,
        'old\narxium\nbig\nconf\ndir\np\nsealed\n', 'arxhost: unseal: sealed: is damaged, .*\n', set_up=sealed_file),
    Row('TellsAFullDiskUnderStandardOutput', '$A unseal sealed - > /dev/full; $A list z.zip > /dev/full; '
        '$A qp < big > /dev/full; $A --help > /dev/full', 2,
        errors='(arxhost: (\\w+: )?standard output: No space left on device\n){4}',
        set_up=lambda: (sealed_file(), archive(z={'a': b'1'})())),

    Row('ZipsAndUnzips', '$A zip z.zip dir && $A unzip z.zip out && diff -r dir out', 0, '2 files\n2 entries\n'),
    Row('ZipsWithABase', '$A zip z.zip dir/sub --base dir && $A list z.zip | cut -f 1,2', 0,
        '1 files\nname\tsize\nsub/g.txt\t2\n'),
    Row('ZipsFlatAndLeavesItselfOut', '$A zip ./dir/z.zip dir --flat && $A list dir/z.zip | cut -f 1', 0,
        '2 files\nname\nf.txt\ng.txt\n'),
    Row('RefusesToZipTwoFilesOfOneName', 'echo > dir/g.txt; $A zip z.zip dir --flat', 2,
        errors='arxhost: zip: g.txt: two files .*\n'),
    Row('RefusesToZipWhatUnzipWouldNameOtherwise', "for name in 'a\\' 'a\\.' 'a\\..\\b'; do echo > \"dir/$name\"; $A zip z.zip dir; "
        'rm "dir/$name"; done', 0, errors='(arxhost: zip: .*: would be "a/.*" in the archive, but ".*" when extracted\n){3}'),
    Row('KeepsTheDates', 'touch -d "2001-02-03 04:05:06" dir/f.txt; $A zip z.zip dir; $A unzip z.zip out; '
        'date -r out/f.txt "+%F %T"', 0, '2 files\n2 entries\n2001-02-03 04:05:06\n'),
    Row('ZipsNoFilesAtAll', 'mkdir e; $A zip z.zip e; $A list z.zip; $A unzip z.zip', 0,
        '0 files\nname\t.*\n0 entries\n'),
    Row('ZipsMoreThan65535Files', '$A list z.zip | tail -n +2 | wc -l; $A unzip z.zip out', 0,
        '65600\n65600 entries\n', set_up=many_entries),
    Row('TellsABrokenDirectoryAfter65535Entries', '$A list z.zip > list', 2,
        errors='arxhost: list: z.zip: .* breaks off after entry 65599\n', set_up=many_entries_and_a_broken_one),
    Row('RefusesToZipAFileOf4GiB', 'truncate -s 4G dir/huge; echo old > old.zip; $A zip old.zip dir' + OLD_STAYS, 2, 'old\n',
        'arxhost: zip: .*/dir/huge: has 4 GiB or more, .*\n'),
    Row('NamesFilesThatCannotBeRead', 'ln -s /proc/self/mem dir/a; ln -s /proc/self/mem dir/b; echo old > old.zip; '
        '$A zip old.zip dir; cat old.zip; ls -A', 0, 'old\nbig\nconf\ndir\nold.zip\n',
        '(arxhost: zip: .*/dir/[ab]: Input/output error\n){2}.*not written: 2 files.*\n'),
    Row('TellsALinkThatCannotBeExamined', 'ln -s l dir/l; $A zip z.zip dir; ln -s $(printf %0300d 0) dir/long; $A zip z.zip dir',
        2, '2 files\n', '(arxhost: zip: .*/dir/l: is left out, .*\n){2}arxhost: zip: .*/dir/long: File name too long\n'),
    Row('NamesFilesThatGrow', 'ln -s /proc/self/status dir/a; echo old > old.zip; $A zip old.zip dir' + OLD_STAYS, 2,
        'old\n', 'arxhost: zip: .*/dir/a: grew .*\n.*\n'),
    # That file says that it has 4096 bytes.
    Row('NamesFilesThatShrink', 'ln -s /sys/devices/system/cpu/online dir/a; echo old > old.zip; $A zip old.zip dir'
        + OLD_STAYS, 2, 'old\n', 'arxhost: zip: .*/dir/a: shrank .*\n.*\n', needs('/sys/devices/system/cpu/online')),
    Row('TellsAFullDiskWhileZipping', "head -c 99999 /dev/urandom > dir/r; echo old > old.zip; "
        'for n in $(seq 96 100); do (ulimit -f $n; $A zip old.zip dir); done; cat old.zip; ls -A', 0,
        'old\nbig\nconf\ndir\nold.zip\n', '(arxhost: zip: .*old.zip.*: .*\n){5}'),

    Row('LeavesNothingWhereNobodyReadsItsErrors', 'ln -s /proc/self/mem dir/a; mkfifo p; : < p & exec 3> p; wait; '
        '$A zip z.zip dir 2>&3; echo $?; ls -A', 0, '141\nbig\nconf\ndir\np\n'),

    Row('PrintsAnEntry', '$A zip z.zip dir; $A cat z.zip sub\\\\g.txt; $A cat - sub/g.txt < z.zip; '
        'cat z.zip | $A cat - f.txt', 0, '2 files\ng\ng\nf\n'),
    Row('TellsAMissingEntry', '$A cat z.zip none; $A cat - none < z.zip', 1,
        errors='arxhost: cat: z.zip: no entry none\narxhost: cat: standard input: no entry none\n',
        set_up=archive(z={'a': b'1'})),
    Row('TellsADamagedEntry', '$A cat z.zip a > /dev/null', 2, errors='arxhost: cat: a: is damaged: its checksum .*\n',
        set_up=damaged({'a': b'right'}, b'right', b'wrong')),
    Row('ListsForPrograms', '$A list --json z.zip', 0,
        r'{"name":"q\\"\\\\\\u0001\\u009bä","size":1,"packed":1,"date":"20..-.*","crc":"83dcefb7"}\n',
        set_up=archive(z={'q"\\\x01\x9bä': b'1'})),
    Row('ListsNamesThatAreNotUtf8', '$A list --json z.zip; $A list z.zip | cut -f 1', 0,
        '{"name":"n\ufffdx","nameHex":"6eff78",.*\nname\nn\\\\xffx\n', set_up=damaged({'nyx': b'1'}, b'nyx', b'n\xffx')),
    Row('ListsDatesThatExist', '$A list z.zip | cut -f 5; $A list --json z.zip | cut -d, -f 4', 0,
        'date\n2096-02-29 23:59:58\n(-\n){6}"date":"2096-02-29 23:59:58"\n("date":null\n){6}', set_up=dates(
            (2096, 2, 29, 23, 59, 58), (2100, 2, 29, 0, 0, 0), (1980, 0, 0, 0, 0, 0), (2026, 13, 1, 0, 0, 0),
            (2026, 1, 1, 24, 0, 0), (2026, 1, 1, 0, 60, 0), (2026, 1, 1, 0, 0, 60))),
    Row('TellsSizesThatAreNotRead', '$A list z.zip | cut -f 2-4; $A list --json z.zip | cut -d, -f 2,3; $A unzip z.zip out',
        2, 'size\tpacked\tsaved\n-\t-\t-\n"size":null,"packed":null\n',
        'arxhost: unzip: a: has sizes of 64 bits, .*\n.*\n',
        damaged({'a': b'1'}, b'\1\0\0\0\1\0\0\0\1\0', b'\xff\xff\xff\xff\xff\xff\xff\xff\1\0')),
    Row('ShowsNoControlCharacter', '$A list z.zip | cut -f 1', 0, r'name\n\\x1b\\x7f\\xc2\\x9bä\n',
        set_up=archive(z={'\x1b\x7f\x9bä': b'1'})),
    Row('TellsABrokenDirectory', '$A list z.zip | tail -n +2 | cut -f 1; $A unzip z.zip out; ls out; $A cat z.zip c', 2,
        'a\na\n', '(arxhost: \\w+: z.zip: is damaged: its directory breaks off after entry 1\n){3}',
        set_up=damaged({'a': b'1', 'b': b'2'}, b'PK\1\2', b'PK\1\3')),
    Row('TellsWhatIsNoArchive', '$A unzip conf; $A list dir; $A list none; $A cat none x; : | $A list -', 2,
        errors='.*unzip: conf: is no zip archive, or is cut off\n.*list: dir: Is a directory\n.*list: none: No such file .*\n'
        '.*cat: none: No such file .*\n.*list: standard input: is no zip archive, or is cut off\n'),

    Row('UnzipsFromStreams', '$A unzip - o1 < z.zip; cat z.zip | $A unzip - o2; cat o1/a o2/a; $A unzip - < z.zip', 2,
        '1 entries\n1 entries\n11', 'arxhost: unzip: FOLDER is required .*\n', set_up=archive(z={'a': b'1'})),
    Row('ReadsANamedPipeOnce', 'mkfifo p; for i in 1 2 3 4 5 6; do cat z.zip > p & timeout 9 $A cat p a; done', 0, '111111',
        set_up=archive(z={'a': b'1'})),
    Row('UnzipNamesFoldersThatHoldData', '$A unzip z.zip out', 2,
        errors='(arxhost: unzip: [ab].: is named as a folder, .*\n){2}.*\n', set_up=archive(z={'a/': b'1', 'b\\': b'2'})),
    Row('UnzipNamesASecondFileOfOneName', '$A unzip z.zip o1 --ignore-path; mkdir -p o2/b; ln -s b o2/a; $A unzip z.zip o2; '
        'cat o1/f o2/b/f', 0, '11', '(arxhost: unzip: b/f: would replace the file of another entry\n.*1 of 2 .*\n){2}',
        archive(z={'a/f': b'1', 'b/f': b'2'})),
    Row('UnzipNamesWhatIsDamaged', 'mkdir out; echo old > out/b; $A unzip z.zip out; cat out/*', 0, 'oneold\nthree',
        'arxhost: unzip: b: is damaged: .*\narxhost: unzip: z.zip: 1 of 3 entries failed\n',
        set_up=damaged({'a': b'one', 'b': b'two', 'c': b'three'}, b'two', b'tow')),
    Row('UnzipNamesWhatIsEncrypted', '$A unzip z.zip out', 2, errors='arxhost: unzip: a: is encrypted\n.*\n',
        set_up=damaged({'a': b'1'}, b'PK\1\2\x14\x03\x14\0\0', b'PK\1\2\x14\x03\x14\0\1')),
    Row('UnzipKeepsTheArchiveThatItReads', '$A unzip z.zip; $A cat z.zip z.zip', 0, '1',
        'arxhost: unzip: z.zip: would replace the archive itself\n.*\n', set_up=archive(z={'z.zip': b'1'})),
    Row('UnzipNeitherWaitsNorGivesUp', 'mkdir out; mkfifo out/fifo; $A unzip z.zip out; cat out/ok', 0, '2',
        'arxhost: unzip: fifo: .*not a regular file.*\n.*\n', set_up=archive(z={'fifo': b'1', 'ok': b'2'})),
    Row('UnzipNamesWhatIsInTheWay', 'mkdir -p out/a; echo > out/b; $A unzip z.zip out; cat out/d', 0, '3',
        '.*unzip: a: .*not a regular file.*\n.*unzip: b/c: out/b: Not a directory\n.*2 of 3 .*\n',
        set_up=archive(z={'a': b'1', 'b/c': b'2', 'd': b'3'})),
    Row('UnzipStaysInItsFolder', '$A unzip z.zip in/out; find . -type f | grep -v -e dir/ | sort', 0, './big\n./conf\n./in/out/..x\n./in/out/b\n./z.zip\n',
        '(arxhost: unzip: .*: leads outside the folder, .*\n){6}.*entry 7: File name is larger .*\n.*7 of 9 .*\n',
        set_up=archive(z=dict.fromkeys(['../x', '..\\x', '/x', '\\x', 'C:x', 'a/../../x', 'x' * 260, '..x', 'a/../b'], b''))),

    Row('EncodesQuotedPrintable', "printf 'a\\tb=\\303\\251 \\n' | $A qp; printf '\\ta\\t' | $A qp --trailing-tab-only", 0,
        'a=09b=3D=C3=A9=20\n\ta=09'),
    Row('WorksOnPaths', "$A path normalize 'C:\\a\\..\\b' a/./b; $A path absolute x /y --pwd C:/w; "
        '$A path tail /a/b/c --base /a; $A path tail /a/b/c; $A path normalize /..', 2,
        'c:/b\na/b\nC:/w/x\n/y\nb/c\nc\n', r"arxhost: path: /..: Cannot descend under root with '\.\.'\n"),
    Row('ComparesPaths', "$A path compare a/b 'a\\b' && $A path compare a/b a/c", 1,
        'equivalent\ndifferent from offset 2 on\n'),
    Row('TakesBracketsForOneName', "$A path compare '[a,b]'", 2, errors='arxhost: path: PATH: At least 2 .*\n'),
    Row('PrintsChecksums', '$A checksum AB; $A checksum --fold AB; $A checksum --fold ab', 0,
        checksum('AB') + 2 * checksum('ab')),
    Row('DescribesItself', '$A manual | grep -c "^\\.SS"; $A completion > c; bash -c \'. ./c; COMP_WORDS=(arxhost list --j); '
        'COMP_CWORD=2; _arxhost; echo $COMPREPLY\'; $A --version', 0, '16\n--json\n1.*\n'),
]


class Scene(unittest.TestCase):
    """A fresh current folder for each test, with the key in it."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix='arxhost test ')
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)
        os.environ.update(XDG_STATE_HOME=folder.name, A=ARXHOST, LC_ALL='C.UTF-8')
        os.makedirs('dir/sub')
        Path('dir/f.txt').write_text('f\n')
        Path('dir/sub/g.txt').write_text('g\n')
        Path('conf').write_text(SETTINGS)
        Path('big').write_bytes(BIG)


class Commands(Scene):
    def run_row(self, row):
        row.set_up()
        script = row.command.replace('$A', '"$A"')
        result = subprocess.run(['sh', '-c', script], capture_output=True, text=True, errors='replace')
        self.assertRegex(result.stdout, re.compile(r'\A(?:%s)\Z' % row.output))
        self.assertRegex(result.stderr, re.compile(r'\A(?:%s)\Z' % row.errors))
        self.assertEqual(row.exit_code, result.returncode)


for each in ROWS:
    setattr(Commands, 'test_' + each.name, lambda self, row=each: self.run_row(row))


class SignedUrls(Scene):
    """Each forgery of a good URL, and what check finds wrong in it."""

    def check(self, url, session='s', config=()):
        result = subprocess.run([ARXHOST, *config, 'check', url, '--session', session, '--json'], capture_output=True)
        answer = json.loads(result.stdout)
        self.assertEqual((result.returncode == 0, url), (answer['right'], answer['url']))
        return ' '.join(reason.split()[0] for reason in answer['wrong'])

    def test_OnlyTheWholeUrlIsRight(self):
        config = ['--config', 'conf']
        sign = [ARXHOST, *config, 'sign', 'dir/f.txt', '--session', 's', '--dispatcher']
        good = subprocess.run(sign, capture_output=True, text=True).stdout.strip()
        query = good[len('http://e?x'):]
        k, s = re.search('&k=(.*)&s=(.*)&did', query).groups()
        for name, url, wrong in [
                ('configured base path', good, ''),
                ('no base path', query, ''),
                ('path', '/any/path' + query, ''),
                ('other base path with a query', 'http://f?x' + query, 'the'),
                ('hidden in a query', '?f=ZXZpbA' + good, 'the'),
                ('hidden in a fragment', 'x#' + query, 'the'),
                ('unused bit of k', query.replace(k, k[:-1] + chr(ord(k[-1]) + 1)), 'k'),
                ('cut k', query.replace(k, k[:-1]), 'k'),
                ('longer s', query.replace(s, s + 'A'), 's'),
                ('cut s', query.replace(s, ''), 's'),
                ('k and s exchanged', query.replace(k, '-').replace(s, k).replace('-', s), 'k s'),
                ('k as s', query.replace(s, k), 's'),
                ('other file', query.replace('Zi50eHQ', 'Zi50eHU'), 'k s'),
                ('second spelling of the file', query.replace('Zi50eHQ', 'Zi50eHR'), 'f'),
                ('path as file', query.replace('Zi50eHQ', base64.b64encode(b'/f.txt').decode()), 'f'),
                ('other dispatcher', query + 'x', 'did'),
                ('no s', query.replace('&s=' + s, ''), 'the')]:
            with self.subTest(name):
                self.assertEqual(wrong, self.check(url, config=config))
        self.assertEqual('s', self.check(query, 't', config))


class Signals(Scene):
    """A signal in the midst of work leaves no trace, and ends the process as that signal does."""

    def setUp(self):
        super().setUp()
        for name in signal.SIGINT, signal.SIGHUP:  # nohup and background jobs ignore them
            self.addCleanup(signal.signal, name, signal.signal(name, signal.SIG_DFL))

    def files(self):
        return sorted(path for path in Path('.').rglob('*') if path.parts[0] != 'arxium')

    def interrupt(self, name, command, text=b''):
        before = self.files()
        with subprocess.Popen([ARXHOST, *command], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as process:
            process.stdin.write(text)
            process.stdin.flush()
            while process.poll() is None and not list(Path('.').rglob('.*-*')):
                time.sleep(0.001)
            time.sleep(0.05)  # now it may wait for more
            process.send_signal(name)
            process.stdin.close()  # Ctrl-C ends its writer too
            self.assertEqual(-name, process.wait())
        self.assertEqual(before, self.files())

    def test_SealLeavesNothing(self):
        for _ in range(5):  # signal and end of the input must meet
            self.interrupt(signal.SIGINT, ['seal', '-', 'sealed'], BIG)

    def test_CatDoesNotWaitForAReaderThatStopped(self):
        archive(z={'zeros': bytes(1 << 20)})()
        with subprocess.Popen([ARXHOST, 'cat', 'z.zip', 'zeros'], stdout=subprocess.PIPE) as process:
            os.read(process.stdout.fileno(), 10000)
            time.sleep(0.2)  # now the pipe is full
            process.send_signal(signal.SIGTERM)
            self.assertEqual(-signal.SIGTERM, process.wait(9))

    def test_ZipLeavesNothing(self):
        os.truncate(os.open('dir/zeros', os.O_CREAT | os.O_WRONLY), 3 << 30)
        self.interrupt(signal.SIGTERM, ['zip', 'z.zip', 'dir'])

    def test_UnsealAndUnzipLeaveNothing(self):
        Path('zeros').write_bytes(bytes(200 << 20))
        os.mkdir('out')
        subprocess.run([ARXHOST, 'seal', 'zeros', 'sealed'], check=True)
        with zipfile.ZipFile('z.zip', 'w') as file:
            file.write('zeros')
        self.interrupt(signal.SIGHUP, ['unseal', 'sealed', 'plain'])
        self.interrupt(signal.SIGINT, ['unzip', 'z.zip', 'out'])


if __name__ == '__main__':
    unittest.main()
