#include <cstdio>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include "support/TemporaryFolder.h"

namespace
{
struct CommandCase
{
    char const* m_name;
    char const* m_command;
    int m_exitCode;
    char const* m_pattern;  // of the whole output
};

CommandCase const s_commandCases[] = {
    {"SignsForTheGateway", "$A --config conf sign dir/f.txt --session s", 0,
     "http://g/x\\?b_action=dc&f=Zi50eHQ&k=[-_[:alnum:]]{43}&s=[-_[:alnum:]]{43}&did=d1\n"},
    {"SignsForTheDispatcher", "$A sign dir/f.txt --session s --dispatcher --config conf", 0,
     "http://e\\?b_action.*\n"},
    {"RefusesToSignWhatIsNoFile", "$A sign dir --session s", 2,
     "NEBException\ndir: no such file\n  NEB_THROW at .*\n"},
    {"ChecksUrls",
     "u=$($A sign dir/f.txt --session s); c() { $A check \"$@\"; echo $?; }; c \"$u\" --session s; "
     "c \"$u\" --session t; c ${u}x --session s; c $(echo $u | sed s/Zi50/Zi51/) --session s; "
     "c $(echo $u | sed s/eHQ/eHR/) --session s; c http://x/ --session s",
     0,
     "right .*\n0\nwrong: s is not [^\n]*\n1\nwrong: did is [^\n]*\n1\nwrong: k is not [^\n]*\n"
     "wrong: s is not [^\n]*\n1\nwrong: f is no [^\n]*\n1\nwrong: the URL lacks [^\n]*\n1\n"},
    {"RefusesABrokenConfiguration", "echo novalue > bad; $A --config bad sign dir/f.txt --session s", 2,
     "NEBException\nbad:1: .*\n  NEB_THROW at [^\n]*\n"},
    {"RefusesAnOpenKeyFile",
     "mkdir -p arxium; head -c 32 /dev/zero > arxium/master.key; chmod 644 arxium/master.key; "
     "$A sign dir/f.txt --session s",
     2, "NEBException\nkey file .* is open to group or others\n.*"},
    {"TakesItsTour", "$A tour dir/f.txt", 0,
     ".*checked: right\n.*refused.*equal to the file\n.*copy refused\n.*stopped\n"},
    {"SealsAndUnseals",
     "$A seal big sealed && $A unseal sealed plain && cmp big plain && ! grep -q needle sealed && ls", 0,
     "arxium\nbig\nconf\ndir\nplain\nsealed\n"},
    {"KeepsTheOldFileWhenUnsealingFails",
     "echo old > plain; $A seal big s1; head -c 70000 s1 > s2; $A unseal s2 plain; cat plain; ls *.part", 2,
     "NEBException\ns2: is damaged.*\nold\nls: .*"},
    {"EncodesQuotedPrintable",
     "printf 'a\\tb=\\303\\251 \\n' | $A qp; printf '\\ta\\t' | $A qp --trailing-tab-only", 0,
     "a=09b=3D=C3=A9=20\r\n\ta=09"},
    {"PythonDecodesQuotedPrintable",
     "$A qp < big > qp && python3 -c \"import quopri; "
     "assert quopri.decodestring(open('qp','rb').read()) == open('big','rb').read().replace(b'\\n', "
     "b'\\r\\n')\"",
     0, ""},
    {"WorksOnPaths",
     "$A path normalize 'C:\\a\\..\\b' a/./b; $A path absolute x /y --pwd C:/w; $A path tail /a/b/c --base "
     "/a; "
     "$A path tail /a/b/c; $A path normalize /..",
     2, "c:/b\na/b\nC:/w/x\n/y\nb/c\nc\nNEBAssertError\n.*Cannot descend under root.*"},
    {"ComparesPaths", "$A path compare a/b 'a\\b' && $A path compare a/b a/c", 1,
     "equivalent\ndifferent from offset 2 on\n"},
    {"PrintsChecksums", "$A checksum AB; $A checksum --fold AB; $A checksum --fold ab", 0,
     "44dbe8dc\ne34542d4\ne34542d4\n"},
    {"ZipsAndUnzips", "$A zip z.zip dir && $A unzip z.zip out && diff -r dir out", 0, "2 files\n2 entries\n"},
    {"ZipsWithABase", "$A zip z.zip dir/sub --base dir && $A list z.zip | cut -f 1,2", 0,
     "1 files\nname\tsize\nsub/g.txt\t2\n"},
    {"ZipsFlatAndLeavesItselfOut", "$A zip ./dir/z.zip dir --flat && $A list dir/z.zip | cut -f 1", 0,
     "2 files\nname\nf.txt\ng.txt\n"},
    {"PrintsAnEntry",
     "$A zip z.zip dir; $A cat z.zip sub/g.txt; $A cat - sub/g.txt < z.zip; cat z.zip | $A cat - f.txt", 0,
     "2 files\ng\ng\nf\n"},
    {"TellsAMissingEntry", "$A zip z.zip dir; $A cat z.zip none", 1, "2 files\narxhost: no entry none\n"},
    {"TellsADamagedEntry",
     "head -c 9999 /dev/urandom > dir/r; $A zip z.zip dir && python3 -c "
     "\"b=bytearray(open('z.zip','rb').read()); "
     "b[5000]^=1; open('z.zip','wb').write(b)\"; $A cat z.zip r > /dev/null",
     2, "3 files\nNEBException\nr: is damaged.*"},
    {"TellsWhatIsNoArchive", "$A unzip conf; $A list conf", 2,
     "NEBException\nconf: no archive.*NEBAssertError\n.*"},
    {"TellsAFullDisk", "$A qp < big > /dev/full", 2, "NEBException\nStandard output can't be written.*"},
    {"TellsWrongUsage", "$A sign", 2, "FILE is required.*"},
};

// Each in a fresh folder, where $A is arxhost. The key lies in that folder too.
TEST(Arxhost, GivesThatOutput)
{
    std::string big;
    for (int i = 0; i < 30000; ++i)
        big += "needle " + std::to_string(i) + (i % 7 ? " =\x80" : "\n");
    for (CommandCase const& row : s_commandCases)
    {
        TemporaryFolder const folder;
        std::filesystem::create_directories(folder / "dir/sub");
        std::ofstream(folder / "dir/f.txt") << "f\n";
        std::ofstream(folder / "dir/sub/g.txt") << "g\n";
        std::ofstream(folder / "conf")
            << "gatewayUrl=http://g/x\nexternalDispatcherUrl = http://e\n# comment\ndispatcherID=d1\n";
        std::ofstream(folder / "big") << big;

        std::FILE* const pipe = popen(("cd " + folder.path() + " && export XDG_STATE_HOME=$PWD A=" ARXHOST +
                                       " && (" + row.m_command + ") 2>&1")
                                          .c_str(),
                                      "r");
        std::string output;
        for (int byte; (byte = std::fgetc(pipe)) != EOF;)
            output += static_cast<char>(byte);
        EXPECT_EQ(row.m_exitCode, WEXITSTATUS(pclose(pipe))) << row.m_name << '\n' << output;
        EXPECT_THAT(output, testing::MatchesRegex(row.m_pattern)) << row.m_name;
    }
}
}  // namespace
