// A handle that owns its session. One object serves one thread at a time.

#ifndef ARXIUM_CRYPTO_ARXKRYHANDLE_H
#define ARXIUM_CRYPTO_ARXKRYHANDLE_H

#include "crypto/ARXKRYHandleI.h"

class ARXKRYHandle final : public ARXKRYHandleI
{
public:
    // Opens nothing.
    ARXKRYHandle();
    // Closes the session, and discards a failure of that.
    ~ARXKRYHandle() override;

    ARXKRYHandle(ARXKRYHandle const&) = delete;
    ARXKRYHandle& operator=(ARXKRYHandle const&) = delete;

    std::int32_t protectData(char const* data, std::size_t size, char** outData, std::size_t* outSize,
                             void* extra) override;
    std::int32_t unprotectData(char const* data, std::size_t size, char** outData, std::size_t* outSize,
                               void* extra) override;
    std::int32_t getInfo(void* first, void* second, void* third) override;
    std::int32_t cryptoFree(void* memory, void* extra) override;
    // Keeps an open session that can't be closed, and opens no new one.
    void persistentInitialize(char const* cnfgDoc, void* extra) override;
    void setInfo(char const* infoDoc, void* extra) override;

    // Does nothing without a session. Raises ARXException and keeps the session if the crypto interface
    // refuses.
    void closeHandle();

private:
    void* m_kryHandle;  // null without a session
};

#endif
