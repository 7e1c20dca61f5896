// Writes a plain file through a buffer of 16 KiB.
//
// Failures raise NEBException with the file's name and the system's reason. One object serves one thread at a
// time.
//
// Example:
//     OJDFileOutputStream file("/tmp/report.txt", 0);
//     file.write("text", 4);
//     file.close();  // raises if the text can't be written; the destructor would not

#ifndef OJDSTREAMSDLL_OJDFILEOUTPUTSTREAM_H
#define OJDSTREAMSDLL_OJDFILEOUTPUTSTREAM_H

#include <string>

#include "OJDStreamsDLL/OJDOutputStream.h"
#include "os/OsFile.h"

class __attribute__((visibility("default"))) OJDFileOutputStream : public OJDOutputStream
{
public:
    // Creates or truncates the file, with mode 0666 less the umask. filename is the system's own name; null
    // opens nothing. The second argument is reserved and 0. Lack of memory raises std::bad_alloc.
    OJDFileOutputStream(char const* filename, int);
    // Flushes and closes without reporting failures: call close to learn of them.
    ~OJDFileOutputStream() override;

    OJDFileOutputStream(OJDFileOutputStream const&) = delete;
    OJDFileOutputStream& operator=(OJDFileOutputStream const&) = delete;

    // Raises if no file is open. After any other failure an unknown first part of data has been taken.
    void write(char const* data, std::size_t size) override;
    // Passes all bytes to the system, which writes them to the disk in its own time. After a failure the rest
    // stays for the next attempt. Does nothing if no file is open.
    void flush() override;
    // Flushes and closes; the file is closed even if this raises. A second call does nothing.
    void close() override;

private:
    std::string m_name;
    OsFile m_file;
    std::string m_buffer;
};

#endif
