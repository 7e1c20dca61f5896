#include "KRY_Crypto_Interface/KRYTemporaryFile.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <openssl/rand.h>
#include <unistd.h>

#include "KRY_Crypto_Interface/KRYError.h"

namespace
{
std::string randomName()
{
    std::uint64_t number = 0;
    requireCrypto(RAND_bytes(reinterpret_cast<unsigned char*>(&number), sizeof number) == 1, "RAND_bytes");
    std::array<char, 32> name;
    std::snprintf(name.data(), name.size(), ".kry-%016llx", static_cast<unsigned long long>(number));
    return name.data();
}
}  // namespace

KRYTemporaryFile::KRYTemporaryFile(KRYFile& directory, std::string name, mode_t mode)
    : m_directory(directory),
      m_name(std::move(name)),
      m_temporaryName(randomName()),
      m_file("temporary file of " + m_name, directory.getDescriptor(), m_temporaryName.c_str(),
             O_WRONLY | O_CREAT | O_EXCL, mode)
{
}

KRYTemporaryFile::~KRYTemporaryFile()
{
    int const directory = m_directory.getDescriptor();
    if (!m_temporaryName.empty())
        retryInterrupted([&] { return ::unlinkat(directory, m_temporaryName.c_str(), 0); });
}

void KRYTemporaryFile::replace()
{
    int const directory = m_directory.getDescriptor();
    complete();
    if (retryInterrupted(
            [&] { return ::renameat(directory, m_temporaryName.c_str(), directory, m_name.c_str()); }) == -1)
        m_file.fail("can't take its name");
    m_temporaryName.clear();
    m_directory.sync();
}

void KRYTemporaryFile::offer()
{
    int const directory = m_directory.getDescriptor();
    complete();
    if (retryInterrupted(
            [&]
            { return ::linkat(directory, m_temporaryName.c_str(), directory, m_name.c_str(), 0); }) == -1 &&
        errno != EEXIST)
        m_file.fail("can't take its name");
    m_directory.sync();
}

void KRYTemporaryFile::complete()
{
    m_file.sync();
    m_file.close();
}
