#include "frame/ARXException.h"

#include "frame/ARXNew.h"

ARXException::ARXException(ARXException const& other) noexcept = default;

ARXException::ARXException(std::int32_t code) : NEBException(code) {}

ARXException::ARXException(NEBSeverity severity, std::int32_t code) : NEBException(severity, code) {}

ARXException::ARXException(char const* text) : NEBException(text) {}

ARXException::ARXException(NEBSeverity severity, char const* text) : NEBException(severity, text) {}

ARXException::ARXException(NEBException const& source, NEBMessageBase const* message) : NEBException(source)
{
    if (message)
        *this << *message;
    transferBackTrace(source);
    transferMessages(source);
}

ARXException::~ARXException() = default;

ARXException& ARXException::operator=(ARXException const& other) noexcept
{
    if (this != &other)
        NEBException::operator=(other);
    return *this;
}

NEBThrowable* ARXException::clone() const
{
    ARXException* copy = nullptr;
    NEB_NEW(copy, new ARXException(*this));
    return copy;
}

void ARXException::hurl(NEBFileLocation const& where, char const* text, char const* macro)
{
    addBackTrace(where, text, macro);
    throw ARXException(*this);
}

char const* ARXException::getThrowableName() const
{
    return "ARXException";
}

ARXException& ARXException::operator<<(NEBMessageBase const& message)
{
    NEBException::operator<<(message);
    return *this;
}
