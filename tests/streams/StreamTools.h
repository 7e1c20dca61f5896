// What the stream tests share.

#ifndef ARXIUM_TESTS_STREAMS_STREAMTOOLS_H
#define ARXIUM_TESTS_STREAMS_STREAMTOOLS_H

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "OJDStreamsDLL/OJDOutputStream.h"

// A target that notes what it is told, and refuses as often as it is asked to.
struct RecordingOutputStream : OJDOutputStream
{
    void write(char const* data, std::size_t size) override
    {
        note("write");
        m_writes.emplace_back(data, size);
        m_text += m_writes.back();
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

    std::vector<std::string> m_calls, m_writes;
    std::string m_text;
    int m_accepts = 0;  // calls before the first refusal
    int m_refuses = 0;
};

inline std::string contents(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

#endif
