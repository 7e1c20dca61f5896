#include "streams/ARXDomWriterOJDOutputStream.h"

#include <cstddef>

#include "OJDStreamsDLL/OJDOutputStream.h"

ARXDomWriterOJDOutputStream::ARXDomWriterOJDOutputStream(OJDOutputStream& stream) : m_pStream(&stream) {}

ARXDomWriterOJDOutputStream::~ARXDomWriterOJDOutputStream()
{
    try
    {
        m_pStream->flush();
    }
    catch (...)
    {
        return;
    }
}

void ARXDomWriterOJDOutputStream::write(char const* data, int size)
{
    m_pStream->write(data, static_cast<std::size_t>(size));
}

void ARXDomWriterOJDOutputStream::endline()
{
    m_pStream->write("\n", 1);  // the target decides how a line ends in its text
}
