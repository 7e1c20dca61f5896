#include "NEBIDOM/DomWriter.h"

DomWriter::DomWriter() {}

DomWriter::~DomWriter() {}

char const* DomWriter::getOutputEncoding()
{
    return "the product's";
}
