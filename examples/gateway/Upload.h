// A file on its way from a form into the root.

#ifndef ARXGATE_UPLOAD_H
#define ARXGATE_UPLOAD_H

#include <cstdint>
#include <memory>
#include <string>

#include <httplib.h>

#include "os/OsPlacedFile.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "text/NEBUtHRTimer.h"

#include "Descriptor.h"

class Upload
{
public:
    explicit Upload(Descriptor const& root) : m_root(root) {}

    // A part of the form begins. False ends the upload: a name that is refused, or a second file.
    bool begin(httplib::MultipartFormData const& part);
    // The next bytes of that part. Raises what the stream raises.
    bool append(char const* data, std::size_t size);
    // Gives the file its name, in place of an older one. False if there was none. A file that is given up
    // before leaves nothing.
    bool finish();

    std::uint64_t getSize() const { return m_size; }
    // What was stored, for the user.
    std::string describe();

private:
    Descriptor const& m_root;
    std::string m_store;
    std::string m_name;
    bool m_isInFile = false;
    std::uint64_t m_size = 0;
    NEBUtHRTimer m_timer;
    OsPlacedFile m_file;  // destroyed after m_stream, which finishes what it wrote
    ARXOJDSecureFileOutputStream m_stream;
};

#endif
