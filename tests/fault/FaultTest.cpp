// Every public operation with each of its allocations and system calls failing, each in a process of its own.

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <openssl/crypto.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"
#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBFmDir.h"
#include "NEBCore/NEBMessageString.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXKRYHandleI.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "fault/FaultInjector.h"
#include "frame/ARXException.h"
#include "frame/ARXMessage.h"
#include "frame/Arxium.h"
#include "path/ARXFmDir.h"
#include "streams/ARXDomWriterOJDOutputStream.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "text/ARNEBI18NBuffer.h"
#include "url/ARXHelper.h"
#include "url/ARXUriDispatchHelper.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipInputStream.h"
#include "zip/ZipTools.h"

namespace
{
// What a child tells its parent.
struct Report
{
    char m_trace[4000];  // the functions above each failure; empty if there was none
    char m_problems[1000];
};

// One run of an operation: faults strike inside attempt only.
class Attempts
{
public:
    // Without attempts only the checks are left, of what the death of another process left behind.
    Attempts(std::string folder, Report& report, bool attempts)
        : m_folder(std::move(folder)), m_report(report), m_attempts(attempts)
    {
    }

    std::string operator/(char const* name) const { return m_folder + "/" + name; }

    // Whether work told no failure; what it raises must be of the documented kinds.
    bool attempt(std::function<bool()> const& work)
    {
        bool succeeded = false;
        if (!m_attempts)
            return false;
        FaultInjector::resume();
        try
        {
            succeeded = work();
        }
        catch (NEBThrowable const&)
        {
        }
        catch (std::bad_alloc const&)
        {
        }
        catch (...)
        {
            complain("a foreign exception");
        }
        FaultInjector::pause();
        return succeeded;
    }
    // The same once more without faults, which must work out whatever happened before.
    void attemptAndRepeat(std::function<bool()> const& work)
    {
        attempt(work);
        std::string const raised = failureOf([&] { expect(work(), "the repetition works"); });
        expect(raised == "none", raised.c_str());
    }
    void expect(bool holds, char const* what)
    {
        if (!holds)
            complain(what);
    }
    void complain(char const* problem)
    {
        std::size_t const used = std::strlen(m_report.m_problems);
        std::snprintf(m_report.m_problems + used, sizeof m_report.m_problems - used, "[%s]", problem);
    }

private:
    std::string m_folder;
    Report& m_report;
    bool m_attempts;
};

struct Operation
{
    char const* m_name;
    void (*m_act)(Attempts& run);
};

std::string const s_old = "old contents", s_new(140000, 'n');
char const s_config[] = "<sessionConfigDocument><serviceID>ARXIUM</serviceID></sessionConfigDocument>";

// The plain text of an encrypted file; "absent", or "damaged" if it isn't accepted to its end.
std::string unsealed(std::string const& path)
{
    if (access(path.c_str(), F_OK) != 0)
        return "absent";
    ARXSimpleKRYHandleIPtr const guard(ARXKRYHandleFactory::createHandle());
    auto* const handle = static_cast<ARXKRYHandleI*>(guard.get());
    handle->persistentInitialize(s_config, nullptr);
    handle->setInfo(("<setInfoDocument><action>DecipherStream</action><fileInput>" + path +
                     "</fileInput></setInfoDocument>")
                        .c_str(),
                    nullptr);
    std::string text;
    for (std::size_t size = 1; size != 0;)
    {
        char* data = nullptr;
        size = 0;
        if (!KRY_SUCCEEDED(handle->unprotectData(nullptr, 0, &data, &size, nullptr)))
            return "damaged";
        text.append(data, size);
        handle->cryptoFree(data, nullptr);
    }
    return text;
}

bool seal(std::string const& path, std::string const& text)
{
    ARXOJDSecureFileOutputStream stream;
    stream.setSecureType(ARXOJDSecureFileOutputStream::secureTypeEncrypted);
    stream.open(path.c_str());
    stream.write(text.data(), text.size());
    stream.close();
    return true;
}

bool makeZip(ARXZipFile& zip, Attempts const& run)
{
    zip.create(I18NString((run / "out.zip").c_str()));
    zip.addDirectory((run / "tree").c_str(), nullptr, true, true);
    zip.addFile(I18NString((run / "tree/a").c_str()), I18NString((run / "tree").c_str()));
    I18NString const comment("comment");
    zip.openNewFileInZip("piece", nullptr, &comment, ARXZipFile::compressDeflated, 9);
    write(zip, s_old);
    zip.closeFileInZip();
    zip.close();
    return true;
}

Tree const s_tree = {{"a", s_old}, {"b/", ""}, {"b/c", s_new}};

bool readZip(ARXZipInputStream& stream)
{
    NEBByteBuffer bytes(256, 256);
    std::string name;
    ARXZipInputStream::zipEntry entry;
    return stream.getFirstEntry() && stream.getCurrentEntryName(name) && stream.openCurrentEntry() &&
           stream.read(bytes, 100) == s_old.size() && stream.getCurrentEntryInfo(entry) &&
           stream.locate("b\\c") && stream.openCurrentEntry() && stream.read() == 'n' &&
           stream.getNextEntry() == false;
}

bool useHandle(ARXSimpleKRYHandleI& handle, char const* info)
{
    if (auto* const full = dynamic_cast<ARXKRYHandleI*>(&handle))
        full->persistentInitialize(s_config, nullptr), full->setInfo(info, nullptr);
    char *digest = nullptr, *id = nullptr;
    char name[] = "serviceID";
    std::size_t size = 0;
    bool const good = KRY_SUCCEEDED(handle.protectData("data", 4, &digest, &size, nullptr)) &&
                      KRY_SUCCEEDED(handle.getInfo(name, &id, nullptr));
    handle.cryptoFree(digest, nullptr);
    handle.cryptoFree(id, nullptr);
    return good;
}

char const s_sign[] =
    "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>";

struct Started
{
    Started() { Arxium::initialize(); }
    ~Started() { Arxium::terminate(); }
};

Operation const s_operations[] = {
    {"ZipCreate",
     [](Attempts& run)
     {
         ARXZipFile zip;
         run.attemptAndRepeat([&] { return makeZip(zip, run); });
         Tree expected = {{"a", s_old}, {"b/c", s_new}, {"piece", s_old}};
         run.expect(readStream(ARXZipInputStream((run / "out.zip").c_str())) == expected, "a whole archive");
     }},
    {"ZipDestroyed",
     [](Attempts& run) { run.attempt([&] { return makeZip(*std::make_unique<ARXZipFile>(), run); }); }},
    {"Unzip",
     [](Attempts& run)
     {
         std::string const target = run / "x/y";
         if (run.attempt([&]
                         { return ARXUnzipFile::unzip((run / "in.zip").c_str(), target.c_str(), false); }))
             run.expect(readTree(target) == s_tree, "true means a whole tree");
         ARXUnzipFile zip(nullptr);
         run.attemptAndRepeat(
             [&]
             {
                 return zip.openZip((run / "in.zip").c_str()) && zip.getFileCount() == 2 &&
                        zip.gotoFirstFile() && zip.gotoNextFile() && zip.unzip(true, target.c_str());
             });
     }},
    {"ZipStreamOfPath",
     [](Attempts& run)
     {
         run.attemptAndRepeat(
             [&]
             {
                 ARXZipInputStream stream((run / "in.zip").c_str());
                 return readZip(stream);
             });
     }},
    {"ZipStreamOfFileAndMemory",
     [](Attempts& run)
     {
         std::string const bytes = readAll(run / "in.zip");
         std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(
             std::fopen((run / "in.zip").c_str(), "rb"), std::fclose);
         run.attemptAndRepeat(
             [&]
             {
                 ARXZipInputStream fromMemory(bytes.data(), bytes.size()), fromFile(file.get());
                 return readZip(fromMemory) && readZip(fromFile);
             });
     }},
    {"SealOver",
     [](Attempts& run)
     {
         bool const sealed = run.attempt([&] { return seal(run / "sealed", s_new); });
         std::string const text = unsealed(run / "sealed");
         run.expect(text == s_new || (!sealed && text == s_old), "an old or a complete file");
         seal(run / "sealed", s_new);
         run.expect(unsealed(run / "sealed") == s_new, "sealing again works");
     }},
    {"SealNew",
     [](Attempts& run)
     {
         bool const sealed = run.attempt([&] { return seal(run / "fresh", "few"); });
         std::string const text = unsealed(run / "fresh");
         run.expect(text == "few" || (!sealed && text == "absent"), "no file or a complete one");
     }},
    {"Unseal",
     [](Attempts& run) { run.attemptAndRepeat([&] { return unsealed(run / "sealed") == s_old; }); }},
    {"PlainStream",
     [](Attempts& run)
     {
         bool const done = run.attempt(
             [&]
             {
                 ARXOJDSecureFileOutputStream stream;
                 stream.open((run / "plain").c_str());
                 stream.write(s_old.data(), s_old.size());
                 stream.flush();
                 stream.write(s_new.data(), s_new.size());
                 stream.close();
                 return true;
             });
         run.expect(!done || readAll(run / "plain") == s_old + s_new, "success means all bytes");
     }},
    {"Filters",
     [](Attempts& run)
     {
         run.attemptAndRepeat(
             [&]
             {
                 OJDFileOutputStream file((run / "filtered").c_str(), 0);
                 ARXOJDQuotedPrintableOutputStream quoted(file, true);
                 ARXDomWriterOJDOutputStream writer(quoted);
                 writer.write(s_new.data(), 1000), writer.endline();
                 return true;
             });
     }},
    {"Start",
     [](Attempts& run)
     {
         Arxium::terminate();
         run.attemptAndRepeat(
             [&]
             {
                 Started const started;
                 return useHandle(
                     *ARXSimpleKRYHandleIPtr(ARXKRYHandleFactory::createHandle(s_config, s_sign)), nullptr);
             });
         Arxium::initialize();
     }},
    {"StartWithANewKey",
     [](Attempts& run)
     {
         Arxium::terminate();
         NEBConfigurationStore::getStore().clear();
         setenv("XDG_STATE_HOME", (run / "state").c_str(), 1);
         run.attemptAndRepeat([&] { return Started(), true; });
         run.expect(readAll(run / "state/arxium/master.key").size() == 32, "a whole key");
         Arxium::initialize();
     }},
    {"OwnHandle",
     [](Attempts& run)
     {
         ARXSimpleKRYHandleIPtr const kept(ARXKRYHandleFactory::createHandle());
         run.attemptAndRepeat(
             [&]
             {
                 ARXSimpleKRYHandleIPtr const handle(ARXKRYHandleFactory::createHandle());
                 return useHandle(*handle, s_sign) && useHandle(*kept, s_sign);
             });
     }},
    {"Urls",
     [](Attempts& run)
     {
         std::string url = "before";
         auto const generate = [&]
         {
             ARXUriDispatchHelper::generateByteServingUrlFromBasePath("/some/where/a long name of a file.pdf",
                                                                      "a session of some length", url);
             return true;
         };
         if (!run.attempt(generate))
             run.expect(url == "before", "a failure leaves the url");
         run.attemptAndRepeat(
             [&]
             {
                 ARXUriDispatchHelper::genGatewayUrlForFile("a/file", url, "session", true);
                 ARXUriDispatchHelper::genExternalDispatcherUrlForFile("a/file", url, "session", true);
                 return url.size() > 40;
             });
     }},
    {"UrlTexts",
     [](Attempts& run)
     {
         I18NString const text(s_new.substr(0, 1000).c_str());
         run.attemptAndRepeat(
             [&]
             {
                 NEBByteBuffer output(256, 256);
                 ARXHelper::urlEncode(text, output, false);
                 std::unique_ptr<char[]> const web64(ARXHelper::createWeb64(output));
                 I18NString path("some/where with blanks/in a name");
                 ARXHelper::fixCommandPath(path);
                 ARXHelper::removeLastComponentFromUrl(path);
                 ARXHelper::getBasePath(path, true);
                 ARXHelper::getExternalDispatcherBasePath(path);
                 return output.pcount() == 1000;
             });
     }},
    {"Paths",
     [](Attempts& run)
     {
         std::string out = "before";
         auto const normalize = [&]
         { return ARXFmDir::getNormalizedPath("C:\\long/../way/./to\\go/there", out), true; };
         if (!run.attempt(normalize))
             run.expect(out == "before", "a failure leaves the result");
         run.attemptAndRepeat(
             [&]
             {
                 ARXFmDir::getAbsolutePath("some/long/relative/path", out);
                 ARXFmDir::getAbsolutePath("/base/of/some/length", "../b/c/d/e/f/g", out);
                 ARXFmDir::getPathTail(out, "/base/of/some/length",
                                       "/base/of/some/length/and/a/tail/behind/it");
                 ARXFmDir::makePathSlashTerminated(out);
                 return ARXFmDir().isFile((run / "tree/a").c_str());
             });
     }},
    {"Folders",
     [](Attempts& run)
     {
         run.attemptAndRepeat(
             [&]
             {
                 std::vector<std::string> files, folders;
                 std::string path = run / "tree/b/../a";
                 NEBFmDir::resolveEffectivePath(path);
                 NEBFmDir::readDir((run / "tree").c_str(), &files, nullptr, &folders, nullptr);
                 return NEBFmDir::createRecursiveDir(run / "m/n\\o") != 0 && files.size() == 1 &&
                        folders.size() == 1 && NEBFmDir::exists(path.c_str(), 0x8000) != 0;
             });
     }},
    {"Buffers",
     [](Attempts& run)
     {
         I18NString const text("a text that does not fit into the object itself");
         ARNEBI18NBuffer kept;
         auto const use = [&]
         {
             kept = text;
             kept += kept;
             ARNEBI18NBuffer copy(kept);
             copy.reserve(5000);
             copy += text;
             I18NString back;
             copy.getString(back);
             std::ostringstream stream;
             stream << copy;
             return kept.getCodepoints() == 94 && copy.startsWith(kept) && copy.getCodepoints() == 141 &&
                    stream.str().size() >= 141;
         };
         run.attempt(use);
         run.expect(kept.empty() || kept.getCodepoints() == 47 || kept.getCodepoints() == 94,
                    "empty or whole");
         run.attemptAndRepeat(use);
     }},
    {"Messages",
     [](Attempts& run)
     {
         ARXException kept("kept");
         run.attemptAndRepeat(
             [&]
             {
                 I18NString text;
                 ARXMessage message(1u);
                 message.getMessage("argument", 1, text);
                 ARXException error("a text that is long enough to need memory");
                 error << message << NEBMessageString(I18NString("another text of a message"));
                 std::unique_ptr<NEBThrowable> const copy(error.clone());
                 ARXException const taken(error, &message);
                 kept = taken;
                 return copy->getMessage() != nullptr && taken.getMessage() != nullptr;
             });
         run.expect(kept.getMessage() != nullptr, "an exception always has a text");
     }},
    {"Settings",
     [](Attempts& run)
     {
         run.attemptAndRepeat(
             [&]
             {
                 auto& store = NEBConfigurationStore::getStore();
                 store.load(run / "settings");
                 return store.getConfigurationValue("a key of some length", nullptr) ==
                        I18NString("its value");
             });
     }},
};

int countDescriptors()
{
    int count = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor)
        count += fcntl(descriptor, F_GETFD) != -1;
    return count;
}

