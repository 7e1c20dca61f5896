#include "os/OsCounter.h"

#include <sched.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>

namespace
{
using Word = unsigned long;  // what the kernel's sets are made of
static_assert(sizeof(Word) == sizeof(DWORD_PTR), "the first word of a set is its mask");

std::size_t constexpr s_mostWords = 8192 / 64;  // the most processors that a kernel can be built for
std::int64_t constexpr s_ticksPerSecond = 1000000000;
DWORD_PTR constexpr s_allOnes = ~DWORD_PTR{0};

// Words that a set of this machine takes. The kernel refuses to fill less, so the first reading finds it out.
std::atomic<std::size_t> s_knownWords{1};

struct ProcessorSet
{
    Word m_words[s_mostWords];
    std::size_t m_count;  // words in use; 0 for no set at all
};

// What the calling thread was handed out and not yet brought back.
struct ThreadState
{
    DWORD_PTR m_handedOut;  // undoes the last call; 0 when there is nothing to undo
    DWORD_PTR m_given;      // what the last call set
    ProcessorSet m_all;     // what all ones stood for when they were last handed out
};

thread_local ThreadState s_state;

bool readSet(pid_t task, ProcessorSet& set)
{
    for (set.m_count = s_knownWords; set.m_count <= s_mostWords; set.m_count *= 2)
    {
        auto* const words = reinterpret_cast<cpu_set_t*>(set.m_words);
        if (sched_getaffinity(task, set.m_count * sizeof(Word), words) == 0)
        {
            if (set.m_count != s_knownWords)
                s_knownWords = set.m_count;
            return true;
        }
        if (errno != EINVAL)
            return false;
    }
    return false;
}

bool applyWords(Word const* words, std::size_t count)
{
    return sched_setaffinity(0, count * sizeof(Word), reinterpret_cast<cpu_set_t const*>(words)) == 0;
}

bool applyMask(DWORD_PTR mask)
{
    ProcessorSet const& all = s_state.m_all;
    return mask == s_allOnes && all.m_count != 0 ? applyWords(all.m_words, all.m_count)
                                                 : applyWords(&mask, 1);
}

DWORD_PTR toMask(ProcessorSet const& set)
{
    Word const* const end = set.m_words + set.m_count;
    bool const isWide = std::any_of(set.m_words + 1, end, [](Word word) { return word != 0; });
    return isWide ? s_allOnes : set.m_words[0];
}

// The mask that the last call handed out has come back.
DWORD_PTR undo(ThreadState& state)
{
    if (state.m_given != state.m_handedOut && !applyMask(state.m_handedOut))
        return 0;
    state.m_handedOut = 0;
    return state.m_given;
}
}  // namespace

HANDLE GetCurrentProcess()
{
    return reinterpret_cast<HANDLE>(std::intptr_t{-1});
}

HANDLE GetCurrentThread()
{
    return reinterpret_cast<HANDLE>(std::intptr_t{-2});
}

BOOL GetProcessAffinityMask(HANDLE process, DWORD_PTR* processMask, DWORD_PTR* systemMask)
{
    ProcessorSet set;
    if (process != GetCurrentProcess() || !readSet(getpid(), set))
        return 0;
    *processMask = *systemMask = set.m_words[0];
    return 1;
}

DWORD_PTR SetThreadAffinityMask(HANDLE thread, DWORD_PTR mask)
{
    if (mask == 0 || thread != GetCurrentThread())
        return 0;
    ThreadState& state = s_state;
    if (mask == state.m_handedOut)
        return undo(state);

    ProcessorSet former;
    if (!readSet(0, former))
        return 0;
    DWORD_PTR const formerMask = toMask(former);
    if (mask != formerMask && !applyMask(mask))
        return 0;

    if (formerMask == s_allOnes)
        state.m_all = former;
    state.m_handedOut = formerMask;
    state.m_given = mask;
    return formerMask;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency)
{
    frequency->QuadPart = s_ticksPerSecond;
    return 1;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* counter)
{
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0)
        return 0;
    counter->QuadPart = now.tv_sec * s_ticksPerSecond + now.tv_nsec;
    return 1;
}
