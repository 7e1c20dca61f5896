// An encrypted file of 64 MiB, written in pieces of one size, on a file system in memory.

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include "bench/BenchInput.h"
#include "streams/ARXOJDSecureFileOutputStream.h"

namespace
{
std::size_t constexpr s_fileSize = 64 << 20;
std::size_t constexpr s_segmentSize = 64 << 10;

// Large enough to leave the caches of one processor, small enough to stay out of the comparison.
std::string const& input()
{
    static std::string const s_input = makeText(binaryText, 1 << 20);
    return s_input;
}

char const* inputAt(std::size_t offset)
{
    return input().data() + offset % input().size();
}

void ours(benchmark::State& state)
{
    auto const piece = static_cast<std::size_t>(state.range(0));
    std::string const path = scratchFolder() + "/encrypted";
    for (auto _ : state)
    {
        ARXOJDSecureFileOutputStream stream;
        stream.setSecureType(ARXOJDSecureFileOutputStream::secureTypeEncrypted);
        stream.open(path.c_str());
        for (std::size_t at = 0; at < s_fileSize; at += piece)
            stream.write(inputAt(at), piece);
        stream.close();
    }
    ::unlink(path.c_str());
}

void sealSegment(EVP_CIPHER_CTX* context, char const* data, std::vector<unsigned char>& target)
{
    unsigned char const nonce[12] = {1};
    int size;
    EVP_EncryptInit_ex(context, nullptr, nullptr, nullptr, nonce);
    EVP_EncryptUpdate(context, target.data(), &size, reinterpret_cast<unsigned char const*>(data),
                      static_cast<int>(s_segmentSize));
    EVP_EncryptFinal_ex(context, target.data() + s_segmentSize, &size);
    EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_GET_TAG, 16, target.data() + s_segmentSize);
}

// AES-256-GCM in memory and plain writes of what it gives, for any size of piece. The file replaces the one
// before, as ours does.
void limitGcm(benchmark::State& state)
{
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> const context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    unsigned char const key[32] = {1};
    EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key, nullptr);
    std::vector<unsigned char> sealed(s_segmentSize + 16);
    std::string const path = scratchFolder() + "/sealed";
    for (auto _ : state)
    {
        int const file = ::open((path + "-new").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        for (std::size_t at = 0; at < s_fileSize; at += s_segmentSize)
        {
            sealSegment(context.get(), inputAt(at), sealed);
            if (::write(file, sealed.data(), sealed.size()) != static_cast<ssize_t>(sealed.size()))
                state.SkipWithError("write failed");
        }
        ::close(file);
        std::rename((path + "-new").c_str(), path.c_str());
    }
    ::unlink(path.c_str());
}

void pieces(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("piece")->Arg(64)->Arg(64 << 10)->Unit(benchmark::kMillisecond);
}

BENCHMARK(ours)->Name("EncryptedFile/ours")->Apply(pieces);
BENCHMARK(limitGcm)->Name("EncryptedFile/limit-gcm-and-write")->Apply(pieces);
}  // namespace
