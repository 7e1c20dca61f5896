// All cryptography: ten plain functions that are driven by XML documents. docs/crypto-handles.md has a table
// of the documents, docs/keys.md tells about keys, docs/formats.md what a signature and an encrypted file
// are.
//
// Status. Every function returns one: KRY_SUCCESS or a negative KRYStatus. No C++ exception leaves a
// function. Sessions are opaque. A null, closed or foreign session is refused with KRY_ERROR_SESSION.
//
// Details. Where a function takes the address of a details pointer, it writes there after a failure: a new
// terminated text that says why, in UTF-8 except for the bytes of a file's name, without keys and data. The
// caller sets the pointer to null before the call and frees the text by KRY_CryptoFree. The pointer stays
// null if there is no memory for the text. The address itself may be null.
//
// Texts and bytes. Documents are terminated strings. They are compared byte for byte: no blanks or line ends
// between elements, no attributes, no entities. The declaration `<?xml version="1.0" encoding="UTF-8"
// standalone="yes"?>` may stand in front. Names of files are the system's own bytes, at most what the system
// allows. Sizes are in bytes.
//
// Threads. Any thread may call any function; calls on one session run one at a time. A process that forks:
// see docs/keys.md. Arguments named extra are reserved; pass null.
//
// Signatures are HMAC-SHA-256 (RFC 2104), files AES-256-GCM (NIST SP 800-38D), keys of services HKDF (RFC
// 5869).
//
// Example:
//     void* session = nullptr;
//     char* details = nullptr;
//     char const document[] = "<sessionConfigDocument><serviceID>SHOP</serviceID></sessionConfigDocument>";
//     if (!KRY_SUCCEEDED(KRY_PersistentInitialize(&session, document, nullptr, &details)))
//         KRY_CryptoFree(details, nullptr);  // after it was read: it says why
//     KRY_CloseHandle(&session, nullptr, nullptr);

#ifndef KRY_CRYPTO_INTERFACE_KRY_CRYPTO_INTERFACE_H
#define KRY_CRYPTO_INTERFACE_KRY_CRYPTO_INTERFACE_H

#include <cstdint>

#define KRY_API __attribute__((visibility("default")))

#define KRY_SUCCEEDED(status) ((status) >= 0)

enum KRYStatus : std::int32_t
{
    KRY_SUCCESS = 0,
    KRY_ERROR_ARGUMENT = -1,  // null, or a value that the call can't use
    KRY_ERROR_DOCUMENT = -2,  // refused document
    KRY_ERROR_STATE = -3,     // not started, or the session is not set up for that
    KRY_ERROR_SESSION = -4,   // null, closed or foreign session
    KRY_ERROR_KEY = -5,       // key file that breaks its rules
    KRY_ERROR_FILE = -6,      // the system refused work on a file
    KRY_ERROR_DAMAGED = -7,  // file that is not what was written for this service under a key of the key file
    KRY_ERROR_CRYPTO = -8,   // OpenSSL failed
    KRY_ERROR_MEMORY = -9,
    KRY_ERROR_INTERNAL = -10
};

