// A handle on a shared session. Each call holds the session's lock, so any number of threads may use it. It
// is valid as long as the worker that made it.

#ifndef ARXIUM_CRYPTO_ARXSIMPLEKRYHANDLE_H
#define ARXIUM_CRYPTO_ARXSIMPLEKRYHANDLE_H

#include "NEBCore/NEBThreadCriticalSection.h"
#include "crypto/ARXSimpleKRYHandleI.h"

class ARXSimpleKRYHandle final : public ARXSimpleKRYHandleI
{
public:
    // Both must outlive the handle.
    ARXSimpleKRYHandle(void*& session, NEBThreadCriticalSection& lock);
    // Leaves the session open.
    ~ARXSimpleKRYHandle() override;

    ARXSimpleKRYHandle(ARXSimpleKRYHandle const&) = delete;
    ARXSimpleKRYHandle& operator=(ARXSimpleKRYHandle const&) = delete;

    std::int32_t protectData(char const* data, std::size_t size, char** outData, std::size_t* outSize,
                             void* extra) override;
    std::int32_t unprotectData(char const* data, std::size_t size, char** outData, std::size_t* outSize,
                               void* extra) override;
    std::int32_t getInfo(void* first, void* second, void* third) override;
    // Takes no lock: the memory is the caller's alone.
    std::int32_t cryptoFree(void* memory, void* extra) override;

private:
    void*& m_kryHandle;  // read at each call
    NEBThreadCriticalSection& m_criticalSection;
};

#endif
