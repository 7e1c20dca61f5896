#include "Upload.h"

#include <stdexcept>

#include "os/OsPlacedFile.h"
#include "streams/ARXOJDSecureFileOutputStream.h"
#include "text/NEBUtHRTimer.h"

#include "StoredFile.h"

namespace
{
using Stream = ARXOJDSecureFileOutputStream;

std::size_t constexpr s_longestValue = 16;
unsigned constexpr s_mode = 0640;

class Upload
{
public:
    explicit Upload(OsFile const& root) : m_root(root) {}

    // A part of the form begins. False ends the upload: a name that is refused, a second file,
    // or one that comes before the field that says how to store it.
    bool begin(httplib::MultipartFormData const& part)
    {
        m_isInFile = part.name == "file";
        if (!m_isInFile)
            return true;
        if (!m_name.empty() || !isServableName(part.filename) || (m_store != "sealed" && m_store != "plain"))
            return false;
        m_timer.start();
        m_name = part.filename;
        if (!m_file.create(getPath(m_root) + "/" + m_name, s_mode))
            throw std::runtime_error(m_file.getFailure());
        m_stream.setSecureType(m_store == "sealed" ? Stream::secureTypeEncrypted : Stream::secureTypePlain);
        m_stream.open(m_file.getPath().c_str());
        return true;
    }

    // The next bytes of that part.
    bool append(char const* data, std::size_t size)
    {
        if (!m_isInFile)
            return m_store.append(data, size).size() <= s_longestValue;
        m_stream.write(data, size);
        m_size += size;
        return true;
    }

    std::string finish()
    {
        if (m_name.empty())
            return "";
        m_stream.close();
        if (!m_file.replace())
            throw std::runtime_error(m_file.getFailure());
        bool const sealed = m_stream.getSecureType() == Stream::secureTypeEncrypted;
        return m_name + ": " + std::to_string(m_size) + " bytes stored " + (sealed ? "sealed" : "plain") +
               " in " + std::to_string(m_timer.getElapsed(true) / 1000) + " µs";
    }

private:
    OsFile const& m_root;
    std::string m_store;
    std::string m_name;
    bool m_isInFile = false;
    std::uint64_t m_size = 0;
    NEBUtHRTimer m_timer;
    OsPlacedFile m_file;  // destroyed after m_stream, which finishes what it wrote
    Stream m_stream;
};
}  // namespace

std::string storeUpload(OsFile const& root, httplib::ContentReader const& form)
{
    Upload upload(root);
    bool const isWhole =
        form([&upload](httplib::MultipartFormData const& part) { return upload.begin(part); },
             [&upload](char const* data, std::size_t size) { return upload.append(data, size); });
    return isWhole ? upload.finish() : "";
}
