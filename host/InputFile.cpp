#include "InputFile.h"

#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "Failure.h"
#include "Interrupt.h"
#include "os/OsFile.h"

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

void readFile(std::string const& path, Sink const& sink)
{
    bool const isStandardInput = path == "-";
    std::string const name = isStandardInput ? "standard input" : path;
    OsFile const file(isStandardInput
                          ? dup(STDIN_FILENO)
                          : untilInterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
    if (!file.isOpen())
        systemFailed(NEB_HERE, name);
    std::vector<char> piece(s_pieceSize);
    auto const readPiece = [&]
    {
        stopIfInterrupted();
        return untilInterrupted([&] { return read(file.getDescriptor(), piece.data(), piece.size()); });
    };
    ssize_t count = 0;
    while ((count = readPiece()) > 0)
        sink(piece.data(), static_cast<std::size_t>(count));
    stopIfInterrupted();  // Ctrl-C ends the writer of a pipe too, which looks like the end of its data
    if (count < 0)
        systemFailed(NEB_HERE, name);
}
