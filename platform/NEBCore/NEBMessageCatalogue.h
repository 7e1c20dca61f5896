// Message texts by file name and number.
//
// A catalogue is a function, so that its texts can be constants of the library that brings it. All operations
// may be called from any thread at any time, also before I18NInitialize.

#ifndef NEBCORE_NEBMESSAGECATALOGUE_H
#define NEBCORE_NEBMESSAGECATALOGUE_H

#include <cstdint>

#include "NEBCore/NEBCoreExport.h"

class NEBCORE_API NEBMessageCatalogue
{
public:
    // Gives the UTF-8 text with the places {0} and {1}, which must stay valid, or null for no such number.
    using Lookup = char const* (*)(std::uint32_t id);

    // Names a catalogue. It is linked into the list of all, so that installing it needs no memory and can't
    // fail.
    struct Entry
    {
        char const* m_file;
        Lookup m_lookup;
        Entry* m_next = nullptr;
    };

    // Installs entry, which must stay where it is to the end of the process. Of two of one name the later
    // counts; installing one twice changes nothing.
    static void install(Entry& entry);
    // Null where the file or the number is unknown.
    static char const* find(char const* file, std::uint32_t id);
};

#endif
