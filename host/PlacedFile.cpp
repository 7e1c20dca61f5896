#include "host/PlacedFile.h"

#include <cstdio>
#include <filesystem>
#include <utility>

#include <unistd.h>

#include "host/Failure.h"

PlacedFile::PlacedFile(std::string target)
    : m_target(std::move(target)), m_path(m_target + "." + std::to_string(getpid()) + ".part")
{
    std::error_code error;
    if (std::filesystem::exists(m_target, error) && !std::filesystem::is_regular_file(m_target, error))
        failed(NEB_HERE, m_target + ": exists and is no regular file");
}

PlacedFile::~PlacedFile()
{
    if (!m_path.empty())
        std::remove(m_path.c_str());
}

void PlacedFile::place()
{
    if (std::rename(m_path.c_str(), m_target.c_str()) != 0)
        systemFailed(NEB_HERE, m_target);
    m_path.clear();
}
