#include "streams/ARXOJDSecureFileOutputStream.h"

#include <sys/mman.h>

#include "frame/Arxium.h"
#include "streams/StreamTools.h"
#include "support/CryptoRecorder.h"

namespace
{
struct Stream : ARXOJDSecureFileOutputStream
{
    using ARXOJDSecureFileOutputStream::getNonSecureStream;
};

// Each letter is a call, a digit the secure type.
void play(Stream& stream, std::string const& steps)
{
    auto const fail = [](char const* function)
    { CryptoRecorder::get().failCall(function, 1, Fault::Details); };
    std::map<char, std::function<void()>> const calls = {{'o', [&] { stream.open("/dev/null"); }},
                                                         {'m', [&] { stream.open("/dev/null/x"); }},
                                                         {'n', [&] { stream.open(nullptr); }},
                                                         {'e', [&] { stream.open(""); }},
                                                         {'w', [&] { stream.write("a", 1); }},
                                                         {'z', [&] { stream.write("", 0); }},
                                                         {'c', [&] { stream.flush(), stream.close(); }},
                                                         {'d', [&] { stream.getCipherDocInfo(); }},
                                                         {'s', [&] { stream.getNonSecureStream(); }},
                                                         {'!', [&] { fail("KRY_PersistentInitialize"); }},
                                                         {'?', [&] { fail("KRY_SetInfo"); }},
                                                         {'%', [&] { fail("KRY_ProtectData"); }}};
    for (char const step : steps)
        if (step >= '0' && step <= '9')
            stream.setSecureType(static_cast<Stream::secureTypeEnum>(step - '0'));
        else
            calls.at(step)();
}

// All that callers can see of a stream: its type, and which of three calls work.
std::string stateOf(Stream& stream)
{
    std::string state = std::to_string(stream.getSecureType());
    for (char const* step : {"d", "s", "z"})
        state += raisedBy([&] { play(stream, step); }).empty() ? '+' : '-';
    return state;
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
        EXPECT_EQ("2---", stateOf(stream));
        play(stream, "c");
        stream.open(name.c_str());
        play(stream, "wz"), stream.write(nullptr, 5), play(stream, "cc");
        Lines const expected = {
            "configuration fileEncryption",
            open,
            "KRY_SetInfo S1 " + cipher + name + end,
            "KRY_ProtectData S1 a",
            "KRY_SetInfo S1" + finish,
            "KRY_ProtectData S1 ",
            "KRY_CloseHandle S1",
        };
        EXPECT_EQ(expected, m_recorder.takeCalls());
        stream.open(stream.getCipherDocInfo());
    }
    Lines const expected = {
        open,
        "KRY_SetInfo S2 " + cipher + cipher + name + end + end,
        "KRY_SetInfo S2" + finish,
        "KRY_ProtectData S2 ",
        "KRY_CloseHandle S2",
    };
    EXPECT_EQ(expected, m_recorder.takeCalls());
}

TEST_F(ARXOJDSecureFileOutputStreamTest, APlainFileIsTheSettingsOtherValue)
{
    TemporaryFolder const folder;
    for (std::string const setting : {"", "ON", "off"})
    {
        m_recorder.m_settings["fileEncryption"] = setting;
        Stream stream;
        stream.open((folder / "file").c_str());
        stream.write(setting.data(), setting.size()), stream.flush();
        EXPECT_EQ(setting, readAll(folder / "file"));
        EXPECT_EQ(Lines{"configuration fileEncryption"}, m_recorder.takeCalls());
    }
}

TEST_F(ARXOJDSecureFileOutputStreamTest, AFailureHasItsTextAndLeavesItsState)
{
    std::string const begin = "NEBAssertError: NEB_ASSERT", named = begin + "_NAMED(",
                      type = "AROJDSecureFileOutputStream::",
                      noName = named + "filename && *filename, \"" + type +
                               "open() - Required file name parameter was not specified.\");",
                      closed = named + "!m_secureCrypto && !m_pNonSecureStream, \"" + type,
                      isOpen = closed + "open() - Stream already open.\");",
                      fixed = closed + "setSecureType() - Stream already open.\");",
                      reason = "ARXException: reason", noFile = "NEBException: /dev/null/x: Not a directory",
                      notOpen = named + "false, \"Uninitialized stream for " + type + "write()\");",
                      badType = named + "false, \"Unkown secure stream type for " + type + "open()\");",
                      noDoc = begin + "(m_pCipherDocInfo);", notPlain = begin + "(m_pNonSecureStream);",
                      write = begin + "(KRY_SUCCEEDED(status));",
                      close = begin + "(KRY_SUCCEEDED( status ));";
    // Steps, the last of which fails, and the state behind them.
    std::tuple<std::string, char const*, std::string const&> const failures[] = {
        {"n", "2---", noName},     {"1oe", "1+-+", noName},  {"1oo", "1+-+", isOpen},
        {"0oo", "0-++", isOpen},   {"0oco", "0-+-", isOpen}, {"7o", "7---", badType},
        {"1o0", "1+-+", fixed},    {"0oc1", "0-+-", fixed},  {"w", "2---", notOpen},
        {"1ocw", "1+--", notOpen}, {"d", "2---", noDoc},     {"0od", "0-++", noDoc},
        {"1os", "1+-+", notPlain}, {"1o%w", "1+-+", write},  {"1o%c", "1+-+", close},
        {"1!o", "1--+", reason},   {"1?o", "1+-+", reason},  {"1o?c", "1+-+", reason},
        {"0m", "0---", noFile}};
    for (auto const& [steps, state, text] : failures)
        for (char const* behind : {"", "?"})  // the end of the stream works, or fails too
        {
            EXPECT_EQ(Lines(), m_recorder.problems());
            m_recorder.reset();
            Stream stream;
            play(stream, steps.substr(0, steps.size() - 1));
            EXPECT_EQ(text, raisedBy([&, &last = steps.back()] { play(stream, {last}); }).at(0));
            EXPECT_EQ(state, stateOf(stream)) << steps;
            play(stream, behind);
        }
}

TEST_F(ARXOJDSecureFileOutputStreamTest, SplitsAWriteBehindTheLargestSizeOf32Bits)
{
    std::size_t const largest = 0xFFFFFFFF;
    int const flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
    auto* const data = static_cast<char*>(mmap(nullptr, largest + 1, PROT_READ, flags, -1, 0));
    Stream stream;
    play(stream, "1o"), m_recorder.takeCalls();
    stream.write(data, largest), stream.write(data, largest + 1);
    std::string const call = "KRY_ProtectData S1 ", full = call + "4294967295 bytes";
    EXPECT_EQ((Lines{full, full, call + '\0'}), m_recorder.takeCalls());
    munmap(data, largest + 1);
}
}  // namespace
