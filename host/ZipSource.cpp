#include "host/ZipSource.h"

#include <filesystem>

#include "NEBCore/NEBFmDir.h"
#include "host/Failure.h"

namespace
{
void collect(ZipSource& source, std::string const& directory, std::string const& archive)
{
    std::vector<std::string> files;
    std::vector<std::string> directories;
    if (!NEBFmDir::readDir(directory.c_str(), &files, nullptr, &directories, nullptr))
        systemFailed(NEB_HERE, directory);

    for (std::string const& name : files)
    {
        std::string path = directory;
        NEBFmDir::joinPath(path, name);
        if (path.find(archive) == std::string::npos)
            source.m_sizes.push_back(std::filesystem::file_size(path));
        else if (path != archive)
            source.m_leftOut.push_back(path);
    }
    for (std::string const& name : directories)
    {
        std::string path = directory;
        NEBFmDir::joinPath(path, name);
        collect(source, path, archive);
    }
}
}  // namespace

ZipSource::ZipSource(std::string const& directory, std::string const& archive)
{
    collect(*this, directory, archive);
}
