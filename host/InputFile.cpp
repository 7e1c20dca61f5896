#include "InputFile.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

#include "Failure.h"
#include "Interrupt.h"

namespace
{
std::size_t constexpr s_pieceSize = 65536;

// OsFile repeats what a signal interrupts; here the signal counts.
template <class Call>
auto untilInterrupted(Call const& call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
    {
        stopIfInterrupted();
        result = call();
    }
    return result;
}
}  // namespace

InputFile::InputFile(std::string const& path)
    : m_name(path == "-" ? "standard input" : path),
      m_file(path == "-" ? -1 : untilInterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }))
{
    if (path != "-" && !m_file.isOpen())
        systemFailed(NEB_HERE, m_name);
}

std::vector<char>& InputFile::readPiece()
{
    stopIfInterrupted();
    int const descriptor = m_file.isOpen() ? m_file.getDescriptor() : STDIN_FILENO;
    m_piece.resize(s_pieceSize);
    ssize_t const count =
        untilInterrupted([&] { return ::read(descriptor, m_piece.data(), m_piece.size()); });
    if (count < 0)
        systemFailed(NEB_HERE, m_name);
    m_piece.resize(static_cast<std::size_t>(count));
    return m_piece;
}
