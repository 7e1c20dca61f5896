// The bytes of a file; none where there is no file.

#ifndef ARXIUM_TESTS_SUPPORT_READALL_H
#define ARXIUM_TESTS_SUPPORT_READALL_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

inline std::string readAll(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    bool const isFile = std::filesystem::is_regular_file(path);
    return isFile ? std::string(std::istreambuf_iterator<char>(file), {}) : "";
}

#endif
