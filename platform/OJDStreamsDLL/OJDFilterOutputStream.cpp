#include "OJDStreamsDLL/OJDFilterOutputStream.h"

OJDFilterOutputStream::OJDFilterOutputStream() : m_target(nullptr) {}

OJDFilterOutputStream::OJDFilterOutputStream(OJDOutputStream& target) : m_target(&target) {}

OJDFilterOutputStream::~OJDFilterOutputStream() = default;

void OJDFilterOutputStream::wrap(OJDOutputStream& target)
{
    m_target = &target;
}

void OJDFilterOutputStream::unWrap()
{
    m_target = nullptr;
}
