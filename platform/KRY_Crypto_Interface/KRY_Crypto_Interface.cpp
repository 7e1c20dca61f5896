#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYInterface.h"
#include "KRY_Crypto_Interface/KRYMemory.h"

namespace
{
// Lack of memory costs the text, never the status.
void giveText(char** target, std::string_view text) noexcept
{
    if (target && !text.empty())
        *target = ::strndup(text.data(), text.size());
}

// Runs work where nothing may leave but a status.
template <class Work>
std::int32_t guarded(char** details, Work work) noexcept
{
    try
    {
        work();
        return KRY_SUCCESS;
    }
    catch (...)
    {
        KRYFailure const failure = currentFailure();
        giveText(details, failure.m_text);
        return failure.m_status;
    }
}

// Runs work on a session, which keeps the reason of a failure.
template <class Work>
std::int32_t inSession(void* token, Work work) noexcept
{
    return guarded(nullptr,
                   [&]
                   {
                       KRYRegistry::Access const session(KRYInterface::getInstance().getSessions(), token);
                       session->getLastFailure().watch([&] { work(*session); });
                   });
}

// Raises where a pointer that the call can't do without is null.
void requireArgument(void const* argument)
{
    if (!argument)
        throw KRYError(KRY_ERROR_ARGUMENT, "an argument is null");
}

std::string getInfo(KRYSession& session, std::string_view name)
{
    if (name == "serviceID")
        return session.getServiceID();
    if (name == "size")
        return std::to_string(session.getFileSize());
    throw KRYError(KRY_ERROR_ARGUMENT, "there is no information of that name");
}

KRYOutput cleared(char** data, std::uint32_t* size)
{
    if (data)
        *data = nullptr;
    if (size)
        *size = 0;
    return {data, size};
}
}  // namespace

std::int32_t KRY_CryptoInitialize(char const* initializeDocument, void*, char** details)
{
    return guarded(details, [&] { KRYInterface::getInstance().start(initializeDocument); });
}

std::int32_t KRY_CryptoTerminate(char const* terminateDocument, void*, char** details)
{
    return guarded(details, [&] { KRYInterface::getInstance().stop(terminateDocument); });
}

std::int32_t KRY_PersistentInitialize(void** session, char const* sessionConfigDocument, void*,
                                      char** details)
{
    if (session)
        *session = nullptr;
    return guarded(details,
                   [&]
                   {
                       requireArgument(session);
                       *session = KRYInterface::getInstance().open(sessionConfigDocument);
                   });
}

std::int32_t KRY_SetInfo(void* session, char const* setInfoDocument, void*)
{
    return inSession(session, [&](KRYSession& open) { open.setUp(setInfoDocument); });
}

std::int32_t KRY_GetInfo(void* session, void* first, void* second, void*)
{
    auto* const target = static_cast<char**>(second);
    if (target)
        *target = nullptr;
    return inSession(session,
                     [&](KRYSession& open)
                     {
                         requireArgument(first);
                         requireArgument(target);
                         *target = copyOut(getInfo(open, static_cast<char const*>(first)));
                     });
}

std::int32_t KRY_ProtectData(void* session, char const* data, std::uint32_t size, char** outData,
                             std::uint32_t* outSize, void*)
{
    KRYOutput const output = cleared(outData, outSize);
    return inSession(session, [&](KRYSession& open) { open.protect(data, size, output); });
}

std::int32_t KRY_UnprotectData(void* session, char const* data, std::uint32_t size, char** outData,
                               std::uint32_t* outSize, void*)
{
    std::uint32_t const wanted = outSize ? *outSize : 0;
    KRYOutput const output = cleared(outData, outSize);
    return inSession(session,
                     [&](KRYSession& open)
                     {
                         if (data || size != 0)
                             throw KRYError(KRY_ERROR_ARGUMENT, "a file is read without data coming in");
                         open.unprotect(wanted, output);
                     });
}

std::int32_t KRY_CloseHandle(void** session, void*, char** details)
{
    return guarded(details,
                   [&]
                   {
                       requireArgument(session);
                       KRYInterface::getInstance().getSessions().close(*session);
                       *session = nullptr;
                   });
}

std::int32_t KRY_CryptoFree(void* memory, void*)
{
    std::free(memory);
    return KRY_SUCCESS;
}

std::int32_t KRY_CryptoGetLastErrorDetails(void* session, void*, char** details)
{
    return guarded(details,
                   [&]
                   {
                       requireArgument(details);
                       KRYInterface& interface = KRYInterface::getInstance();
                       if (!session)
                           return giveText(details, interface.getStartFailure());
                       KRYRegistry::Access const open(interface.getSessions(), session);
                       giveText(details, open->getLastFailure().getText());
                   });
}