extern "C"
{
    // Starts the interface for a service by
    // `<initializeDocument><serviceID>ID</serviceID></initializeDocument>`. ID is 1 to 255 bytes without `<`,
    // `>` and `&`. Started services are a set: starting one again succeeds and changes nothing. The first
    // start loads the keys, from the file that the setting "cryptoKeyFile" names or else from the user's
    // state directory, and makes OpenSSL leave out its cleanup at exit if nobody has used OpenSSL in this
    // process before.
    KRY_API std::int32_t KRY_CryptoInitialize(char const* initializeDocument, void* extra, char** details);
    // Stops a service by the same document with the root terminateDocument. KRY_ERROR_STATE if it is not
    // started. The last stop waits for calls that are in a session, closes all sessions, discards unfinished
    // files and wipes all keys.
    KRY_API std::int32_t KRY_CryptoTerminate(char const* terminateDocument, void* extra, char** details);

    // Opens a session by `<sessionConfigDocument><serviceID>ID</serviceID></sessionConfigDocument>` between
    // the first start and the last stop. ID need not be a started service; each ID has keys of its own. The
    // caller owns *session and closes it by KRY_CloseHandle. *session is null after a failure.
    KRY_API std::int32_t KRY_PersistentInitialize(void** session, char const* sessionConfigDocument,
                                                  void* extra, char** details);

    // Sets what the session does from now on, by a `<setInfoDocument>` around one of these:
    // - `<action>CSKHMAC</action><dataLocation>memory</dataLocation>`: KRY_ProtectData signs. Both
    //   orders of the two elements are right.
    // - `<action>CipherStream</action><fileOutput>NAME</fileOutput>`: KRY_ProtectData appends to a new,
    //   encrypted file. It takes its name when it is finished; until then an older file of the name stays.
    //   Refused if the name belongs to anything but a regular file.
    // - `<dataLocation>file</dataLocation>`, the closing document: the next KRY_ProtectData, without data,
    //   finishes the file. Without a file being written, both succeed and do nothing.
    // - `<action>DecipherStream</action><fileInput>NAME</fileInput>`: KRY_UnprotectData reads such a file.
    //   `<offset>N</offset>` may follow, N in decimal digits: reading begins at that byte of the plain
    //   data. KRY_ERROR_ARGUMENT if the plain data is shorter than N.
    // While a file is being written, only the closing document is taken. Any other set-up ends the one
    // before, even if it fails; a document that is refused changes nothing. KRY_CryptoGetLastErrorDetails has
    // the reason.
    KRY_API std::int32_t KRY_SetInfo(void* session, char const* setInfoDocument, void* extra);
    // Returns a text in *second. first is its name, a terminated string; second is a char**, freed by
    // KRY_CryptoFree and null after a failure; third is reserved. The names:
    // - "serviceID": the ID that the session was opened with.
    // - "size": the number of plain bytes in the file that the session reads, in decimal. Its last
    //   segment is authenticated first, so a file that was cut is refused. What is read next stays the
    //   same.
    KRY_API std::int32_t KRY_GetInfo(void* session, void* first, void* second, void* third);

    // Signing returns 32 bytes in *outData, freed by KRY_CryptoFree. Writing a file returns nothing, and
    // outData and outSize may be null. After a write or a finishing call that failed, all further ones fail
    // for the same reason until the session is closed. *outData and *outSize are 0 where nothing is returned.
    // data may be null if size is 0.
    KRY_API std::int32_t KRY_ProtectData(void* session, char const* data, std::uint32_t size, char** outData,
                                         std::uint32_t* outSize, void* extra);
    // Returns the next plain bytes of the file, freed by KRY_CryptoFree; data is null and size 0. On entry
    // *outSize is the most bytes wanted; 0 means one segment, 65,536 bytes, and more are never returned. On
    // return it is the number of bytes in *outData. Success with 0 bytes is the end of a file that is whole.
    // Bytes that were returned before a failure are right, but the file is not.
    KRY_API std::int32_t KRY_UnprotectData(void* session, char const* data, std::uint32_t size,
                                           char** outData, std::uint32_t* outSize, void* extra);

    // Closes the session after waiting for a call that is in it, discards a file that is not finished, and
    // sets *session to null. *session keeps its value after a failure.
    KRY_API std::int32_t KRY_CloseHandle(void** session, void* extra, char** details);

    // Frees memory that the interface returned, or null, at any time, even after the last stop. Always
    // succeeds.
    KRY_API std::int32_t KRY_CryptoFree(void* memory, void* extra);
    // Returns why the last call that failed in this session failed; later successes leave the reason. A null
    // session asks why the last KRY_CryptoInitialize of the process failed. *details is null if there is no
    // reason, or was no memory to keep it.
    KRY_API std::int32_t KRY_CryptoGetLastErrorDetails(void* session, void* extra, char** details);
}

#endif
