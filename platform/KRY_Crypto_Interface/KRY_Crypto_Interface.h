// All cryptography, behind ten plain functions that are driven by XML documents.
//
// Every function gives a status; none lets an exception out. Where a details argument is given it starts as
// null, and on failure receives a fresh terminated text that says why and holds no key and no data (UTF-8,
// but for the bytes of a file's name); the caller frees it by KRY_CryptoFree. It stays null if there was no
// memory for the text. Null instead of its address is taken too. Sessions are opaque: null, closed or foreign
// ones give a failed status. All functions may be called from any thread; calls on one session run one at a
// time. Arguments named extra are reserved and not looked at.
//
// The key comes from the file that the setting "cryptoKeyFile" names, else from the user's state directory,
// where the first start makes it; KRYKeyFile.h has the rules. KRYDocument.h has those of the documents,
// KRYSigner.h what a signature is, KRYFileHeader.h what an encrypted file is.

#ifndef KRY_CRYPTO_INTERFACE_KRY_CRYPTO_INTERFACE_H
#define KRY_CRYPTO_INTERFACE_KRY_CRYPTO_INTERFACE_H

#include <cstdint>

#define KRY_API __attribute__((visibility("default")))

#define KRY_SUCCEEDED(status) ((status) >= 0)

enum KRYStatus : std::int32_t
{
    KRY_SUCCESS = 0,
    KRY_ERROR_ARGUMENT = -1,  // null or a value that the call can't do with
    KRY_ERROR_DOCUMENT = -2,  // refused document
    KRY_ERROR_STATE = -3,     // not started, or the session is not set up for that
    KRY_ERROR_SESSION = -4,   // null, closed or foreign session
    KRY_ERROR_KEY = -5,       // key file that breaks its rules
    KRY_ERROR_FILE = -6,      // the system refused work on a file
    KRY_ERROR_DAMAGED = -7,   // file that is not what was written under this key and service id
    KRY_ERROR_CRYPTO = -8,    // OpenSSL failed
    KRY_ERROR_MEMORY = -9,
    KRY_ERROR_INTERNAL = -10
};

extern "C"
{
    // `<initializeDocument><serviceID>ID</serviceID></initializeDocument>` starts, terminateDocument stops
    // the interface for a service. Service ids are kept as a set: one that is started twice ends with its
    // first stop. Stopping what is not started fails. The first start loads the key. The last stop closes all
    // sessions (unfinished files are discarded) and wipes all keys, and waits for calls that are in a
    // session.
    KRY_API std::int32_t KRY_CryptoInitialize(char const* initializeDocument, void* extra, char** details);
    KRY_API std::int32_t KRY_CryptoTerminate(char const* terminateDocument, void* extra, char** details);

    // Opens a session by `<sessionConfigDocument><serviceID>ID</serviceID></sessionConfigDocument>`. Any id
    // is taken, of 255 bytes at most; each has keys of its own. *session is null after a failure.
    KRY_API std::int32_t KRY_PersistentInitialize(void** session, char const* sessionConfigDocument,
                                                  void* extra, char** details);

    // Sets what the session does from now on, by one of four documents (`<setInfoDocument>` around):
    // - `<action>CSKHMAC</action><dataLocation>memory</dataLocation>`: KRY_ProtectData signs.
    // - `<action>CipherStream</action><fileOutput>NAME</fileOutput>`: KRY_ProtectData appends to a new
    //   encrypted file. It has its name only when it is finished, and until then the name's old file stays.
    //   NAME is raw bytes. Refused if something else than a regular file has the name.
    // - `<dataLocation>file</dataLocation>`, the closing document: the next KRY_ProtectData, without data,
    //   finishes the file. No error if no file is being written; that call then succeeds too.
    // - `<action>DecipherStream</action><fileInput>NAME</fileInput>`: KRY_UnprotectData reads such a file.
    // While a file is being written, only the closing document is taken.
    KRY_API std::int32_t KRY_SetInfo(void* session, char const* setInfoDocument, void* extra);
    // first: a terminated name, of which "serviceID" is the only one; second: char**, receives that text,
    // freed by KRY_CryptoFree; third: reserved.
    KRY_API std::int32_t KRY_GetInfo(void* session, void* first, void* second, void* third);

    // Signing gives 32 bytes out, freed by KRY_CryptoFree. Writing a file gives nothing out and takes null
    // for outData and outSize; once a write has failed all further ones do, and the finishing call too, which
    // then leaves the old file and an idle session. *outData and *outSize are 0 where nothing comes back.
    KRY_API std::int32_t KRY_ProtectData(void* session, char const* data, std::uint32_t size, char** outData,
                                         std::uint32_t* outSize, void* extra);
    // Reads on in a file; data is null and size 0. *outSize tells on entry how many bytes are wanted at most,
    // and then how many came; 0 wants a segment, and more than a segment (64 KiB) never comes. Success with 0
    // bytes is the end of a file that is whole. Bytes that came before a failure were right, but the file is
    // not.
    KRY_API std::int32_t KRY_UnprotectData(void* session, char const* data, std::uint32_t size,
                                           char** outData, std::uint32_t* outSize, void* extra);

    // Closes the session, discards a file that is not finished, and clears *session. A failure leaves
    // *session.
    KRY_API std::int32_t KRY_CloseHandle(void** session, void* extra, char** details);

    // Takes memory that the interface gave out, or null, at any time, also behind the last stop.
    KRY_API std::int32_t KRY_CryptoFree(void* memory, void* extra);
    // The reason of the session's last failure, which later successes leave as it is; null for none.
    KRY_API std::int32_t KRY_CryptoGetLastErrorDetails(void* session, void* extra, char** details);
}

#endif
