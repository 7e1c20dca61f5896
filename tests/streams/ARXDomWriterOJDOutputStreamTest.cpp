#include "streams/ARXDomWriterOJDOutputStream.h"

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "OJDStreamsDLL/OJDFileOutputStream.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"
#include "streams/RecordingOutputStream.h"
#include "support/TemporaryFolder.h"

namespace
{
// Lets pugixml save a document through a DomWriter, as the DOM library would.
struct SavingWriter : pugi::xml_writer
{
    explicit SavingWriter(DomWriter& writer) : m_writer(writer) {}
    void write(void const* data, std::size_t size) override
    {
        m_writer.write(static_cast<char const*>(data), static_cast<int>(size));
    }

    DomWriter& m_writer;
};

void save(pugi::xml_document const& document, OJDOutputStream& target)
{
    ARXDomWriterOJDOutputStream writer(target);
    SavingWriter saving(writer);
    document.save(saving, "", pugi::format_raw | pugi::format_no_declaration);
    writer.endline();
}

std::string contents(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
}  // namespace

TEST(ARXDomWriterOJDOutputStream, PassesEveryCallOnAndFlushesAtTheEnd)
{
    RecordingOutputStream target;
    target.m_accepts = 4;
    target.m_refuses = 2;
    {
        ARXDomWriterOJDOutputStream writer(target);
        writer.write("abc", 2);
        writer.write("", 0);
        writer.endline();
        writer.write("\r\n", 2);
        EXPECT_THROW(writer.endline(), std::runtime_error);
        EXPECT_STREQ("UTF-8", writer.getOutputEncoding());
    }
    EXPECT_EQ((std::vector<std::string>{"ab", "", "\n", "\r\n"}), target.m_writes);
    EXPECT_EQ((std::vector<std::string>{"write", "write", "write", "write", "write", "flush"}),
              target.m_calls);
}

TEST(ARXDomWriterOJDOutputStream, ADocumentReachesAFilePlainAndEncoded)
{
    TemporaryFolder const folder;
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string("<r a=\"1\">\xC3\xA9 \n</r>", pugi::parse_full));
    {
        OJDFileOutputStream plain((folder / "plain").c_str(), 0), encoded((folder / "encoded").c_str(), 0);
        save(document, plain);
        // Flushed by the adapter already, before the file is closed.
        EXPECT_EQ("<r a=\"1\">\xC3\xA9 \n</r>\n", contents(folder / "plain"));
        ARXOJDQuotedPrintableOutputStream filter(encoded, false);
        save(document, filter);
    }
    EXPECT_EQ("<r a=3D\"1\">=C3=A9=20\r\n</r>\r\n", contents(folder / "encoded"));
}
