// What the zip tests share: whole trees and archives made in code.

#ifndef ARXIUM_TESTS_ZIP_ZIPTOOLS_H
#define ARXIUM_TESTS_ZIP_ZIPTOOLS_H

#include <cstdlib>
#include <map>
#include <vector>

#include <gmock/gmock.h>

#include "NEBCore/I18NString.h"
#include "support/Raised.h"
#include "support/Rows.h"
#include "support/TemporaryFolder.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipFile.h"
#include "zip/ARXZipInputStream.h"

// Path and contents; a folder's path ends in "/".
using Tree = std::map<std::string, std::string>;
using Names = std::vector<std::string>;
using Patches = std::map<std::size_t, std::string>;  // by offset

// A fresh current folder.
struct ZipTest : testing::Test
{
    TemporaryFolder m_folder;
    CurrentFolder m_current{m_folder.path()};
};

inline Tree readTree(std::string const& folder)
{
    Tree tree;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder))
        tree[entry.path().lexically_relative(folder).string() + (entry.is_directory() ? "/" : "")] =
            readAll(entry.path());
    return tree;
}

inline void writeTree(Tree const& tree, std::filesystem::path const& folder = ".")
{
    for (auto const& [name, bytes] : tree)
    {
        std::filesystem::create_directories((folder / name).parent_path());
        if (name.back() != '/')
            std::ofstream(folder / name, std::ios::binary) << bytes;
    }
}

// Runs a shell command quietly.
inline bool run(std::string const& command)
{
    return std::system(("(" + command + ") </dev/null >/dev/null 2>&1").c_str()) == 0;
}

inline void write(ARXZipFile& archive, std::string bytes)
{
    archive.writeInFileInZip(reinterpret_cast<unsigned char*>(bytes.data()),
                             static_cast<unsigned>(bytes.size()));
}

// Makes out.zip of stored entries without a date, each holding its own name. A patch replaces bytes of the
// first entry's record in the directory, and the same bytes of the header before its contents.
inline void makeArchive(Names const& names, Patches const& patches = {}, I18NString const* comment = nullptr)
{
    ARXZipFile archive;
    archive.create("out.zip");
    for (std::string const& name : names)
    {
        archive.openNewFileInZip(name.c_str(), nullptr, comment, ARXZipFile::compressStored, 0);
        write(archive, name);
    }
    archive.close();
    std::string bytes = readAll("out.zip");
    for (auto const& [offset, patch] : patches)
    {
        bytes.replace(bytes.find("PK\1\2") + offset, patch.size(), patch);
        if (6 <= offset && offset < 32)
            bytes.replace(offset - 2, patch.size(), patch);
    }
    writeTree({{"out.zip", bytes}});
}

// Name and contents of every file that opens.
inline Tree readStream(ARXZipInputStream&& stream)
{
    Tree tree;
    std::string name;
    for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry())
    {
        if (!stream.getCurrentEntryName(name) || !stream.openCurrentEntry() || name.back() == '/')
            continue;
        std::string& bytes = tree[name];
        char buffer[1000];
        for (std::size_t count; (count = stream.read(buffer, sizeof buffer)) != OJDInputStream::s_end;)
            bytes.append(buffer, count);
    }
    return tree;
}

#endif
