// The library's maker of crypto handles, which keeps one open session for each pair of documents.
//
// Any number of threads may call at once. Sessions are closed only by the destructor, so all simple handles
// end before it, and the crypto interface must still be up then.

#ifndef ARXIUM_CRYPTO_ARXKRYHANDLEFACTORYWORKER_H
#define ARXIUM_CRYPTO_ARXKRYHANDLEFACTORYWORKER_H

#include <cstdint>
#include <map>

#include "NEBCore/NEBThreadCriticalSection.h"
#include "crypto/ARXKRYHandleFactoryWorkerI.h"
#include "frame/ArxiumExport.h"

class ARXIUM_API ARXKRYHandleFactoryWorker : public ARXKRYHandleFactoryWorkerI
{
public:
    // A shared session and the lock that every call on it holds.
    class ARXIUM_API HandleResource
    {
    public:
        HandleResource();
        // Closes the session, if there is one; a failure of that is lost.
        ~HandleResource();

        HandleResource(HandleResource const&) = delete;
        HandleResource& operator=(HandleResource const&) = delete;

        // Opens the session and sets it up; once, before another thread can reach this object. Raises
        // ARXException if the crypto interface refuses either document, and leaves an open session to the
        // destructor.
        void initHandle(char const* cnfgDoc, char const* infoDoc);

        // The variable, not its value: it is read at each call on the session. Raises NEBAssertError while it
        // is null.
        void*& getKryHandle();
        NEBThreadCriticalSection& getCriticalSection();

    private:
        void* m_kryHandle;
        NEBThreadCriticalSection m_criticalSection;
    };

    ARXKRYHandleFactoryWorker();
    ~ARXKRYHandleFactoryWorker() override;

    ARXKRYHandleFactoryWorker(ARXKRYHandleFactoryWorker const&) = delete;
    ARXKRYHandleFactoryWorker& operator=(ARXKRYHandleFactoryWorker const&) = delete;

    ARXSimpleKRYHandleI* createHandle(char const* cnfgDoc, char const* infoDoc) override;
    ARXKRYHandleI* createHandle() override;
    void destroyHandle(ARXSimpleKRYHandleI* handle) override;

protected:
    // The session of that pair of documents, set up on first use while all other callers wait. Pairs are told
    // apart by the CRC-32 of both texts alone: two of equal checksum share the session of the one that came
    // first.
    HandleResource& getHandleResource(char const* cnfgDoc, char const* infoDoc);

private:
    std::map<std::uint32_t, HandleResource*> m_handleResources NEB_GUARDED_BY(m_criticalSection);  // owned
    NEBThreadCriticalSection m_criticalSection;
};

#endif
