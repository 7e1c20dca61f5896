// A handle on a session that is open already, taken and given back, while a number of sessions are open.

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include <benchmark/benchmark.h>

#include <libdeflate.h>

#include "crypto/ARXKRYHandleFactory.h"

namespace
{
char constexpr s_infoDocument[] =
    "<setInfoDocument><action>CSKHMAC</action><dataLocation>memory</dataLocation></setInfoDocument>";

std::string sessionDocument(std::int64_t number)
{
    return "<sessionConfigDocument><serviceID>BENCH" + std::to_string(number) +
           "</serviceID></sessionConfigDocument>";
}

void ours(benchmark::State& state)
{
    for (std::int64_t number = 1; number <= state.range(0); ++number)
        ARXKRYHandleFactory::destroyHandle(
            ARXKRYHandleFactory::createHandle(sessionDocument(number).c_str(), s_infoDocument));
    std::string const document = sessionDocument(1);
    for (auto _ : state)
    {
        auto* const handle = ARXKRYHandleFactory::createHandle(document.c_str(), s_infoDocument);
        benchmark::DoNotOptimize(handle);
        ARXKRYHandleFactory::destroyHandle(handle);
    }
}

struct Handle
{
    virtual ~Handle() = default;
    int* m_session;
    void* m_lock;
};

std::uint32_t keyOf(std::string const& first, std::string const& second)
{
    return libdeflate_crc32(libdeflate_crc32(0, first.data(), first.size()), second.data(), second.size());
}

// A fast checksum, a lock, a map and a small object, sizes known beforehand.
void limitMap(benchmark::State& state)
{
    static std::mutex s_lock;
    std::map<std::uint32_t, int> sessions;
    std::string const info = s_infoDocument;
    for (std::int64_t number = 1; number <= state.range(0); ++number)
        sessions[keyOf(sessionDocument(number), info)] = 0;
    std::string const document = sessionDocument(1);
    for (auto _ : state)
    {
        std::uint32_t const key = keyOf(document, info);
        auto* const handle = new Handle;
        {
            std::lock_guard<std::mutex> const guard(s_lock);
            handle->m_session = &sessions.find(key)->second;
        }
        benchmark::DoNotOptimize(handle);
        delete handle;
    }
}

BENCHMARK(ours)->Name("Session/ours")->ArgName("sessions")->Arg(1)->Arg(1000);
BENCHMARK(limitMap)->Name("Session/limit-map")->ArgName("sessions")->Arg(1)->Arg(1000);
}  // namespace
