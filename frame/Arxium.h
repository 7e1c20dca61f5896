// Start and stop of the library.
//
// A host calls initialize before any work with crypto handles and terminate behind all of it: every handle is
// destroyed before the last stop, and no handle work overlaps the first start or the last stop. Calls are
// counted, at most 32767 open starts, and may come from any thread; they run one at a time.

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

    // The first start installs the maker of crypto handles and, if full, brings up the text services and the
    // crypto interface before it; later starts only count, whatever full says. A start that fails raises
    // NEBThrowable and does not count; the services that it had brought up stay up.
    static void initialize(bool full);

    // Undoes one start. The last stop closes all shared crypto sessions and brings down what the first start
    // brought up. Without a start before it NEBAssertError is raised and nothing changes.
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
