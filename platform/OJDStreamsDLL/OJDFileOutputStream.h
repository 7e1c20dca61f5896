// Writes a plain file, through a small buffer.
//
// What the system refuses is raised as NEBException with the file's name and the system's reason. An object
// serves one thread at a time.

#ifndef OJDSTREAMSDLL_OJDFILEOUTPUTSTREAM_H
#define OJDSTREAMSDLL_OJDFILEOUTPUTSTREAM_H

#include <string>

#include "NEBCore/NEBByteBuffer.h"
#include "OJDStreamsDLL/OJDOutputStream.h"
#include "os/OsFile.h"

class __attribute__((visibility("default"))) OJDFileOutputStream : public OJDOutputStream
{
public:
    // Creates or truncates the file, with mode 0666 less the umask. A null name opens nothing. The second
    // argument is reserved and 0. Lack of memory leaves as std::bad_alloc or NEBOutOfMemoryError.
    OJDFileOutputStream(char const* filename, int);
    // Flushes and closes; what fails is lost here, so call close to learn of it.
    ~OJDFileOutputStream() override;

    OJDFileOutputStream(OJDFileOutputStream const&) = delete;
    OJDFileOutputStream& operator=(OJDFileOutputStream const&) = delete;

    // After a failure an unknown first part of data has been taken. Raises also where no file is open.
    void write(char const* data, std::size_t size) override;
    // Gives all bytes to the system, which is not asked to bring them to the disk. After a failure the rest
    // stays for the next attempt. Does nothing where no file is open.
    void flush() override;
    // The file is closed also where this raises; a second call does nothing.
    void close() override;

private:
    std::string m_name;
    OsFile m_file;
    NEBByteBuffer m_buffer;
};

#endif
