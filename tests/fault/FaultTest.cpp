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

#include <gtest/gtest.h>
#include <openssl/crypto.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "NEBCore/I18NString.h"
#include "NEBCore/NEBByteBuffer.h"
#include "NEBCore/NEBFmDir.h"
#include "NEBCore/NEBMessageString.h"
#include "crypto/ARXKRYHandleFactory.h"
#include "crypto/ARXSimpleKRYHandleIPtr.h"
#include "fault/FaultInjector.h"
#include "frame/ARXException.h"
#include "frame/ARXMessage.h"
#include "frame/Arxium.h"
#include "host/SealedFile.h"
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
    FaultTrace m_trace;
    char m_problems[1000];
};
Report& s_report = *static_cast<Report*>(
    mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

// One run of an operation on a copy of the scene: faults strike inside attempt only.
struct Attempts
{
    explicit Attempts(TemporaryFolder const& scene)
    {
        std::filesystem::copy(scene.path(), m_folder.path(), std::filesystem::copy_options::recursive);
        s_report = {};
    }

    std::string operator/(char const* name) const { return m_folder / name; }

    // Whether work told no failure; what it raises must be of the documented kinds.
    bool attempt(std::function<bool()> const& work)
    {
        bool succeeded = false;
        FaultInjector::arm(true);
        try
        {
            succeeded = !m_isAfterDeath && work();
        }
        catch (NEBThrowable const&)
        {
        }
        catch (std::bad_alloc const&)
        {
        }
        catch (...)
        {
            expect(false, "a foreign exception");
        }
        FaultInjector::arm(false);
        return succeeded;
    }
    // The same once more without faults, which must work out whatever happened before.
    void attemptAndRepeat(std::function<bool()> const& work)
    {
        attempt(work);
        expectSuccess(work);
    }
    void expectSuccess(std::function<bool()> const& work)
    {
        std::string const raised = failureOf([&] { expect(work(), "work without faults fails"); });
        expect(raised == "none", raised.c_str());
    }
    void expect(bool holds, char const* problem)
    {
        std::size_t const used = std::strlen(s_report.m_problems);
        if (!holds)
            std::snprintf(s_report.m_problems + used, sizeof s_report.m_problems - used, "[%s]", problem);
    }

    TemporaryFolder m_folder;
    bool m_isAfterDeath = false;  // only the checks are left, of what the death of another process left
};

struct Operation
{
    char const* m_name;
    void (*m_act)(Attempts& run);
};

std::string const s_old = "old contents", s_new(140000, 'n');

// The plain text of an encrypted file; "absent", or "damaged" if it isn't accepted to its end.
std::string unsealed(std::string const& path)
{
    std::string const raised = failureOf([&] { unsealFile(path, path + ".plain"); });
    bool const exists = access(path.c_str(), F_OK) == 0;
    return raised == "none" ? readAll(path + ".plain") : exists ? "damaged" : "absent";
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

bool readZip(ARXZipInputStream&& stream)
{
    NEBByteBuffer bytes(256, 256);
    std::string name;
    ARXZipInputStream::zipEntry entry;
    return stream.getFirstEntry() && stream.getCurrentEntryName(name) && stream.openCurrentEntry() &&
           stream.read(bytes, 100) == s_old.size() && stream.getCurrentEntryInfo(entry) &&
           stream.locate("b\\c") && stream.openCurrentEntry() && stream.read() == 'n' &&
           stream.getNextEntry() == false;
}

struct Started
{
    Started() { Arxium::initialize(); }
    ~Started() { Arxium::terminate(); }
};

Operation const s_operations[] = {
    {"WriteZip",
     [](Attempts& run)
     {
         run.attempt([&] { return makeZip(*std::make_unique<ARXZipFile>(), run); });
         ARXZipFile zip;
         run.attemptAndRepeat([&] { return makeZip(zip, run); });
         Tree expected = {{"a", s_old}, {"b/c", s_new}, {"piece", s_old}};
         run.expect(readStream(ARXZipInputStream((run / "out.zip").c_str())) == expected, "a whole archive");
     }},
    {"ReadZip",
     [](Attempts& run)
     {
         std::string const path = run / "in.zip", target = run / "x/y", bytes = readAll(path);
         FilePtr const file(std::fopen(path.c_str(), "rb"), std::fclose);
         if (run.attempt([&] { return ARXUnzipFile::unzip(path.c_str(), target.c_str(), false); }))
             run.expect(readTree(target) == s_tree, "true means a whole tree");
         ARXUnzipFile zip(nullptr);
         run.attemptAndRepeat(
             [&]
             {
                 return zip.openZip(path.c_str()) && zip.getFileCount() == 2 && zip.gotoFirstFile() &&
                        zip.gotoNextFile() && zip.unzip(true, target.c_str());
             });
         run.attemptAndRepeat([&] { return readZip(ARXZipInputStream(path.c_str())); });
         run.attemptAndRepeat([&] { return readZip(ARXZipInputStream(file.get())); });
         run.attemptAndRepeat([&] { return readZip(ARXZipInputStream(bytes.data(), bytes.size())); });
     }},
    {"Files",
     [](Attempts& run)
     {
         for (auto const& [name, before] : Tree{{"sealed", s_old}, {"fresh", "absent"}})
         {
             std::string const path = run / name.c_str();
             bool const sealed = run.attempt([&] { return seal(path, s_new); });
             std::string const text = unsealed(path);
             run.expect(text == s_new || (!sealed && text == before), "all as before or a complete file");
             seal(path, s_new);
             bool const read = run.attempt([&] { return unsealFile(path, run / "copy"), true; });
             run.expect(!read || readAll(run / "copy") == s_new, "success means all bytes");
             run.expect(unsealed(path) == s_new, "sealing again works");
         }
         auto const write = [&]
         {
             ARXOJDSecureFileOutputStream stream;
             stream.open((run / "plain").c_str());
             stream.write(s_old.data(), s_old.size());
             stream.flush();
             stream.write(s_new.data(), s_new.size());
             stream.close();

             OJDFileOutputStream file((run / "filtered").c_str(), 0);
             ARXOJDQuotedPrintableOutputStream quoted(file, true);
             ARXDomWriterOJDOutputStream writer(quoted);
             writer.write(s_new.data(), 1000), writer.endline();
             return true;
         };
         run.expect(!run.attempt(write) || readAll(run / "plain") == s_old + s_new,
                    "success means all bytes");
     }},
    {"StartAndStop",
     [](Attempts& run)
     {
         auto const startAndStop = [&]
         {
             Started const started;
             auto& store = NEBConfigurationStore::getStore();
             store.load(run / "settings");
             ARXSimpleKRYHandleIPtr const handle(ARXKRYHandleFactory::createHandle(
                 "<sessionConfigDocument><serviceID>ID</serviceID></sessionConfigDocument>",
                 "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation>"
                 "</setInfoDocument>"));
             char name[] = "serviceID", *id = nullptr;
             handle->getInfo(name, &id, nullptr);
             std::unique_ptr<char, void (*)(void*)> const owner(id, std::free);
             return id && store.getConfigurationValue("dispatcherID", nullptr).size() > 20;
         };
         Arxium::terminate();
         run.attemptAndRepeat(startAndStop);
         NEBConfigurationStore::getStore().clear();
         setenv("XDG_STATE_HOME", (run / "state").c_str(), 1);
         run.attemptAndRepeat(startAndStop);
         run.expect(readAll(run / "state/arxium/master.key").size() == 32, "a whole key");
         Arxium::initialize();
     }},
    {"UrlsAndPaths",
     [](Attempts& run)
     {
         std::string url = "before", path = "before";
         auto const sign = [&]
         {
             ARXUriDispatchHelper::generateByteServingUrlFromBasePath("/some/where/a long name of a file.pdf",
                                                                      "a session of some length", url);
             return true;
         };
         run.expect(run.attempt(sign) || url == "before", "a failure leaves the url");
         auto const normalize = [&]
         { return ARXFmDir::getNormalizedPath("C:\\long/../way/./to\\go/there", path), true; };
         run.expect(run.attempt(normalize) || path == "before", "a failure leaves the path");
         I18NString const text(s_new.substr(0, 1000).c_str());
         run.attemptAndRepeat(
             [&]
             {
                 ARXUriDispatchHelper::genGatewayUrlForFile("a/file", url, "session", true);
                 ARXUriDispatchHelper::genExternalDispatcherUrlForFile("a/file", url, "session", true);
                 NEBByteBuffer output(256, 256);
                 ARXHelper::urlEncode(text, output, false);
                 I18NString command("some/where with blanks/in a name");
                 ARXHelper::fixCommandPath(command);
                 ARXHelper::getBasePath(command, true);

                 ARXFmDir::getAbsolutePath("some/long/relative/path", path);
                 ARXFmDir::getPathTail(path, "/base/of/some/length", "/base/of/some/length/and/a/tail");
                 ARXFmDir::makePathSlashTerminated(path);
                 path = run / "tree/b/../a";
                 NEBFmDir::resolveEffectivePath(path);
                 return NEBFmDir::createRecursiveDir(run / "m/n\\o") != 0 && url.size() > 40 &&
                        output.pcount() == 1000 && ARXFmDir().isFile(path.c_str());
             });
     }},
    {"Texts",
     [](Attempts& run)
     {
         I18NString const text("a text that does not fit into the object itself");
         ARNEBI18NBuffer kept;
         auto const useBuffers = [&]
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
         run.attempt(useBuffers);
         run.expect(kept.empty() || kept.getCodepoints() % 47 == 0, "empty or whole");
         run.attemptAndRepeat(useBuffers);
         ARXException error("kept");
         auto const useMessages = [&]
         {
             I18NString argument;
             ARXMessage message(1u);
             message.getMessage("argument", 1, argument);
             ARXException raised("a text that is long enough to need memory");
             raised << message << NEBMessageString(I18NString("another text of a message"));
             std::unique_ptr<NEBThrowable> const copy(raised.clone());
             error = ARXException(raised, &message);
             return copy->getMessage() != nullptr;
         };
         run.attemptAndRepeat(useMessages);
         run.expect(error.getMessage() != nullptr, "an exception always has a text");
     }},
};

// Faults of libraries below: what goes wrong if an allocation fails there.
char const* const s_knownFaults[][2] = {
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
    {
        writeTree(s_tree, m_scene / "tree");
        writeTree({{"key", std::string(32, 'k')},
                   {"settings",
                    "gatewayUrl = http://gate/and/something/longer\n"
                    "externalDispatcherUrl = http://gate/and/something/longer\n"
                    "dispatcherID = a dispatcher of some length\n"}},
                  m_scene.path());
        std::filesystem::permissions(m_scene / "key", std::filesystem::perms(0600));
        setenv("TZ", "UTC", 1);  // else the C library reads its time zone again and again
        start();
        ARXZipFile zip;
        zip.create((m_scene / "in.zip").c_str());
        zip.addDirectory((m_scene / "tree").c_str(), nullptr, true, false);
        zip.close();
        seal(m_scene / "sealed", s_old);
        for (Operation const& operation : s_operations)  // fills what is kept for good
        {
            Attempts run(m_scene);
            operation.m_act(run);
            EXPECT_STREQ("", s_report.m_problems) << operation.m_name;
            Arxium::terminate();
            start();
        }
    }
    ~FaultTest() override { Arxium::terminate(); }

    void start()
    {
        auto& store = NEBConfigurationStore::getStore();
        store.clear();
        store.load(m_scene / "settings");
        store.setValue("cryptoKeyFile", (m_scene / "key").c_str());
        Arxium::initialize();
    }

    // Runs act in a child and gives how that ended.
    int inChild(std::function<void()> const& act)
    {
        pid_t const child = fork();
        if (child == 0)
        {
            alarm(100);
            act();
            ARXIUM_END_CHILD(0);
        }
        int status = -1;
        waitpid(child, &status, 0);
        return status;
    }

    // Whether the point was reached.
    bool strike(Operation const& operation, FaultPlan const& plan)
    {
        Attempts run(m_scene);
        int status = inChild(
            [&]
            {
                auto const countDescriptors = []
                { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
                auto const descriptors = countDescriptors();
                run.expect(FaultInjector::prepare(plan, s_report.m_trace), "system calls can't be watched");
                run.expectSuccess([&] { return operation.m_act(run), Arxium::terminate(), true; });
                NEBConfigurationStore::getStore().clear();
                OPENSSL_thread_stop();
                // All that the operation held is given back.
                run.expect(FaultInjector::liveAllocations() == 0, "memory is lost");
                run.expect(countDescriptors() == descriptors, "a descriptor is lost");
            });
        if (plan.m_error == FaultPlan::s_killed && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
        {
            run.m_isAfterDeath = true;
            status = inChild([&] { operation.m_act(run); });
        }
        run.expect(status == 0, "a crash");
        if (s_report.m_problems[0] != '\0' && !isKnown())
            ADD_FAILURE() << operation.m_name << " kind " << plan.m_kind << " error " << plan.m_error
                          << " point " << plan.m_point << ": " << s_report.m_problems << s_report.m_trace;
        return s_report.m_trace[0] != '\0';
    }

    bool isKnown() const
    {
        for (auto const& [problems, place] : s_knownFaults)
            if (std::strcmp(s_report.m_problems, problems) == 0 && std::strstr(s_report.m_trace, place))
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
};
}  // namespace

TEST_F(FaultTest, NoLackOfMemoryCrashesLeaksOrSpoilsAnything)
{
    EXPECT_LE(2000, strikeAll({{FaultPlan::oneAllocation}, {FaultPlan::allAllocations}}));
}

TEST_F(FaultTest, NoFailingSystemCallLeaksOrSpoilsAnything)
{
    auto constexpr fails = FaultPlan::systemCallFails;
    EXPECT_LE(1000, strikeAll({{fails, ENOSPC}, {fails, EIO}, {fails, EACCES}, {fails, EINTR}}));
}

TEST_F(FaultTest, NeitherAShortTransferNorTheEndOfTheProcessSpoilsAnything)
{
    EXPECT_LE(400,
              strikeAll({{FaultPlan::systemCallIsShort}, {FaultPlan::systemCallFails, FaultPlan::s_killed}}));
}
