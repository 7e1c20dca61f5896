#include "NEBCore/NEBFmDir.h"

#include "NEBCore/I18NString.h"

namespace
{
char constexpr s_separators[] = "/\\";
}  // namespace

void NEBFmDir::splitPath(std::string const& path, std::string* directory, std::string* file)
{
    std::size_t const last = path.find_last_of(s_separators);
    bool const hasDirectory = last != std::string::npos;
    std::string head = hasDirectory ? path.substr(0, last == 0 ? 1 : last) : std::string();
    std::string tail = hasDirectory ? path.substr(last + 1) : path;
    if (directory)
        *directory = std::move(head);
    if (file)
        *file = std::move(tail);
}

void NEBFmDir::joinPath(std::string& base, std::string const& name)
{
    bool const needsSeparator = !base.empty() && base.find_last_of(s_separators) != base.size() - 1;
    base.append(needsSeparator ? 1 : 0, '/').append(name);
}

void NEBFmDir::joinPath(I18NString& base, I18NString const& name)
{
    std::string joined = base.c_str();
    joinPath(joined, name.c_str());
    base = I18NString(joined.c_str());
}
