// The canonical form of a path, written a second time: elements from the left on a stack, from which ".."
// removes.

#ifndef ARXIUM_FUZZ_PATHMODEL_H
#define ARXIUM_FUZZ_PATHMODEL_H

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <vector>

inline bool modelHasDrive(std::string const& path)
{
    return path.size() > 1 && std::isalpha(static_cast<unsigned char>(path[0])) && path[1] == ':';
}

// Empty for a path that has none.
inline std::string modelNormalizedPath(std::string path)
{
    std::string drive, joined;
    if (modelHasDrive(path))
    {
        drive = {static_cast<char>(path[0] | 0x20), ':'};
        path.erase(0, 2);
    }
    std::vector<std::string> stack;
    if (path.find_first_of("/\\") == 0)
        stack.emplace_back(1, path[0]);  // the root, as spelled
    std::replace(path.begin(), path.end(), '\\', '/');
    std::istringstream elements(path);
    for (std::string element; std::getline(elements, element, '/');)
    {
        bool const takesOneOff = element == ".." && !stack.empty() && stack.back() != "..";
        if (takesOneOff && stack.back() == "/")
            return "";
        if (takesOneOff)
            stack.pop_back();
        else if (!element.empty() && element != ".")
            stack.push_back(element);
    }
    for (std::string const& each : stack)
        joined += (joined.empty() || joined == "/" ? "" : "/") + (each == "\\" ? "/" : each);
    return drive.empty() && joined.empty() ? "." : drive + joined;
}

#endif
