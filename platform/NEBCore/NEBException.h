// An error with a severity, a code and messages. It belongs to the thread that made it.
//
// Example:
//     NEBException error("The file /data/a can't be opened.");
//     error.hurl(NEB_HERE, "Loader::load", "NEB_THROW");

#ifndef NEBCORE_NEBEXCEPTION_H
#define NEBCORE_NEBEXCEPTION_H

#include <cstdint>

#include "NEBCore/NEBMessageSet.h"
#include "NEBCore/NEBThrowable.h"

class NEBCORE_API NEBException : public NEBThrowable, public NEBMessageSet
{
public:
    // Severity is 1 and code 0 unless given. text (UTF-8, null for none) becomes a message.
    explicit NEBException(std::int32_t code) : NEBException(1, code) {}
    NEBException(NEBSeverity severity, std::int32_t code) : m_severity(severity), m_code(code) {}
    explicit NEBException(char const* text) : NEBException(1, text) {}
    NEBException(NEBSeverity severity, char const* text);
    NEBException(NEBException const& other) noexcept = default;
    NEBException& operator=(NEBException const& other) noexcept = default;
    ~NEBException() override;

    NEBThrowable* clone() const override { return new NEBException(*this); }
    [[noreturn]] void hurl(NEBFileLocation const& where, char const* text, char const* macro) override;
    // All messages, each on a line of its own.
    char const* getMessage() override { return NEBThrowable::getMessage(); }
    char const* getThrowableName() const override { return "NEBException"; }
    char const* toString() override { return NEBThrowable::toString(); }
    char const* getMessage() const override;
    void toString(char const* first, char const* second, I18NString& result, int indent) override;

    // Adds a clone of message.
    NEBException& operator<<(NEBMessageBase const& message);

    NEBSeverity getSeverity() const { return m_severity; }
    std::int32_t getCode() const { return m_code; }

private:
    NEBSeverity m_severity;
    std::int32_t m_code;
};

#endif
