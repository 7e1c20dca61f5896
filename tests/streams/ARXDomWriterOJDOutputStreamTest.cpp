#include "streams/ARXDomWriterOJDOutputStream.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "OJDStreamsDLL/OJDFileOutputStream.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"
#include "streams/StreamTools.h"
#include "support/Raised.h"
#include "support/TemporaryFolder.h"

TEST(ARXDomWriterOJDOutputStream, PassesEveryCallOnAndFlushesAtTheEnd)
{
    RecordingOutputStream target;
    target.m_accepts = 3;
    target.m_refuses = 2;
    {
        ARXDomWriterOJDOutputStream writer(target);
        writer.write("abc", 2);
        writer.write("", 0);
        writer.endline();
        EXPECT_THROW(writer.endline(), std::runtime_error);
        EXPECT_STREQ("UTF-8", writer.getOutputEncoding());
    }
    EXPECT_EQ((Lines{"ab", "", "\n"}), target.m_writes);
    EXPECT_EQ((Lines{"write", "write", "write", "write", "flush"}), target.m_calls);
}

TEST(ARXDomWriterOJDOutputStream, ADocumentReachesAFilePlainAndEncoded)
{
    // Lets pugixml save a document as the DOM library would.
    struct SavingWriter : pugi::xml_writer
    {
        explicit SavingWriter(OJDOutputStream& target) : m_adapter(target) {}
        void write(void const* data, std::size_t size) override
        {
            m_writer.write(static_cast<char const*>(data), static_cast<int>(size));
        }
        ARXDomWriterOJDOutputStream m_adapter;
        DomWriter& m_writer = m_adapter;
    };
    TemporaryFolder const folder;
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string("<r a=\"1\">\xC3\xA9 \n</r>", pugi::parse_full));
    OJDFileOutputStream plain((folder / "plain").c_str(), 0), encoded((folder / "encoded").c_str(), 0);
    {
        ARXOJDQuotedPrintableOutputStream filter(encoded, false);
        for (OJDOutputStream* target : std::initializer_list<OJDOutputStream*>{&plain, &filter})
        {
            SavingWriter writer(*target);
            document.save(writer, "", pugi::format_raw | pugi::format_no_declaration);
            writer.m_writer.endline();
        }
    }
    EXPECT_EQ("<r a=\"1\">\xC3\xA9 \n</r>\n", contents(folder / "plain"));  // flushed by the adapter
    encoded.close();
    EXPECT_EQ("<r a=3D\"1\">=C3=A9=20\r\n</r>\r\n", contents(folder / "encoded"));
}
