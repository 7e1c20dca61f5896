#include "host/ArchiveInput.h"

#include <cstdio>

#include "host/Failure.h"

namespace
{
std::string readStandardInput()
{
    std::string bytes;
    char piece[65536];
    while (std::size_t const count = std::fread(piece, 1, sizeof piece, stdin))
        bytes.append(piece, count);
    if (std::ferror(stdin))
        systemFailed(NEB_HERE, "Standard input can't be read");
    return bytes;
}
}  // namespace

ArchiveInput::ArchiveInput(std::string const& path)
{
    if (path != "-")
        m_stream = std::make_unique<ARXZipInputStream>(path.c_str());
    else if (std::fseek(stdin, 0, SEEK_SET) == 0)
        m_stream = std::make_unique<ARXZipInputStream>(stdin);
    else
    {
        m_bytes = readStandardInput();
        m_stream = std::make_unique<ARXZipInputStream>(m_bytes.data(), m_bytes.size());
    }
}

std::string printable(std::string const& text)
{
    char const* const digits = "0123456789abcdef";
    std::string shown;
    for (char const c : text)
    {
        auto const byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F)
            shown += {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
        else
            shown += c;
    }
    return shown;
}
