// What errors that are not a NEBException have in common: a code and one text.

#ifndef NEBCORE_NEBTEXTERROR_H
#define NEBCORE_NEBTEXTERROR_H

#include <cstdint>
#include <memory>
#include <string>

#include "NEBCore/NEBThrowable.h"

class NEBCORE_API NEBTextError : public NEBThrowable
{
public:
    // The text, or "" if there is none or was no memory for it.
    char const* getMessage() const override { return m_text ? m_text->c_str() : ""; }
    using NEBThrowable::getMessage;
    std::int32_t getCode() const { return m_code; }

protected:
    // text is copied and may be null. Lack of memory costs the text, never the error.
    NEBTextError(std::int32_t code, char const* text) noexcept;
    NEBTextError(NEBTextError const&) noexcept = default;
    NEBTextError& operator=(NEBTextError const&) noexcept = default;
    ~NEBTextError() override;

private:
    std::int32_t m_code;
    std::shared_ptr<std::string const> m_text;
};

// Gives an error class the two operations that must name their own class.
template <class Error>
class NEBTextErrorOf : public NEBTextError
{
public:
    using NEBTextError::NEBTextError;

    NEBThrowable* clone() const override { return new Error(self()); }
    [[noreturn]] void hurl(NEBFileLocation const& where, char const* text, char const* macro) override
    {
        addBackTrace(where, text, macro);
        throw Error(self());
    }

private:
    Error const& self() const { return static_cast<Error const&>(*this); }
};

#endif
