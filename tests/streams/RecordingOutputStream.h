// A target that notes what it is told, and refuses as often as it is asked to.

#ifndef ARXIUM_TESTS_STREAMS_RECORDINGOUTPUTSTREAM_H
#define ARXIUM_TESTS_STREAMS_RECORDINGOUTPUTSTREAM_H

#include <stdexcept>
#include <string>
#include <vector>

#include "OJDStreamsDLL/OJDOutputStream.h"

struct RecordingOutputStream : OJDOutputStream
{
    void write(char const* data, std::size_t size) override
    {
        note("write");
        m_writes.emplace_back(data, size);
    }
    void flush() override { note("flush"); }
    void close() override { note("close"); }

    void note(char const* call)
    {
        m_calls.emplace_back(call);
        if (m_accepts > 0)
            --m_accepts;
        else if (m_refuses > 0 && m_refuses--)
            throw std::runtime_error(call);
    }
    std::string text() const
    {
        std::string all;
        for (std::string const& write : m_writes)
            all += write;
        return all;
    }

    std::vector<std::string> m_calls;
    std::vector<std::string> m_writes;
    int m_accepts = 0;  // calls before the first refusal
    int m_refuses = 0;
};

#endif
