#include <sstream>

#include "path/ARXFmDir.h"
#include "zip/ZipTools.h"

namespace
{
// Reads all that a stream over memory gives, and sums it up in the words of the index.
std::string describe(std::string const& archive)
{
    std::size_t entries = 0, opened = 0, bytes = 0, count;
    std::string name, failure = "none";
    auto const read = [&]
    {
        ARXZipInputStream stream(archive.data(), archive.size());
        for (bool isEntry = stream.getFirstEntry(); isEntry; isEntry = stream.getNextEntry(), ++entries)
        {
            failure = failureOf([&] { stream.getCurrentEntryName(name); });
            opened += stream.openCurrentEntry();
            for (char buffer[5000]; (count = stream.read(buffer, sizeof buffer)) != OJDInputStream::s_end;)
                bytes += count;
        }
    };
    if (failureOf(read) != "none")
        return "null";
    return std::to_string(entries) + " entries, " + std::to_string(opened) + " opened, " +
           std::to_string(bytes) + " bytes" + (failure == "none" ? "" : ", name assertion");
}

// row: the cells of the index. Column 7 tells what is odd, 12 what memory gives, 13 the outcome of
// extraction.
void expectRow(std::string const& path, std::vector<std::string> const& row)
{
    TemporaryFolder const folder;
    std::string const inner = "a/b/c/", target = folder / inner;
    bool const isExtracted = ARXUnzipFile::unzip(path.c_str(), target.c_str(), false);
    EXPECT_EQ(row.at(13) == "extract ok", isExtracted);
    Tree const made = readTree(folder.path());
    for (auto const& [name, bytes] : made)
        EXPECT_TRUE(inner.rfind(name, 0) == 0 || name.rfind(inner, 0) == 0) << name;
    EXPECT_TRUE(row.at(13) != "partial" || made.size() > 3);
    for (auto const& [name, bytes] : isExtracted ? readStream(ARXZipInputStream(path.c_str())) : Tree())
    {
        std::string file = target + name;
        ARXFmDir::normalizePathSeparator(file);
        EXPECT_TRUE(bytes == readAll(file)) << file;
    }
    // Memory reads as in the index, but for what can't be read: there minizip hands out raw bytes.
    bool const isUnreadable = row.at(13) == "refuse or partial" || row.at(7).rfind("encrypted entry", 0) == 0;
    EXPECT_EQ(!isUnreadable, row.at(12) == describe(readAll(path)));
}

TEST(ZipCorpus, EveryArchiveGivesWhatTheIndexExpects)
{
    std::string const corpus = ARXIUM_ZIP_CORPUS;
    std::ifstream index(corpus + "/INDEX.tsv");
    std::string line, cell;
    if (!std::getline(index, line))
        GTEST_SKIP() << "no corpus at " << corpus;
    while (std::getline(index, line))
    {
        std::istringstream cells(line);
        std::vector<std::string> row;
        while (std::getline(cells, cell, '\t'))
            row.push_back(cell);
        SCOPED_TRACE(row.at(0));
        expectRow(corpus + "/" + row.at(0), row);
    }
}
}  // namespace
