#include "KRY_Crypto_Interface/KRY_Crypto_Interface.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "KRY_Crypto_Interface/KRYError.h"
#include "KRY_Crypto_Interface/KRYInterface.h"

namespace
{
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
        KRYText text;
        KRYStatus const status = tellFailure(text);
        if (details)
            *details = text.release();
        return status;
    }
}

template <class Work>
std::int32_t inSession(void* token, Work work)
{
    return guarded(nullptr, [&] { KRYInterface::getInstance().getSessions().with(token, work); });
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
        return std::to_string(session.getReader().getSize());
    throw KRYError(KRY_ERROR_ARGUMENT, "there is no information of that name");
}

void clear(char** data, std::uint32_t* size)
{
    if (data)
        *data = nullptr;
    if (size)
        *size = 0;
}

// A copy with a zero byte after it, by malloc, so that KRY_CryptoFree works without a start.
char* copied(std::string_view bytes)
{
    auto* const copy = static_cast<char*>(std::malloc(bytes.size() + 1));
    if (!copy)
        throw std::bad_alloc();
    std::memcpy(copy, bytes.data(), bytes.size());
    copy[bytes.size()] = '\0';
    return copy;
}

// The caller has set both to 0.
void give(char** data, std::uint32_t* size, std::string_view bytes)
{
    requireArgument(data);
    requireArgument(size);
    if (bytes.empty())
        return;
    *data = copied(bytes);
    *size = static_cast<std::uint32_t>(bytes.size());
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
    clear(target, nullptr);
    return inSession(session,
                     [&](KRYSession& open)
                     {
                         requireArgument(first);
                         requireArgument(target);
                         *target = copied(getInfo(open, static_cast<char const*>(first)));
                     });
}

std::int32_t KRY_ProtectData(void* session, char const* data, std::uint32_t size, char** outData,
                             std::uint32_t* outSize, void*)
{
    clear(outData, outSize);
    return inSession(
        session,
        [&](KRYSession& open)
        {
            auto const digest = open.protect(data, size);
            if (digest)
                give(outData, outSize, {reinterpret_cast<char const*>(digest->data()), digest->size()});
        });
}

std::int32_t KRY_UnprotectData(void* session, char const* data, std::uint32_t size, char** outData,
                               std::uint32_t* outSize, void*)
{
    std::size_t const wanted = outSize && *outSize != 0 ? *outSize : KRYFileCipher::s_segmentSize;
    clear(outData, outSize);
    return inSession(session,
                     [&](KRYSession& open)
                     {
                         if (data || size != 0)
                             throw KRYError(KRY_ERROR_ARGUMENT, "a file is read without data coming in");
                         KRYFileReader& reader = open.getReader();
                         std::string_view const bytes = reader.peek().substr(0, wanted);
                         give(outData, outSize, bytes);
                         reader.advance(bytes.size());
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
                       auto const copy = [details](KRYText const& reason)
                       { *details = reason ? ::strdup(reason.get()) : nullptr; };
                       if (session)
                           interface.getSessions().with(
                               session, [&](KRYSession& open) { copy(open.getLastFailure()); });
                       else
                           interface.withStartFailure(copy);
                   });
}
