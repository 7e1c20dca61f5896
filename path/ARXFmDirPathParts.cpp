#include "path/ARXFmDir.h"

#include <iterator>
#include <utility>

#include "NEBCore/NEBFmDir.h"
#include "frame/ARXAssert.h"

namespace
{
std::string_view constexpr s_currentDir = ".";
std::string_view constexpr s_parentDir = "..";
std::string_view constexpr s_root = "/";
}  // namespace

ARXFmDir::ARXFmDirPathParts::ARXFmDirPathParts() = default;

ARXFmDir::ARXFmDirPathParts::~ARXFmDirPathParts() = default;

bool ARXFmDir::ARXFmDirPathParts::isRoot(std::list<std::string>::iterator iter)
{
    return *iter == s_root;
}

bool ARXFmDir::ARXFmDirPathParts::shouldParentDirectoryBeRemoved(std::list<std::string>::iterator iter)
{
    return *iter == s_parentDir && iter != m_parts.begin() && *std::prev(iter) != s_parentDir;
}

void ARXFmDir::ARXFmDirPathParts::removeCurrentDir()
{
    m_parts.remove_if([](std::string const& part) { return part == s_currentDir; });
}

void ARXFmDir::ARXFmDirPathParts::removeParentDir()
{
    auto next = m_parts.begin();
    while (next != m_parts.end())
    {
        if (!shouldParentDirectoryBeRemoved(next))
        {
            ++next;
            continue;
        }
        auto const iter = std::prev(next);
        NEB_ASSERT_NAMED(! isRoot(iter), "Cannot descend under root with '..'");
        m_parts.erase(iter);
        next = m_parts.erase(next);
    }
}

void ARXFmDir::ARXFmDirPathParts::getPath(std::string& out) const
{
    std::string path;
    for (std::string const& part : m_parts)
        NEBFmDir::joinPath(path, part);
    path.insert(0, m_drive);  // not joined: "c:" would get a separator
    out = std::move(path);
}
