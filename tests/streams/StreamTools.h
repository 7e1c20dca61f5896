// What the stream tests share.

#ifndef ARXIUM_TESTS_STREAMS_STREAMTOOLS_H
#define ARXIUM_TESTS_STREAMS_STREAMTOOLS_H

#include <algorithm>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

#include "OJDStreamsDLL/OJDFileOutputStream.h"
#include "support/Raised.h"
#include "support/TemporaryFolder.h"

// A target that notes what it is told, and refuses as often as it is asked to.
struct RecordingOutputStream : OJDOutputStream
{
    void write(char const* data, std::size_t size) override { note({data, size}); }
    void flush() override { note("flush"); }
    void close() override { note("close"); }

    void note(std::string const& call)
    {
        if (m_accepts > 0)
            --m_accepts;
        else if (m_refuses > 0 && m_refuses--)
            throw std::runtime_error("refused");
        m_calls.push_back(call);
    }

    Lines m_calls;                     // those that were not refused: the bytes of a write, or the name
    int m_accepts = 0, m_refuses = 0;  // calls before the first refusal, and refusals
};

#endif