// In the child: all that the operation held is given back before the count.
void runOperation(Operation const& operation, Attempts& run)
{
    int const descriptors = countDescriptors();
    std::string const raised = failureOf(
        [&]
        {
            operation.m_act(run);
            Arxium::terminate();
        });
    run.expect(raised == "none", raised.c_str());
    NEBConfigurationStore::getStore().clear();
    OPENSSL_thread_stop();
    run.expect(FaultInjector::liveAllocations() == 0, "memory is lost");
    run.expect(countDescriptors() == descriptors, "a descriptor is lost");
}

// Faults of libraries below: what goes wrong if an allocation fails there.
struct KnownFault
{
    char const* m_problems;
    char const* m_place;
};
KnownFault const s_knownFaults[] = {
    // minizip doesn't look at its third allocation for a new entry.
    {"[a crash]", " malloc zipOpenNewFileInZip4_64 "},
    // It loses the header of an entry that can't be deflated, and the buffer of one that can't be inflated.
    {"[memory is lost]", " deflateInit2_ zipOpenNewFileInZip4_64 "},
    {"[memory is lost]", " inflateInit2_ unzOpenCurrentFile3 "},
    // The last allocation of unzOpen: the file stays open.
    {"[memory is lost][a descriptor is lost]", " malloc libminizip.so.1 "},
    // OpenSSL loses a part of a fetched method.
    {"[memory is lost]", " malloc CRYPTO_strndup "},
};

