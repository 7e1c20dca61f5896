// What the fuzz targets share: the claim that something holds, and reading choices from the input.
//
// A target is a source with LLVMFuzzerTestOneInput, which libFuzzer or replay.cpp calls with one input after
// the other. What does not hold aborts, and so does an exception that leaves.

#ifndef ARXIUM_FUZZ_FUZZ_H
#define ARXIUM_FUZZ_FUZZ_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

inline void mustHold(bool holds, char const* claim)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", claim);
    std::abort();
}

// Takes an input apart from its front. After its end come zeros and empty texts.
class FuzzInput
{
public:
    FuzzInput(std::uint8_t const* data, std::size_t size) : m_rest(reinterpret_cast<char const*>(data), size)
    {
    }

    bool empty() const { return m_rest.empty(); }
    unsigned takeByte() { return m_rest.empty() ? 0 : static_cast<std::uint8_t>(takeText(1)[0]); }
    // Three bytes, big endian.
    std::size_t takeNumber()
    {
        std::size_t const high = takeByte();
        std::size_t const middle = takeByte();
        return high << 16 | middle << 8 | takeByte();
    }
    // size bytes, or as many as are left.
    std::string takeText(std::size_t size)
    {
        std::string const text(m_rest.substr(0, size));
        m_rest.remove_prefix(text.size());
        return text;
    }
    // A text after a byte with its length.
    std::string takeShortText() { return takeText(takeByte()); }
    std::string takeRest() { return takeText(m_rest.size()); }

private:
    std::string_view m_rest;
};

// Text in code units; an odd last byte is dropped.
inline std::u16string unitsOf(std::string const& bytes)
{
    std::u16string units(bytes.size() / 2, u'\0');
    std::copy_n(bytes.data(), 2 * units.size(), reinterpret_cast<char*>(units.data()));
    return units;
}

#endif
