#include "zip/ZipTools.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include <gtest/gtest.h>

#include "NEBCore/NEBException.h"
#include "zip/ARXZipFile.h"

namespace fs = std::filesystem;

std::string readAll(std::string const& path)
{
    if (fs::is_directory(path))
        return {};
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeAll(std::string const& path, std::string const& bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

Tree readTree(std::string const& folder)
{
    Tree tree;
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(folder))
    {
        std::string const name = entry.path().lexically_relative(folder).string();
        if (entry.is_directory())
            tree[name + "/"];
        else
            tree[name] = readAll(entry.path().string());
    }
    return tree;
}

void writeTree(std::string const& folder, Tree const& tree)
{
    for (auto const& [name, bytes] : tree)
    {
        fs::create_directories(fs::path(folder + "/" + name).parent_path());
        if (name.back() != '/')
            writeAll(folder + "/" + name, bytes);
    }
}

std::string noise(std::size_t size)
{
    std::string bytes(size, '\0');
    std::mt19937 generator(1);
    for (char& byte : bytes)
        byte = static_cast<char>(generator());
    return bytes;
}

int run(std::string const& folder, std::string const& command)
{
    return std::system(("cd '" + folder + "' && (" + command + ") </dev/null >/dev/null 2>&1").c_str());
}

void makeArchive(std::string const& path, std::vector<std::string> const& names)
{
    ARXZipFile archive;
    archive.create(path.c_str());
    for (std::string name : names)
    {
        archive.openNewFileInZip(name.c_str(), nullptr, nullptr, ARXZipFile::compressStored, 0);
        archive.writeInFileInZip(reinterpret_cast<unsigned char*>(name.data()),
                                 static_cast<unsigned int>(name.size()));
    }
}

void patchDirectory(std::string const& archive, std::size_t offset, std::string const& bytes)
{
    std::string content = readAll(archive);
    content.replace(content.find("PK\1\2") + offset, bytes.size(), bytes);
    writeAll(archive, content);
}

Tree readStream(ARXZipInputStreamI& stream)
{
    Tree tree;
    for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry())
    {
        std::string name;
        EXPECT_TRUE(stream.getCurrentEntryName(name));
        if (!stream.openCurrentEntry())
            continue;
        std::string& bytes = tree[name] = {};  // of entries with one name the last counts
        char buffer[1000];
        for (std::size_t count; (count = stream.read(buffer, sizeof buffer)) != OJDInputStream::s_end;)
            bytes.append(buffer, count);
    }
    return tree;
}

Failure failureOf(std::function<void()> const& call)
{
    try
    {
        call();
    }
    catch (NEBThrowable& error)
    {
        auto const places = error.getBackTrace();
        char const* const operation = places.at(0)->getText();
        return {error.getThrowableName(), error.getMessage(), operation ? operation : "", places.size()};
    }
    return {};
}
