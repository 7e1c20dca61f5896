// Start and stop of the library.
//
// Call initialize before the first use of a crypto handle, and terminate after every handle is destroyed; no
// handle may be used during the first start or the last stop. Calls are counted, up to 32767 open starts. Any
// thread may call; the calls run one at a time.
//
// Example:
//     Arxium::initialize();
//     // ... crypto handles, signed URLs, secure streams ...
//     Arxium::terminate();

#ifndef ARXIUM_FRAME_ARXIUM_H
#define ARXIUM_FRAME_ARXIUM_H

#include <cstdint>

#include "NEBCore/NEBThreadCriticalSection.h"
#include "frame/ArxiumExport.h"

class ARXIUM_API Arxium
{
public:
    Arxium() = delete;

    // A full start, as initialize(true).
    static void initialize();

    // The first start brings up the text services and the crypto interface if full, and then installs the
    // maker of crypto handles; later starts only count, whatever full says. A start that fails raises
    // NEBThrowable and doesn't count; what it brought up stays up.
    static void initialize(bool full);

    // Undoes one start. The last stop closes all shared crypto sessions and brings down what the first start
    // brought up. Without a start raises NEBAssertError and changes nothing.
    static void terminate();

private:
    static void initializeImpl(bool full) NEB_REQUIRES(m_instanceLock);
    static void terminateImpl() NEB_REQUIRES(m_instanceLock);

    static std::int16_t m_initcount NEB_GUARDED_BY(m_instanceLock);
    // Whether the start that took the count from 0 was a full one.
    static bool m_full NEB_GUARDED_BY(m_instanceLock);
    static NEBThreadCriticalSection m_instanceLock;
};

#endif
