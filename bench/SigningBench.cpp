// One signed URL, by one thread and by two, beside its two digests alone.

#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include "url/ARXUriDispatchHelper.h"

namespace
{
std::string const& fileName()
{
    static std::string const s_name = "report-2007-03.pdf";
    return s_name;
}
char constexpr s_sessionID[] = "c2Vzc2lvbi1pZC0wMTIzNDU2Nzg5YWJjZGVm";

void ours(benchmark::State& state)
{
    std::string const path = "/data/reports/" + fileName();
    std::string url;
    for (auto _ : state)
    {
        ARXUriDispatchHelper::genGatewayUrlForFile(path, url, s_sessionID, true);
        benchmark::DoNotOptimize(url.data());
    }
    state.SetItemsProcessed(state.iterations());
}

using MacContext = std::unique_ptr<EVP_MAC_CTX, decltype(&EVP_MAC_CTX_free)>;

MacContext makeKeyedContext()
{
    std::unique_ptr<EVP_MAC, decltype(&EVP_MAC_free)> const mac(EVP_MAC_fetch(nullptr, "HMAC", nullptr),
                                                                EVP_MAC_free);
    MacContext context(EVP_MAC_CTX_new(mac.get()), EVP_MAC_CTX_free);
    unsigned char const key[32] = {1};
    char digest[] = "SHA2-256";
    OSSL_PARAM const parameters[] = {OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, digest, 0),
                                     OSSL_PARAM_construct_end()};
    EVP_MAC_init(context.get(), key, sizeof key, parameters);
    return context;
}

// The two digests alone.
void limitReinit(benchmark::State& state)
{
    MacContext const context = makeKeyedContext();
    std::string const texts[] = {fileName(), fileName() + s_sessionID};
    unsigned char digest[32];
    std::size_t size;
    for (auto _ : state)
        for (std::string const& text : texts)
        {
            EVP_MAC_init(context.get(), nullptr, 0, nullptr);
            EVP_MAC_update(context.get(), reinterpret_cast<unsigned char const*>(text.data()), text.size());
            EVP_MAC_final(context.get(), digest, &size, sizeof digest);
            benchmark::DoNotOptimize(digest);
        }
    state.SetItemsProcessed(state.iterations());
}

void oneAndTwo(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ThreadRange(1, 2)->UseRealTime();
}

BENCHMARK(ours)->Name("SignedUrl/ours");
BENCHMARK(limitReinit)->Name("SignedUrl/limit-reinit");
BENCHMARK(ours)->Name("SignedUrlThreads/ours")->Apply(oneAndTwo);
BENCHMARK(limitReinit)->Name("SignedUrlThreads/limit-reinit")->Apply(oneAndTwo);
}  // namespace
