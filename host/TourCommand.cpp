#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <iostream>

#include "Commands.h"
#include "Failure.h"
#include "InputFile.h"
#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "RunningLibrary.h"
#include "SealedFile.h"
#include "SignedUrl.h"
#include "text/NEBUtHRTimer.h"

namespace
{
namespace fs = std::filesystem;
char constexpr s_gatewaySetting[] = "gatewayUrl";
char constexpr s_session[] = "/tour-session";

// Prints a line a step, with the time since the step before it.
class Steps
{
public:
    Steps()
    {
        NEBUtHRTimer::initialize();
        m_timer.start();
    }
    ~Steps() { NEBUtHRTimer::terminate(); }
    Steps(Steps const&) = delete;
    Steps& operator=(Steps const&) = delete;

    void tell(std::string const& text)
    {
        std::cout << std::fixed << std::setprecision(3) << std::setw(9)
                  << static_cast<double>(m_timer.getElapsed(true)) / 1e6 << " ms  " << text << '\n';
        m_timer.start();
    }

private:
    NEBUtHRTimer m_timer;
};

class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::error_code error;
        std::string path = fs::temp_directory_path(error) / "arxhost-XXXXXX";
        if (error)
            failed(NEB_HERE, "the folder for temporary files", error.message());
        if (!mkdtemp(path.data()))
            systemFailed(NEB_HERE, path);
        m_path = path;
    }
    ~TemporaryFolder()
    {
        std::error_code error;
        fs::remove_all(m_path, error);
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    std::string at(char const* name) const { return m_path / name; }

private:
    fs::path m_path;
};

std::string contentsOf(std::string const& path)
{
    std::string contents;
    readFile(path, [&contents](char const* data, std::size_t size) { contents.append(data, size); });
    return contents;
}

// Raises if the outcome is not the wanted one: a tour that shows something else must not look like success.
void expect(bool condition, char const* what)
{
    if (!condition)
        failed(NEB_HERE, std::string("the tour expected that ") + what);
}

std::string tampered(std::string url)
{
    char& victim = url[url.find("&s=") + 3];
    victim = victim == 'A' ? 'B' : 'A';
    return url;
}

void tourUrls(Steps& steps, std::string const& file)
{
    std::string const url = signFile(file, s_session, false);
    steps.tell("signed: " + url);
    expect(findWrongValues(url, s_session).empty(), "the URL is right");
    steps.tell("checked: right");

    std::vector<std::string> const wrong = findWrongValues(tampered(url), s_session);
    expect(wrong.size() == 1, "one value of the tampered URL is wrong");
    steps.tell("tampered URL refused: " + wrong[0]);
    expect(!findWrongValues(url, "another session").empty(), "another session is refused");
    steps.tell("another session refused");
}

bool isUnsealed(std::string const& sealed, std::string const& target)
{
    try
    {
        unsealFile(sealed, target);
        return true;
    }
    catch (NEBThrowable const&)
    {
        return false;
    }
}

void tourSealing(Steps& steps, std::string const& file)
{
    TemporaryFolder const folder;
    std::string const sealed = folder.at("sealed");
    std::string const unsealed = folder.at("unsealed");
    sealFile(file, sealed);
    auto const size = fs::file_size(sealed);
    steps.tell("sealed: " + std::to_string(fs::file_size(file)) + " bytes became " + std::to_string(size));
    unsealFile(sealed, unsealed);
    expect(contentsOf(unsealed) == contentsOf(file), "the unsealed copy equals the file");
    steps.tell("unsealed: equal to the file");

    fs::resize_file(sealed, size - 1);
    expect(!isUnsealed(sealed, unsealed), "a cut copy is refused");
    steps.tell("cut copy refused");
}

int tour(std::string const& file)
{
    NEBConfigurationStore& settings = NEBConfigurationStore::getStore();
    if (settings.getConfigurationValue(s_gatewaySetting, nullptr).empty())
        settings.setValue(s_gatewaySetting, "https://files.example/gateway");

    Steps steps;
    {
        RunningLibrary const library;
        steps.tell("started");
        tourUrls(steps, file);
        tourSealing(steps, file);
    }
    steps.tell("stopped");
    return 0;
}
}  // namespace

void addTourCommand(CLI::App& app, Action& chosen)
{
    auto const [command, file] = addCommand(app, chosen, "tour", "Show the library at work on a file", tour);
    addRequired(*command, "FILE", *file, "The file");
}
