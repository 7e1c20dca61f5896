#include "streams/ARXOJDSecureFileOutputStream.h"

#include <sys/mman.h>

#include "frame/Arxium.h"
#include "streams/StreamTools.h"
#include "support/CryptoRecorder.h"
#include "support/Raised.h"
#include "support/TemporaryFolder.h"

namespace
{
struct Stream : ARXOJDSecureFileOutputStream
{
    using ARXOJDSecureFileOutputStream::getNonSecureStream;
};

Lines const s_session = {
    "KRY_PersistentInitialize <sessionConfigDocument><serviceID>ARXIUM</serviceID></sessionConfigDocument>"};

Lines operator+(Lines first, Lines const& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string cipherDocument(std::string const& name)
{
    return "<setInfoDocument><action>CipherStream</action><fileOutput>" + name +
           "</fileOutput></setInfoDocument>";
}

Lines finishing(std::string const& session)
{
    return {
        "KRY_SetInfo " + session + " <setInfoDocument><dataLocation>file</dataLocation></setInfoDocument>",
        "KRY_ProtectData " + session + " ", "KRY_CloseHandle " + session};
}

void openAs(Stream& stream, Stream::secureTypeEnum type, char const* name)
{
    stream.setSecureType(type);
    stream.open(name);
}

// All that callers can see of a stream.
std::string stateOf(Stream& stream)
{
    auto const answers = [](auto const& call) { return raisedBy(call).empty() ? "+" : "-"; };
    return std::to_string(stream.getSecureType()) + answers([&] { stream.getCipherDocInfo(); }) +
           answers([&] { stream.getNonSecureStream(); }) + answers([&] { stream.write("", 0); });
}
}  // namespace

class ARXOJDSecureFileOutputStreamTest : public RecordedTest
{
protected:
    ARXOJDSecureFileOutputStreamTest() { Arxium::initialize(false); }
    ~ARXOJDSecureFileOutputStreamTest() override { Arxium::terminate(); }
};

TEST_F(ARXOJDSecureFileOutputStreamTest, AnEncryptedFileIsOneListOfCalls)
{
    m_recorder.m_settings["fileEncryption"] = "on";
    {
        Stream stream;
        stream.flush();
        stream.close();
        EXPECT_EQ(Stream::secureTypeFromConfiguration, stream.getSecureType());
        stream.open("a&<b>\xE9");
        stream.write("abc", 3);
        stream.write("", 0);
        stream.write(nullptr, 5);
        stream.flush();
        stream.close();
        stream.close();
        EXPECT_EQ(cipherDocument("a&<b>\xE9"), stream.getCipherDocInfo());
        EXPECT_EQ((Lines{"configuration fileEncryption"} + s_session +
                   Lines{"KRY_SetInfo S1 " + cipherDocument("a&<b>\xE9"), "KRY_ProtectData S1 abc"} +
                   finishing("S1")),
                  m_recorder.takeCalls());
        stream.open(stream.getCipherDocInfo() + 40);
    }
    EXPECT_EQ(s_session + Lines{"KRY_SetInfo S2 " + cipherDocument(cipherDocument("a&<b>\xE9").substr(40))} +
                  finishing("S2"),
              m_recorder.takeCalls());
}

TEST_F(ARXOJDSecureFileOutputStreamTest, APlainFileIsTheSettingsOtherValue)
{
    TemporaryFolder const folder;
    for (char const* setting : {"", "ON", "off"})
    {
        m_recorder.m_settings["fileEncryption"] = setting;
        Stream stream;
        stream.open((folder / "file").c_str());
        stream.write("abc", 3);
        stream.flush();
        EXPECT_EQ("abc", contents(folder / "file"));
        EXPECT_EQ("0-++", stateOf(stream));
        EXPECT_EQ(Lines{"configuration fileEncryption"}, m_recorder.takeCalls());
    }
    Stream full, missing;
    openAs(full, Stream::secureTypePlain, "/dev/full");
    full.write("a", 1);
    EXPECT_EQ("NEBException: /dev/full: No space left on device", raisedBy([&] { full.close(); }).at(0));
    Lines const raised = raisedBy([&] { openAs(missing, Stream::secureTypePlain, "/dev/null/x"); });
    EXPECT_EQ("NEBException: /dev/null/x: Not a directory", raised.at(0));
    EXPECT_EQ("streams/ARXOJDSecureFileOutputStream.cpp NEB_RETHROW", raised.back());
    EXPECT_EQ("0---", stateOf(missing));
    EXPECT_EQ(Lines(), m_recorder.takeCalls());
}

TEST_F(ARXOJDSecureFileOutputStreamTest, AFailedAssertionHasItsTextAndChangesNothing)
{
    std::map<char, void (*)(Stream&)> const steps = {
        {'p', [](Stream& stream) { openAs(stream, Stream::secureTypePlain, "/dev/null"); }},
        {'e', [](Stream& stream) { openAs(stream, Stream::secureTypeEncrypted, "x"); }},
        {'c', [](Stream& stream) { stream.close(); }},
        {'o', [](Stream& stream) { stream.open("x"); }},
        {'n', [](Stream& stream) { stream.open(nullptr); }},
        {'0', [](Stream& stream) { stream.open(""); }},
        {'t', [](Stream& stream) { stream.setSecureType(Stream::secureTypePlain); }},
        {'7', [](Stream& stream) { stream.setSecureType(static_cast<Stream::secureTypeEnum>(7)); }},
        {'w', [](Stream& stream) { stream.write("a", 1); }},
        {'d', [](Stream& stream) { stream.getCipherDocInfo(); }},
        {'s', [](Stream& stream) { stream.getNonSecureStream(); }},
        {'!', [](Stream&) { CryptoRecorder::get().failCall("KRY_ProtectData", 1, Fault::Status); }}};
    auto const named = [](std::string const& condition, std::string const& text)
    { return "_NAMED(" + condition + ", \"" + text + "\");"; };
    std::string const hasName = "filename && *filename", isClosed = "!m_secureCrypto && !m_pNonSecureStream";
    std::string const noName =
        "AROJDSecureFileOutputStream::open() - Required file name parameter was not specified.";
    std::string const isOpen = "AROJDSecureFileOutputStream::open() - Stream already open.";
    std::string const fixedType = "AROJDSecureFileOutputStream::setSecureType() - Stream already open.";
    std::string const badType = "Unkown secure stream type for AROJDSecureFileOutputStream::open()";
    std::string const notOpen = "Uninitialized stream for AROJDSecureFileOutputStream::write()";
    // Steps, the last of which fails.
    std::pair<std::string, std::string> const failures[] = {
        {"n", named(hasName, noName)},        {"e0", named(hasName, noName)},
        {"eo", named(isClosed, isOpen)},      {"po", named(isClosed, isOpen)},
        {"pco", named(isClosed, isOpen)},     {"7o", named("false", badType)},
        {"et", named(isClosed, fixedType)},   {"pct", named(isClosed, fixedType)},
        {"w", named("false", notOpen)},       {"ecw", named("false", notOpen)},
        {"d", "(m_pCipherDocInfo);"},         {"pd", "(m_pCipherDocInfo);"},
        {"es", "(m_pNonSecureStream);"},      {"e!w", "(KRY_SUCCEEDED(status));"},
        {"e!c", "(KRY_SUCCEEDED( status ));"}};
    for (auto const& [calls, text] : failures)
    {
        Stream stream;
        for (char const step : calls.substr(0, calls.size() - 1))
            steps.at(step)(stream);
        std::string const before = stateOf(stream);
        EXPECT_EQ((Lines{"NEBAssertError: NEB_ASSERT" + text,
                         "streams/ARXOJDSecureFileOutputStream.cpp NEB_THROW"}),
                  raisedBy([&, &last = calls.back()] { steps.at(last)(stream); }));
        EXPECT_EQ(before, stateOf(stream)) << calls;
    }
}

TEST_F(ARXOJDSecureFileOutputStreamTest, ARefusedStepLeavesTheStreamOpenAndItsSessionEndsWithIt)
{
    std::string const reason = "ARXException: reason",
                      assertion = "NEBAssertError: NEB_ASSERT(KRY_SUCCEEDED( status ));";
    std::tuple<char const*, int, std::string> const refusals[] = {{"KRY_PersistentInitialize", 1, reason},
                                                                  {"KRY_SetInfo", 1, reason},
                                                                  {"KRY_SetInfo", 2, reason},
                                                                  {"KRY_ProtectData", 1, assertion}};
    for (auto const& [function, call, error] : refusals)
        for (bool const again : {false, true})
        {
            Stream stream;
            m_recorder.failCall(function, call, Fault::Details);
            Lines const raised =
                raisedBy([&] { openAs(stream, Stream::secureTypeEncrypted, "x"), stream.close(); });
            EXPECT_EQ(error, raised.at(0));
            EXPECT_FALSE(raisedBy([&] { stream.open("x"); }).empty());
            if (again)
                m_recorder.failCall("KRY_SetInfo", 1, Fault::Status);
            else
                EXPECT_EQ(Lines(), raisedBy([&] { stream.close(); }));
        }
}

TEST_F(ARXOJDSecureFileOutputStreamTest, SplitsAWriteBehindTheLargestSizeOf32Bits)
{
    std::size_t const largest = 0xFFFFFFFF;
    void* const data =
        mmap(nullptr, largest + 1, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(MAP_FAILED, data);
    Stream stream;
    openAs(stream, Stream::secureTypeEncrypted, "x");
    m_recorder.takeCalls();
    stream.write(static_cast<char const*>(data), largest);
    stream.write(static_cast<char const*>(data), largest + 1);
    std::string const call = "KRY_ProtectData S1 ";
    EXPECT_EQ((Lines{call + "4294967295 bytes", call + "4294967295 bytes", call + std::string(1, '\0')}),
              m_recorder.takeCalls());
    munmap(data, largest + 1);
}
