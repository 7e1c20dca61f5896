#include "streams/ARXOJDSecureFileOutputStream.h"

#include <sys/mman.h>

#include "streams/StreamTools.h"
#include "support/CryptoRecorder.h"

namespace
{
struct Stream : ARXOJDSecureFileOutputStream
{
    using ARXOJDSecureFileOutputStream::getNonSecureStream;

    Stream& openAs(secureTypeEnum type, char const* name = "/dev/null")
    {
        setSecureType(type);
        open(name);
        return *this;
    }
};

auto constexpr s_plain = Stream::secureTypePlain;
auto constexpr s_encrypted = Stream::secureTypeEncrypted;

// All that callers can see of a stream: its type, and which of three calls work.
std::string stateOf(Stream& stream)
{
    return std::to_string(stream.getSecureType()) +
           (raisedBy([&] { stream.getCipherDocInfo(); }).empty() ? " document" : "") +
           (raisedBy([&] { stream.getNonSecureStream(); }).empty() ? " plain" : "") +
           (raisedBy([&] { stream.write("", 0); }).empty() ? " write" : "");
}

using ARXOJDSecureFileOutputStreamTest = StartedTest;

TEST_F(ARXOJDSecureFileOutputStreamTest, AnEncryptedFileIsOneListOfCalls)
{
    std::string const name = "a&<b>\xE9";
    std::string const cipher = "<setInfoDocument><action>CipherStream</action><fileOutput>";
    std::string const end = "</fileOutput></setInfoDocument>";
    std::string const open =
        "KRY_PersistentInitialize <sessionConfigDocument><serviceID>ARXIUM</serviceID>"
        "</sessionConfigDocument>";
    std::string const finish = " <setInfoDocument><dataLocation>file</dataLocation></setInfoDocument>";
    m_recorder.m_settings["fileEncryption"] = "on";
    {
        Stream stream;
        stream.close();  // does nothing, as the second one below
        stream.open(name.c_str());
        stream.write("a", 1);
        stream.write("", 0);
        stream.write(nullptr, 5);
        stream.flush();
        stream.close();
        stream.close();
        Lines const calls = {"configuration fileEncryption",
                             open,
                             "KRY_SetInfo S1 " + cipher + name + end,
                             "KRY_ProtectData S1 a",
                             "KRY_SetInfo S1" + finish,
                             "KRY_ProtectData S1 ",
                             "KRY_CloseHandle S1"};
        EXPECT_EQ(calls, m_recorder.takeCalls());
        stream.open(stream.getCipherDocInfo());
    }
    Lines const calls = {open, "KRY_SetInfo S2 " + cipher + cipher + name + end + end,
                         "KRY_SetInfo S2" + finish, "KRY_ProtectData S2 ", "KRY_CloseHandle S2"};
    EXPECT_EQ(calls, m_recorder.takeCalls());
}

TEST_F(ARXOJDSecureFileOutputStreamTest, AnyOtherSettingGivesAPlainFile)
{
    TemporaryFolder const folder;
    m_recorder.m_settings["fileEncryption"] = "ON";
    Stream stream;
    stream.open((folder / "file").c_str());
    stream.write("a", 1);
    stream.flush();
    EXPECT_EQ("a", readAll(folder / "file"));
    EXPECT_EQ(Lines{"configuration fileEncryption"}, m_recorder.takeCalls());
}

#define OPEN_TEXT "NEB_ASSERT_NAMED(!m_secureCrypto && !m_pNonSecureStream, \"AROJDSecureFileOutputStream::"

struct FailureRow
{
    char const* m_name;
    void (*m_use)(Stream&);
    char const* m_text;
    char const* m_after;
    char const* m_failing = "";  // function of the crypto interface
    int m_call = 1;              // of that function
};

FailureRow const s_failures[] = {
    {"EmptyName", [](Stream& stream) { stream.openAs(s_encrypted, ""); },
     "NEB_ASSERT_NAMED(filename && *filename, \"AROJDSecureFileOutputStream::open() - Required file name "
     "parameter was not specified.\");",
     "1"},
    {"OpenTwice", [](Stream& stream) { stream.openAs(s_encrypted).open("/dev/null"); },
     OPEN_TEXT "open() - Stream already open.\");", "1 document write"},
    {"UnknownType", [](Stream& stream) { stream.openAs(static_cast<Stream::secureTypeEnum>(7)); },
     "NEB_ASSERT_NAMED(false, \"Unkown secure stream type for AROJDSecureFileOutputStream::open()\");", "7"},
    {"TypeOfPlain", [](Stream& stream) { stream.openAs(s_plain).setSecureType(s_encrypted); },
     OPEN_TEXT "setSecureType() - Stream already open.\");", "0 plain write"},
    {"WriteUnopened", [](Stream& stream) { stream.write("a", 1); },
     "NEB_ASSERT_NAMED(false, \"Uninitialized stream for AROJDSecureFileOutputStream::write()\");", "2"},
    {"Write", [](Stream& stream) { stream.openAs(s_encrypted).write("a", 1); },
     "NEB_ASSERT(KRY_SUCCEEDED(status));", "1 document write", "KRY_ProtectData"},
    {"CloseData", [](Stream& stream) { stream.openAs(s_encrypted).close(); },
     "NEB_ASSERT(KRY_SUCCEEDED( status ));", "1 document write", "KRY_ProtectData"},
    {"CloseDocument", [](Stream& stream) { stream.openAs(s_encrypted).close(); }, "reason",
     "1 document write", "KRY_SetInfo", 2},
    {"Session", [](Stream& stream) { stream.openAs(s_encrypted); }, "reason", "1 write",
     "KRY_PersistentInitialize"},
    {"SetUp", [](Stream& stream) { stream.openAs(s_encrypted); }, "reason", "1 document write",
     "KRY_SetInfo"},
    {"NoFolder", [](Stream& stream) { stream.openAs(s_plain, "/dev/null/x"); },
     "/dev/null/x: Not a directory", "0"},
};

// The destructor fails too, and the session is closed nevertheless.
TEST_F(ARXOJDSecureFileOutputStreamTest, EachFailureHasItsOutcome)
{
    for (FailureRow const& row : s_failures)
    {
        SCOPED_TRACE(row.m_name);
        m_recorder.reset();
        {
            Stream stream;
            m_recorder.failCall(row.m_failing, row.m_call, Fault::Details);
            std::string const text = raisedBy([&] { row.m_use(stream); }).at(0);
            EXPECT_EQ(row.m_text, text.substr(text.find(": ") + 2));
            EXPECT_EQ(row.m_after, stateOf(stream));
            m_recorder.failCall("KRY_SetInfo", 1, Fault::Details);
        }
        m_recorder.expectNothingLeft();
    }
}

TEST_F(ARXOJDSecureFileOutputStreamTest, SplitsAWriteAfterTheLargestSizeOf32Bits)
{
    if (SIZE_MAX == UINT32_MAX)
        GTEST_SKIP() << "no size is that large here";
    std::size_t const largest = 0xFFFFFFFF;
    int const flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
    auto* const data = static_cast<char*>(mmap(nullptr, largest + 1, PROT_READ, flags, -1, 0));
    Stream stream;
    stream.openAs(s_encrypted);
    m_recorder.takeCalls();
    stream.write(data, largest);
    stream.write(data, largest + 1);
    std::string const call = "KRY_ProtectData S1 ", full = call + "4294967295 bytes";
    EXPECT_EQ((Lines{full, full, call + '\0'}), m_recorder.takeCalls());
    munmap(data, largest + 1);
}
}  // namespace
