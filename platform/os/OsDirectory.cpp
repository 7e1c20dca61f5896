#include "os/OsDirectory.h"

#include <cerrno>
#include <cstddef>

#include <unistd.h>

char* _getcwd(char* buffer, int size)
{
    if (buffer && size > 0)
        return getcwd(buffer, static_cast<std::size_t>(size));
    errno = EINVAL;  // the system would allocate instead, and nobody would free
    return nullptr;
}
