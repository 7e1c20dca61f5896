#include "streams/ARXOJDSecureFileOutputStream.h"

#include <sys/mman.h>

#include "frame/Arxium.h"
#include "streams/StreamTools.h"
#include "support/CryptoRecorder.h"
#include "support/Rows.h"

namespace
{
struct Stream : ARXOJDSecureFileOutputStream
{
    using ARXOJDSecureFileOutputStream::getNonSecureStream;

    Stream& open(secureTypeEnum type, char const* name = "/dev/null")
    {
        setSecureType(type);
        ARXOJDSecureFileOutputStream::open(name);
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

struct ARXOJDSecureFileOutputStreamTest : RecordedTest
{
    ARXOJDSecureFileOutputStreamTest() { Arxium::initialize(false); }
    ~ARXOJDSecureFileOutputStreamTest() override { Arxium::terminate(); }
};

TEST_F(ARXOJDSecureFileOutputStreamTest, AnEncryptedFileIsOneListOfCalls)
{
    std::string const name = "a&<b>\xE9",
                      cipher = "<setInfoDocument><action>CipherStream</action><fileOutput>",
                      end = "</fileOutput></setInfoDocument>",
                      open =
                          "KRY_PersistentInitialize <sessionConfigDocument><serviceID>ARXIUM</serviceID>"
                          "</sessionConfigDocument>",
                      finish = " <setInfoDocument><dataLocation>file</dataLocation></setInfoDocument>";
    m_recorder.m_settings["fileEncryption"] = "on";
    {
        Stream stream;
        stream.close();  // does nothing, as the second one below
        stream.ARXOJDSecureFileOutputStream::open(name.c_str());
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
        stream.ARXOJDSecureFileOutputStream::open(stream.getCipherDocInfo());
    }
    Lines const calls = {open, "KRY_SetInfo S2 " + cipher + cipher + name + end + end,
                         "KRY_SetInfo S2" + finish, "KRY_ProtectData S2 ", "KRY_CloseHandle S2"};
    EXPECT_EQ(calls, m_recorder.takeCalls());
}

TEST_F(ARXOJDSecureFileOutputStreamTest, AnyOtherSettingGivesAPlainFile)
{
    TemporaryFolder const folder;
    for (std::string const setting : {"", "ON", "off"})
    {
        m_recorder.m_settings["fileEncryption"] = setting;
        Stream stream;
        stream.ARXOJDSecureFileOutputStream::open((folder / "file").c_str());
        stream.write(setting.data(), setting.size());
        stream.flush();
        EXPECT_EQ(setting, readAll(folder / "file"));
        EXPECT_EQ(Lines{"configuration fileEncryption"}, m_recorder.takeCalls());
    }
}

struct FailureRow
{
    char const* m_name;
    void (*m_before)(Stream&);
    char const* m_failing;  // the crypto function that then fails, or null
    void (*m_call)(Stream&);
    std::string m_text;
    char const* m_after;
};

std::string assertion(std::string const& rest)
{
    return "NEBAssertError: NEB_ASSERT" + rest + ";";
}

std::string const s_class = "AROJDSecureFileOutputStream::",
                  s_noName = assertion("_NAMED(filename && *filename, \"" + s_class +
                                       "open() - Required file name parameter was not specified.\")"),
                  s_notClosed = "_NAMED(!m_secureCrypto && !m_pNonSecureStream, \"" + s_class,
                  s_isOpen = assertion(s_notClosed + "open() - Stream already open.\")"),
                  s_fixed = assertion(s_notClosed + "setSecureType() - Stream already open.\")"),
                  s_notOpen = assertion("_NAMED(false, \"Uninitialized stream for " + s_class + "write()\")"),
                  s_badType =
                      assertion("_NAMED(false, \"Unkown secure stream type for " + s_class + "open()\")"),
                  s_noDocument = assertion("(m_pCipherDocInfo)"),
                  s_notPlain = assertion("(m_pNonSecureStream)");

using File = Stream&;
auto const doNothing = [](File) {};
auto const openPlain = [](File file) { file.open(s_plain); };
auto const openEncrypted = [](File file) { file.open(s_encrypted); };
auto const closePlain = [](File file) { file.open(s_plain).close(); };
auto const closeEncrypted = [](File file) { file.open(s_encrypted).close(); };
auto const openAgain = [](File file) { file.ARXOJDSecureFileOutputStream::open("/dev/null"); };
auto const writeByte = [](File file) { file.write("a", 1); };
auto const close = [](File file) { file.close(); };
auto const getDocument = [](File file) { file.getCipherDocInfo(); };

FailureRow const s_failures[] = {
    {"NullName", doNothing, nullptr, [](File file) { file.open(s_encrypted, nullptr); }, s_noName, "1"},
    {"EmptyName", openEncrypted, nullptr, [](File file) { file.ARXOJDSecureFileOutputStream::open(""); },
     s_noName, "1 document write"},
    {"EncryptedIsOpen", openEncrypted, nullptr, openAgain, s_isOpen, "1 document write"},
    {"PlainIsOpen", openPlain, nullptr, openAgain, s_isOpen, "0 plain write"},
    {"PlainWasOpen", closePlain, nullptr, openAgain, s_isOpen, "0 plain"},
    {"UnknownType", doNothing, nullptr, [](File file) { file.open(static_cast<Stream::secureTypeEnum>(7)); },
     s_badType, "7"},
    {"TypeOfAnOpenStream", openEncrypted, nullptr, [](File file) { file.setSecureType(s_plain); }, s_fixed,
     "1 document write"},
    {"TypeAfterPlain", closePlain, nullptr, [](File file) { file.setSecureType(s_encrypted); }, s_fixed,
     "0 plain"},
    {"WriteBeforeOpen", doNothing, nullptr, writeByte, s_notOpen, "2"},
    {"WriteAfterClose", closeEncrypted, nullptr, writeByte, s_notOpen, "1 document"},
    {"DocumentBeforeOpen", doNothing, nullptr, getDocument, s_noDocument, "2"},
    {"DocumentOfPlain", openPlain, nullptr, getDocument, s_noDocument, "0 plain write"},
    {"InnerStreamOfEncrypted", openEncrypted, nullptr, [](File file) { file.getNonSecureStream(); },
     s_notPlain, "1 document write"},
    {"WriteRefused", openEncrypted, "KRY_ProtectData", writeByte, assertion("(KRY_SUCCEEDED(status))"),
     "1 document write"},
    {"CloseRefused", openEncrypted, "KRY_ProtectData", close, assertion("(KRY_SUCCEEDED( status ))"),
     "1 document write"},
    {"CloseDocumentRefused", openEncrypted, "KRY_SetInfo", close, "ARXException: reason", "1 document write"},
    {"SessionRefused", doNothing, "KRY_PersistentInitialize", openEncrypted, "ARXException: reason",
     "1 write"},
    {"FileRefused", doNothing, "KRY_SetInfo", openEncrypted, "ARXException: reason", "1 document write"},
    {"NoSuchFolder", doNothing, nullptr, [](File file) { file.open(s_plain, "/dev/null/x"); },
     "NEBException: /dev/null/x: Not a directory", "0"},
};

struct FailureOfAStream : ARXOJDSecureFileOutputStreamTest, testing::WithParamInterface<FailureRow>
{
    void expectFailure(Stream& stream)
    {
        GetParam().m_before(stream);
        if (GetParam().m_failing)
            m_recorder.failCall(GetParam().m_failing, 1, Fault::Details);
        EXPECT_EQ(GetParam().m_text, raisedBy([&] { GetParam().m_call(stream); }).at(0));
        EXPECT_EQ(GetParam().m_after, stateOf(stream));
    }
};

TEST_P(FailureOfAStream, HasItsTextAndLeavesItsState)
{
    Stream stream;
    expectFailure(stream);
}

TEST_P(FailureOfAStream, LosesNoSessionIfTheDestructorFailsToo)
{
    Stream stream;
    expectFailure(stream);
    m_recorder.failCall("KRY_SetInfo", 1, Fault::Details);
}

INSTANTIATE_TEST_SUITE_P(Failures, FailureOfAStream, testing::ValuesIn(s_failures), RowName());

TEST_F(ARXOJDSecureFileOutputStreamTest, SplitsAWriteAfterTheLargestSizeOf32Bits)
{
    std::size_t const largest = 0xFFFFFFFF;
    int const flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
    auto* const data = static_cast<char*>(mmap(nullptr, largest + 1, PROT_READ, flags, -1, 0));
    Stream stream;
    stream.open(s_encrypted);
    m_recorder.takeCalls();
    stream.write(data, largest);
    stream.write(data, largest + 1);
    std::string const call = "KRY_ProtectData S1 ", full = call + "4294967295 bytes";
    EXPECT_EQ((Lines{full, full, call + '\0'}), m_recorder.takeCalls());
    munmap(data, largest + 1);
}
}  // namespace
