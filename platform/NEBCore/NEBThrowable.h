// Base of everything that is raised: a back trace, and the virtual operations that throw and describe an
// error.
//
// An object belongs to the thread that made it. Copies need no memory, so that a throw can't fail by its
// copy.
//
// Example:
//     #include "frame/Arxium.h"
//     #include <string>
//     std::string report;
//     try { Arxium::terminate(); }
//     catch (NEBThrowable const& error)
//     {
//         report = std::string(error.getThrowableName()) + ": " + error.getMessage();
//     }

#ifndef NEBCORE_NEBTHROWABLE_H
#define NEBCORE_NEBTHROWABLE_H

#include <set>
#include <string>
#include <vector>

#include "NEBCore/NEBCoreExport.h"
#include "NEBCore/NEBFileLocation.h"
#include "NEBCore/NEBSharedList.h"

class I18NString;

// One place that an error passed on its way up.
class NEBCORE_API NEBBackTraceEntry
{
public:
    // text may be null and is copied; macro, "NEB_THROW" or "NEB_RETHROW", must outlive the entry.
    NEBBackTraceEntry(NEBFileLocation const& where, char const* text, char const* macro);

    NEBFileLocation const& getLocation() const { return m_where; }
    // Null if there is none.
    char const* getText() const { return m_hasText ? m_text.c_str() : nullptr; }
    char const* getMacro() const { return m_macro; }

private:
    NEBFileLocation m_where;
    bool m_hasText;
    std::string m_text;
    char const* m_macro;
};

class NEBCORE_API NEBThrowable
{
public:
    NEBThrowable() = default;
    NEBThrowable(NEBThrowable const& other) noexcept : m_backTrace(other.m_backTrace) {}
    NEBThrowable& operator=(NEBThrowable const& other) noexcept;

    // The virtual operations keep this order: it is the order of their slots.
    virtual ~NEBThrowable();
    // A new object of the same class, owned by the caller.
    virtual NEBThrowable* clone() const = 0;
    // Adds the place to the back trace and throws a copy of this object as its own class. Every class of the
    // family overrides it, since a throw uses the static type.
    [[noreturn]] virtual void hurl(NEBFileLocation const& where, char const* text, char const* macro) = 0;
    // What went wrong, UTF-8, never null. Texts that an object returned are valid as long as the object.
    virtual char const* getMessage() { return static_cast<NEBThrowable const*>(this)->getMessage(); }
    virtual char const* getThrowableName() const = 0;
    // The name, and the message if there is one.
    virtual char const* toString();
    virtual char const* getMessage() const { return ""; }
    // The same in result, which is replaced. first and second (may be null) fill the places {0} and {1} of
    // catalogue messages; every line begins with indent blanks.
    virtual void toString(char const* first, char const* second, I18NString& result, int indent);

    // Without memory the entry is left out: the error is worth more than its trace.
    void addBackTrace(NEBFileLocation const& where, char const* text, char const* macro) noexcept;
    // Moves the back trace out of source, which ends without one.
    void transferBackTrace(NEBThrowable const& source);
    // The place of the throw first. The entries live as long as this object keeps its back trace.
    std::vector<NEBBackTraceEntry const*> getBackTrace() const;

protected:
    // Keeps a text for operations that return a pointer into this object.
    char const* keepText(std::string text) const;

private:
    mutable NEBSharedList<NEBBackTraceEntry const> m_backTrace;
    mutable std::set<std::string> m_keptTexts;  // not copied along
};

#endif
