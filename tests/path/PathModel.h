// What the canonical form of a path is, written down a second time: elements from the left, taken off a stack
// by "..".

#ifndef ARXIUM_TESTS_PATH_PATHMODEL_H
#define ARXIUM_TESTS_PATH_PATHMODEL_H

#include <cctype>
#include <string>
#include <vector>

inline bool modelHasDrive(std::string const& path)
{
    return path.size() > 1 && std::isalpha(static_cast<unsigned char>(path[0])) && path[1] == ':';
}

// Empty for a path that has none.
inline std::string modelNormalizedPath(std::string path)
{
    std::string drive;
    if (modelHasDrive(path))
    {
        drive = {static_cast<char>(std::tolower(static_cast<unsigned char>(path[0]))), ':'};
        path.erase(0, 2);
    }
    std::vector<std::string> stack;
    std::string element;
    path += '/';
    for (std::size_t i = 0; i < path.size(); ++i)
    {
        if (path[i] != '/' && path[i] != '\\')
        {
            element += path[i];
            continue;
        }
        if (i == 0 && path.size() > 1)
            stack.emplace_back(1, path[i]);  // the root, as spelled
        bool const takesOneOff = element == ".." && !stack.empty() && stack.back() != "..";
        if (takesOneOff && stack.back() == "/")
            return "";
        if (takesOneOff)
            stack.pop_back();
        else if (!element.empty() && element != ".")
            stack.push_back(element);
        element.clear();
    }
    std::string joined;
    for (std::string const& each : stack)
        joined += (joined.empty() || joined == "/" ? "" : "/") + (each == "\\" ? "/" : each);
    return drive.empty() && joined.empty() ? "." : drive + joined;
}

#endif
