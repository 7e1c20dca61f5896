// Message texts by file name and number. Any thread may call at any time.

#ifndef NEBCORE_NEBMESSAGECATALOGUE_H
#define NEBCORE_NEBMESSAGECATALOGUE_H

#include <cstdint>
#include <string>
#include <vector>

#include "NEBCore/NEBCoreExport.h"

class NEBCORE_API NEBMessageCatalogue
{
public:
    // Makes texts, UTF-8 with the places {0} and {1}, the messages 1, 2 ... of a file. They are kept here, so
    // that the library that brings them may be unloaded. If the file has texts already, those stay.
    static void install(std::string const& file, std::vector<std::string> texts);
    // Returns a text that lives as long as the process, or null if the file or the number is unknown.
    static char const* find(char const* file, std::uint32_t id);
};

#endif
