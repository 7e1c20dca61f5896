#include "NEBCore/NEBDowncastSize.h"

#include <string>

#include "NEBCore/NEBException.h"

void NEBDowncastSize::raise(std::size_t value, char const* file, std::int32_t line)
{
    std::string const text = "Size does not fit into 32 bits: " + std::to_string(value);
    NEBException(text.c_str()).hurl(NEBFileLocation(file, line), "NEBDowncastSize", "NEB_THROW");
}
