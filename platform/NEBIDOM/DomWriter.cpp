#include "NEBIDOM/DomWriter.h"

DomWriter::DomWriter() = default;

DomWriter::~DomWriter() = default;

char const* DomWriter::getOutputEncoding()
{
    return "UTF-8";
}
