// A URL is right for the session and the file it was made for, and any change of its query makes it wrong.

#include "frame/Arxium.h"
#include "fuzz/StartedCrypto.h"
#include "host/SignedUrl.h"
#include "url/ARXUriDispatchHelper.h"

namespace
{
struct StartedLibrary : StartedCrypto
{
    StartedLibrary() { Arxium::initialize(); }
    ~StartedLibrary() { Arxium::terminate(); }
};

std::string takeName(FuzzInput& input)
{
    std::string const name = input.takeShortText().c_str();
    return name.empty() || name.find_first_of("/\\") != std::string::npos ? "report.pdf" : name;
}

bool isRight(std::string const& url, std::string const& session)
{
    return findWrongValues(url, session).empty();
}
}  // namespace

// Input: a session, a file name, how many bytes of the URL are replaced and where, and by what.
int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static StartedLibrary s_library;
    FuzzInput input(data, size);
    std::string const session = "s" + std::string(input.takeShortText().c_str());
    std::string url;
    ARXUriDispatchHelper::generateByteServingUrlFromBasePath(takeName(input), session.c_str(), url);
    mustHold(isRight(url, session), "a URL is right in its session");
    mustHold(!isRight(url, session + "x"), "a URL is wrong in another session");

    std::size_t const count = input.takeByte();
    std::string forged = url;
    forged.replace(input.takeByte() % url.size(), count, input.takeRest());
    std::size_t const base = forged.find_first_of("?#");
    bool const isBehindABase = base != std::string::npos && forged.compare(base, std::string::npos, url) == 0;
    mustHold(isBehindABase || !isRight(forged, session), "a changed query is wrong");
    return 0;
}
