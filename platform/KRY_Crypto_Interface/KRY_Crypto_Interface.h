// All cryptography, behind ten plain functions that are driven by XML documents.
//
// Every function gives a status; none lets an exception out. Where a details argument is given it starts as
// null, and on failure receives a fresh terminated text (UTF-8) that says why and holds no key and no data;
// the caller frees it by KRY_CryptoFree. Sessions are opaque: null, closed or foreign ones give a failed
// status. All functions may be called from any thread; calls on one session run one at a time.

#ifndef KRY_CRYPTO_INTERFACE_KRY_CRYPTO_INTERFACE_H
#define KRY_CRYPTO_INTERFACE_KRY_CRYPTO_INTERFACE_H

#include <cstdint>

#define KRY_API __attribute__((visibility("default")))

#define KRY_SUCCEEDED(status) ((status) >= 0)

extern "C"
{
    // Starts and stops the interface for the service that the document names. Service ids are kept as a set:
    // one that is started twice ends with its first stop. The last stop closes all sessions and wipes all
    // keys.
    KRY_API std::int32_t KRY_CryptoInitialize(char const* initializeDocument, void* extra, char** details);
    KRY_API std::int32_t KRY_CryptoTerminate(char const* terminateDocument, void* extra, char** details);

    // Opens a session for the service that the document names. *session is null after a failure.
    KRY_API std::int32_t KRY_PersistentInitialize(void** session, char const* sessionConfigDocument,
                                                  void* extra, char** details);
    // Sets what the session does from now on.
    KRY_API std::int32_t KRY_SetInfo(void* session, char const* setInfoDocument, void* extra);
    // first: a terminated name of what is asked; second: char**, receives a text freed by KRY_CryptoFree;
    // third: reserved.
    KRY_API std::int32_t KRY_GetInfo(void* session, void* first, void* second, void* third);

    // *outData and *outSize are 0 after a failure and where nothing comes back. What comes back is freed by
    // KRY_CryptoFree.
    KRY_API std::int32_t KRY_ProtectData(void* session, char const* data, std::uint32_t size, char** outData,
                                         std::uint32_t* outSize, void* extra);
    // *outSize tells on entry how much is wanted at most; 0 leaves it to the interface.
    KRY_API std::int32_t KRY_UnprotectData(void* session, char const* data, std::uint32_t size,
                                           char** outData, std::uint32_t* outSize, void* extra);

    // Closes the session and clears *session.
    KRY_API std::int32_t KRY_CloseHandle(void** session, void* extra, char** details);

    // Takes memory that the interface gave out, or null, at any time, also behind the last stop.
    KRY_API std::int32_t KRY_CryptoFree(void* memory, void* extra);
    // The reason of the session's last failure.
    KRY_API std::int32_t KRY_CryptoGetLastErrorDetails(void* session, void* extra, char** details);
}

#endif
