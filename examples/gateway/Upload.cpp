#include "Upload.h"

#include <stdexcept>

#include "StoredFile.h"
#include "Text.h"

namespace
{
std::size_t constexpr s_longestValue = 16;
unsigned constexpr s_mode = 0640;
}  // namespace

bool Upload::begin(httplib::MultipartFormData const& part)
{
    m_isInFile = part.name == "file";
    if (!m_isInFile)
        return true;
    if (!m_name.empty() || !isServableName(part.filename))
        return false;
    m_timer.start();
    m_name = part.filename;
    if (!m_file.create(m_root.getPath() + "/" + m_name, s_mode))
        throw std::runtime_error(m_file.getFailure());
    m_stream.setSecureType(m_store == "sealed" ? ARXOJDSecureFileOutputStream::secureTypeEncrypted
                                               : ARXOJDSecureFileOutputStream::secureTypePlain);
    m_stream.open(m_file.getPath().c_str());
    return true;
}

bool Upload::append(char const* data, std::size_t size)
{
    if (m_isInFile)
    {
        m_stream.write(data, size);
        m_size += size;
        return true;
    }
    m_store.append(data, size);
    return m_store.size() <= s_longestValue;
}

bool Upload::finish()
{
    if (m_name.empty())
        return false;
    m_stream.close();
    if (!m_file.replace())
        throw std::runtime_error(m_file.getFailure());
    return true;
}

std::string Upload::describe()
{
    return m_name + ": " + groupDigits(m_size) + " bytes stored " +
           (m_stream.getSecureType() == ARXOJDSecureFileOutputStream::secureTypeEncrypted ? "sealed"
                                                                                          : "plain") +
           " in " + groupDigits(m_timer.getElapsed(true) / 1000) + " µs";
}
