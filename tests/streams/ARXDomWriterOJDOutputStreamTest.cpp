#include "streams/ARXDomWriterOJDOutputStream.h"

#include <pugixml.hpp>

#include "streams/ARXOJDQuotedPrintableOutputStream.h"
#include "streams/StreamTools.h"

TEST(ARXDomWriterOJDOutputStream, PassesEveryCallOnAndFlushesAtTheEnd)
{
    RecordingOutputStream target;
    target.m_accepts = 3, target.m_refuses = 1;
    {
        ARXDomWriterOJDOutputStream writer(target);
        writer.write("abc", 2), writer.write("", 0), writer.endline();
        EXPECT_THROW(writer.endline(), std::runtime_error);
    }
    EXPECT_EQ((Lines{"ab", "", "\n", "flush"}), target.m_calls);
    target.m_refuses = 1;
    ARXDomWriterOJDOutputStream unflushed(target);
}

// pugixml saves a document as the DOM library would.
TEST(ARXDomWriterOJDOutputStream, ADocumentReachesAFileThroughTheFilter)
{
    struct SavingWriter : pugi::xml_writer
    {
        explicit SavingWriter(OJDOutputStream& target) : m_writer(target) {}
        void write(void const* data, std::size_t size) override
        {
            m_writer.write(static_cast<char const*>(data), static_cast<int>(size));
        }
        ARXDomWriterOJDOutputStream m_writer;
    };
    TemporaryFolder const folder;
    OJDFileOutputStream file((folder / "file").c_str(), 0);
    pugi::xml_document document;
    document.load_string("<r a=\"1\">\xC3\xA9 \n</r>", pugi::parse_full);
    {
        ARXOJDQuotedPrintableOutputStream filter(file, false);
        SavingWriter writer(filter);
        document.save(writer, "", pugi::format_raw | pugi::format_no_declaration);
    }
    file.close();
    EXPECT_EQ("<r a=3D\"1\">=C3=A9=20\r\n</r>", readAll(folder / "file"));
}
