#include "streams/ARXDomWriterOJDOutputStream.h"

#include "streams/StreamTools.h"

TEST(ARXDomWriterOJDOutputStream, PassesEveryCallOn)
{
    RecordingOutputStream target;
    {
        ARXDomWriterOJDOutputStream writer(target);
        writer.write("abc", 2);
        writer.write("", 0);
        writer.endline();
    }
    EXPECT_EQ((Lines{"ab", "", "\n", "flush"}), target.m_calls);
}

TEST(ARXDomWriterOJDOutputStream, LosesWhatTheLastFlushRaises)
{
    RecordingOutputStream target;
    target.m_refuses = 1;
    ARXDomWriterOJDOutputStream writer(target);
}
