// Each function takes exactly its own documents, in the spellings listed here, and refuses every other text
// as a document. A file that a document names is missing or discarded; outputs outside the folder are not
// tried.

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "fuzz/StartedCrypto.h"

namespace
{
bool takeFront(std::string& text, std::string const& front)
{
    bool const isThere = text.rfind(front, 0) == 0;
    text.erase(0, isThere ? front.size() : 0);
    return isThere;
}

bool takeBack(std::string& text, std::string const& back)
{
    bool const isThere = text.size() >= back.size() && text.substr(text.size() - back.size()) == back;
    text.resize(text.size() - (isThere ? back.size() : 0));
    return isThere;
}

// Leaves the text between the tags of root.
bool takeRoot(std::string& text, std::string const& root)
{
    takeFront(text, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>");
    return takeFront(text, "<" + root + ">") && takeBack(text, "</" + root + ">");
}

bool isServiceDocument(std::string text, std::string const& root)
{
    return takeRoot(text, root) && takeFront(text, "<serviceID>") && takeBack(text, "</serviceID>") &&
           !text.empty() && text.size() < 256 && text.find_first_of("<>&") == std::string::npos;
}

// Takes `<offset>N</offset>` from the end if there is such an end; false if N is no number of 64 bits.
bool takeOffset(std::string& text)
{
    if (!takeBack(text, "</offset>"))
        return true;
    std::size_t const start = text.rfind("<offset>");
    std::string const digits = start == std::string::npos ? "" : text.substr(start + 8);
    text.resize(std::min(start, text.size()));
    errno = 0;
    std::strtoull(digits.c_str(), nullptr, 10);
    return !digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos && errno == 0;
}

// The name of its file stays in text, if it has one.
bool isSetUp(std::string& text)
{
    if (!takeRoot(text, "setInfoDocument"))
        return false;
    std::string const sign = "<action>CSKHMAC</action>", memory = "<dataLocation>memory</dataLocation>";
    if (text == sign + memory || text == memory + sign || text == "<dataLocation>file</dataLocation>")
        return text.clear(), true;
    bool const hasFile = takeFront(text, "<action>CipherStream</action><fileOutput>")
                             ? takeBack(text, "</fileOutput>")
                             : takeFront(text, "<action>DecipherStream</action><fileInput>") &&
                                   takeOffset(text) && takeBack(text, "</fileInput>");
    return hasFile && !text.empty();
}

void checkSetUp(std::string const& document)
{
    std::string name = document;
    bool const isTaken = isSetUp(name);
    bool const writes = document.find("<fileOutput>") != std::string::npos;
    if (isTaken && writes && name.find('/') != std::string::npos)
        return;
    CryptoSession session;
    std::int32_t const status = session.setUp(document);
    mustHold((status == KRY_ERROR_DOCUMENT) == !isTaken, "set-ups are taken exactly in their spellings");
    mustHold(!isTaken || status == KRY_SUCCESS || (!name.empty() && status == KRY_ERROR_FILE),
             "a set-up fails only for its file");
}

void checkServices(std::string const& document)
{
    void* session = nullptr;
    bool const isSession = isServiceDocument(document, "sessionConfigDocument");
    mustHold(KRY_PersistentInitialize(&session, document.c_str(), nullptr, nullptr) ==
                 (isSession ? KRY_SUCCESS : KRY_ERROR_DOCUMENT),
             "sessions are opened exactly by their documents");
    mustHold(isSession == (session != nullptr), "a session comes with success");
    if (session)
        KRY_CloseHandle(&session, nullptr, nullptr);

    char* details = nullptr;
    bool const isStart = isServiceDocument(document, "initializeDocument");
    mustHold(KRY_CryptoInitialize(document.c_str(), nullptr, &details) ==
                 (isStart ? KRY_SUCCESS : KRY_ERROR_DOCUMENT),
             "services are started exactly by their documents");
    mustHold(isStart == (details == nullptr), "details come with failure");
    KRY_CryptoFree(details, nullptr);
    std::string id = document;
    bool const isOwn = takeRoot(id, "initializeDocument") && id == "<serviceID>fuzz</serviceID>";
    std::string const stop = isStart ? "<terminateDocument>" + id + "</terminateDocument>" : document;
    if (isOwn || (!isStart && isServiceDocument(stop, "terminateDocument")))
        return;  // would stop what is needed, or what is not started
    mustHold(
        KRY_CryptoTerminate(stop.c_str(), nullptr, nullptr) == (isStart ? KRY_SUCCESS : KRY_ERROR_DOCUMENT),
        "services are stopped by their documents only");
}
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static StartedCrypto s_crypto;
    std::string const document = std::string(reinterpret_cast<char const*>(data), size).c_str();
    checkSetUp(document);
    checkServices(document);
    return 0;
}