class FaultTest : public testing::Test
{
protected:
    FaultTest()
        : m_report(*static_cast<Report*>(
              mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        writeTree(s_tree, m_scene / "tree");
        writeTree({{"key", std::string(32, 'k')}, {"settings", "a key of some length = its value\n"}},
                  m_scene.path());
        std::filesystem::permissions(m_scene / "key", std::filesystem::perms(0600));
        setenv("TZ", "UTC", 1);  // else the C library reads its time zone again and again
        useSettings();
        Arxium::initialize();
        ARXZipFile zip;
        zip.create((m_scene / "in.zip").c_str());
        zip.addDirectory((m_scene / "tree").c_str(), nullptr, true, false);
        zip.close();
        seal(m_scene / "sealed", s_old);
        for (Operation const& operation : s_operations)  // fills what is kept for good
            runHere(operation);
    }
    ~FaultTest() override
    {
        Arxium::terminate();
        munmap(&m_report, sizeof m_report);
    }

    void useSettings()
    {
        auto& store = NEBConfigurationStore::getStore();
        store.clear();
        store.setValue("cryptoKeyFile", (m_scene / "key").c_str());
        store.setValue("fileEncryption", "off");
        for (char const* key : {"gatewayUrl", "externalDispatcherUrl"})
            store.setValue(key, "http://gate/and/something/longer");
        store.setValue("dispatcherID", "a dispatcher of some length");
    }

    void runHere(Operation const& operation)
    {
        TemporaryFolder const folder;
        std::filesystem::copy(m_scene.path(), folder.path(), std::filesystem::copy_options::recursive);
        m_report = {};
        Attempts run(folder.path(), m_report, true);
        operation.m_act(run);
        Arxium::terminate();
        useSettings();
        Arxium::initialize();
        EXPECT_STREQ("", m_report.m_problems) << operation.m_name;
    }

    // Runs act in a child; false if that didn't end by itself and well.
    bool inChild(std::function<void()> const& act, int& status)
    {
        pid_t const child = fork();
        if (child == 0)
        {
            alarm(100);
            act();
            ARXIUM_END_CHILD(0);
        }
        return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    // Whether the point was reached.
    bool strike(Operation const& operation, FaultPlan const& plan)
    {
        TemporaryFolder const folder;
        std::filesystem::copy(m_scene.path(), folder.path(), std::filesystem::copy_options::recursive);
        m_report = {};
        Attempts run(folder.path(), m_report, true), afterDeath(folder.path(), m_report, false);
        int status = 0;
        bool const ended = inChild(
            [&]
            {
                FaultInjector::arm(plan, m_report.m_trace, sizeof m_report.m_trace);
                if (plan.m_kind >= FaultPlan::systemCallFails && !FaultInjector::watchSystemCalls())
                    run.complain("system calls can't be watched");
                runOperation(operation, run);
            },
            status);
        bool const killed =
            plan.m_error == FaultPlan::s_killed && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        if (killed)
            inChild([&] { operation.m_act(afterDeath); }, status);
        else if (!ended)
            run.complain("a crash");
        if (m_report.m_problems[0] != '\0' && !isKnown())
            ADD_FAILURE() << operation.m_name << " kind " << plan.m_kind << " error " << plan.m_error
                          << " point " << plan.m_point << ": " << m_report.m_problems << m_report.m_trace;
        return m_report.m_trace[0] != '\0';
    }

    bool isKnown() const
    {
        for (KnownFault const& fault : s_knownFaults)
            if (std::strcmp(m_report.m_problems, fault.m_problems) == 0 &&
                std::strstr(m_report.m_trace, fault.m_place))
                return true;
        return false;
    }

    // All points of all operations.
    int strikeAll(std::vector<FaultPlan> const& plans)
    {
        int points = 0;
        for (Operation const& operation : s_operations)
            for (FaultPlan plan : plans)
                for (plan.m_point = 1; strike(operation, plan); ++plan.m_point)
                    ++points;
        std::printf("%d points\n", points);
        return points;
    }

    TemporaryFolder m_scene;
    Report& m_report;
};
}  // namespace

TEST_F(FaultTest, NoLackOfMemoryCrashesLeaksOrSpoilsAnything)
{
    EXPECT_LE(1500, strikeAll({{FaultPlan::oneAllocation}, {FaultPlan::allAllocations}}));
}

TEST_F(FaultTest, NoFailingSystemCallLeaksOrSpoilsAnything)
{
    std::vector<FaultPlan> plans;
    for (int const error : {ENOSPC, EIO, EACCES, EINTR})
        plans.push_back({FaultPlan::systemCallFails, error});
    EXPECT_LE(1000, strikeAll(plans));
}

TEST_F(FaultTest, NeitherAShortTransferNorTheEndOfTheProcessSpoilsAnything)
{
    EXPECT_LE(400,
              strikeAll({{FaultPlan::systemCallIsShort}, {FaultPlan::systemCallFails, FaultPlan::s_killed}}));
}
