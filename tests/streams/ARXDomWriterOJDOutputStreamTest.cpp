#include "streams/ARXDomWriterOJDOutputStream.h"

#include "streams/StreamTools.h"

TEST(ARXDomWriterOJDOutputStream, PassesEveryCallOnAndFlushesAtTheEnd)
{
    RecordingOutputStream target;
    target.m_accepts = 3;
    target.m_refuses = 1;
    {
        ARXDomWriterOJDOutputStream writer(target);
        writer.write("abc", 2);
        writer.write("", 0);
        writer.endline();
        EXPECT_THROW(writer.endline(), std::runtime_error);
    }
    EXPECT_EQ((Lines{"ab", "", "\n", "flush"}), target.m_calls);
}

TEST(ARXDomWriterOJDOutputStream, LosesWhatTheLastFlushRaises)
{
    RecordingOutputStream target;
    target.m_refuses = 1;
    ARXDomWriterOJDOutputStream writer(target);
}
