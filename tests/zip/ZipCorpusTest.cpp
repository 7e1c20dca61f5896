#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>

#include "NEBCore/NEBAssertError.h"
#include "path/ARXFmDir.h"
#include "support/TemporaryFolder.h"
#include "zip/ARXUnzipFile.h"
#include "zip/ARXZipInputStream.h"
#include "zip/ZipTools.h"

namespace
{
std::string const s_corpus = ARXIUM_ZIP_CORPUS;

struct OddArchive
{
    std::string m_file;
    std::string m_odd;
    std::string m_throughStream;
    std::string m_expected;
};

std::vector<OddArchive> readIndex()
{
    std::vector<OddArchive> archives;
    std::ifstream index(s_corpus + "/INDEX.tsv");
    std::string line;
    for (std::getline(index, line); std::getline(index, line);)
    {
        std::istringstream cells(line);
        std::vector<std::string> row;
        for (std::string cell; std::getline(cells, cell, '\t');)
            row.push_back(cell);
        archives.push_back({row.at(0), row.at(7), row.at(12), row.at(13)});
    }
    return archives;
}

// Reads all that a stream gives, and sums it up in the words of the index.
std::string describe(ARXZipInputStream& stream)
{
    std::size_t entries = 0;
    std::size_t opened = 0;
    std::size_t bytes = 0;
    bool isNameTooLong = false;
    for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry())
    {
        ++entries;
        std::string name;
        isNameTooLong |= !failureOf([&] { stream.getCurrentEntryName(name); }).m_text.empty();
        opened += stream.openCurrentEntry();
        char buffer[5000];
        for (std::size_t count; (count = stream.read(buffer, sizeof buffer)) != OJDInputStream::s_end;)
            bytes += count;
    }
    return std::to_string(entries) + " entries, " + std::to_string(opened) + " opened, " +
           std::to_string(bytes) + " bytes" + (isNameTooLong ? ", name assertion" : "");
}

std::string describe(std::string const& path, bool inMemory)
{
    std::string const bytes = readAll(path);
    std::string result = "null";
    Failure const failure = failureOf(
        [&]
        {
            auto const stream = inMemory ? std::make_unique<ARXZipInputStream>(bytes.data(), bytes.size())
                                         : std::make_unique<ARXZipInputStream>(path.c_str());
            result = describe(*stream);
        });
    EXPECT_TRUE(result != "null" || failure.m_name == "NEBAssertError");
    return result;
}

// Extractor and stream must agree on every byte.
void expectSameContents(std::string const& path, std::string const& target)
{
    ARXZipInputStream stream(path.c_str());
    for (auto const& [name, bytes] : readStream(stream))
    {
        std::string file = target + "/" + name;
        ARXFmDir::normalizePathSeparator(file);
        EXPECT_EQ(bytes, readAll(file)) << file;
    }
}

TEST(ZipCorpus, EveryArchiveGivesWhatTheIndexExpects)
{
    if (!std::filesystem::exists(s_corpus))
        GTEST_SKIP() << "no corpus at " << s_corpus;
    std::vector<OddArchive> const archives = readIndex();
    EXPECT_GT(archives.size(), 1000u);
    for (OddArchive const& archive : archives)
    {
        SCOPED_TRACE(archive.m_file);
        TemporaryFolder const folder;
        std::string const target = folder / "a/b/c";
        std::string const path = s_corpus + "/" + archive.m_file;

        bool const isExtracted = ARXUnzipFile::unzip(path.c_str(), target.c_str(), false);
        EXPECT_EQ(archive.m_expected == "extract ok", isExtracted);
        Tree const made = readTree(folder.path());
        for (auto const& [name, bytes] : made)
            EXPECT_TRUE(name == "a/" || name == "a/b/" || name.rfind("a/b/c/", 0) == 0) << name;
        EXPECT_TRUE(archive.m_expected != "partial" || made.size() > 3);
        if (isExtracted)
            expectSameContents(path, target);

        // Memory reads as in the index, but for what can't be read: there minizip hands out raw bytes.
        bool const isUnreadable =
            archive.m_expected == "refuse or partial" || archive.m_odd.rfind("encrypted entry", 0) == 0;
        std::string const throughMemory = describe(path, true);
        EXPECT_EQ(!isUnreadable, archive.m_throughStream == throughMemory) << throughMemory;
        // A file shows more where an entry reaches to the very end, which the seeks of memory don't.
        EXPECT_TRUE(describe(path, false) == throughMemory ||
                    throughMemory == "0 entries, 0 opened, 0 bytes");
    }
}
}  // namespace
