#include "OJDStreamsDLL/OJDFileOutputStream.h"

#include <cerrno>
#include <cstring>

#include "NEBCore/NEBException.h"

namespace
{
std::size_t constexpr s_bufferSize = 16384;

[[noreturn]] void refuse(NEBFileLocation const& where, std::string const& name, char const* reason,
                         char const* operation)
{
    NEBException((name + ": " + reason).c_str()).hurl(where, operation, "NEB_THROW");
}
}  // namespace

OJDFileOutputStream::OJDFileOutputStream(char const* filename, int) : m_name(filename ? filename : "")
{
    if (!filename)
        return;
    m_buffer.reserve(s_bufferSize);  // so that no later write lacks memory
    if (!m_file.open(filename, OsFile::s_write | OsFile::s_create | OsFile::s_truncate))
        refuse(NEB_HERE, m_name, std::strerror(errno), "OJDFileOutputStream::open");
}

OJDFileOutputStream::~OJDFileOutputStream()
{
    try
    {
        OJDFileOutputStream::close();
    }
    catch (...)
    {
        return;
    }
}

void OJDFileOutputStream::write(char const* data, std::size_t size)
{
    if (!m_file.isOpen())
        refuse(NEB_HERE, m_name, "no file is open", "OJDFileOutputStream::write");
    // A large piece goes to the system without a copy.
    if (size > s_bufferSize - m_buffer.size())
        OJDFileOutputStream::flush();

    if (size < s_bufferSize)
        m_buffer.append(data, size);
    else if (m_file.write(data, size) != size)
        refuse(NEB_HERE, m_name, std::strerror(errno), "OJDFileOutputStream::write");
}

void OJDFileOutputStream::flush()
{
    std::size_t const sent = m_file.write(m_buffer.data(), m_buffer.size());
    m_buffer.erase(0, sent);
    if (!m_buffer.empty())
        refuse(NEB_HERE, m_name, std::strerror(errno), "OJDFileOutputStream::flush");
}

void OJDFileOutputStream::close()
{
    if (!m_file.isOpen())
        return;
    bool const isSent = m_file.write(m_buffer.data(), m_buffer.size()) == m_buffer.size();
    int const reason = errno;
    m_buffer.clear();
    if (!m_file.close() || !isSent)
        refuse(NEB_HERE, m_name, std::strerror(isSent ? errno : reason), "OJDFileOutputStream::close");
}
