// The library's maker of crypto handles. Keeps one open session for each pair of documents.
//
// Any number of threads may call at once. Only the destructor closes sessions: destroy all simple handles
// before it, and stop the crypto interface after it. Arxium makes one at the first start; hosts need none of
// their own.
//
// Example:
//     #include "crypto/ARXKRYHandleFactory.h"
//     #include "crypto/ARXKRYHandleI.h"
//     static ARXKRYHandleFactoryWorker s_worker;  // of a host that starts without Arxium
//     ARXKRYHandleFactory::setFactoryWorker(&s_worker);
//     ARXKRYHandleFactory::destroyHandle(ARXKRYHandleFactory::createHandle());
//     ARXKRYHandleFactory::setFactoryWorker(nullptr);

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
        // Closes the session, if there is one, and discards a failure of that.
        ~HandleResource();

        HandleResource(HandleResource const&) = delete;
        HandleResource& operator=(HandleResource const&) = delete;

        // Opens the session and sets it up. Called once, before another thread can reach this object. Raises
        // ARXException if the crypto interface refuses a document; the destructor then closes the session.
        void initHandle(char const* cnfgDoc, char const* infoDoc);

        // Returns the variable, not its value: it is read at each call on the session. Raises NEBAssertError
        // while it is null.
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
    // Returns the session of that pair of documents. The first use sets it up while all other callers wait.
    // The CRC-32 of both texts alone identifies a pair: two of equal checksum share the session of the first.
    HandleResource& getHandleResource(char const* cnfgDoc, char const* infoDoc);

private:
    std::map<std::uint32_t, HandleResource*> m_handleResources NEB_GUARDED_BY(m_criticalSection);  // owned
    NEBThreadCriticalSection m_criticalSection;
};

#endif
