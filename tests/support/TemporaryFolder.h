// A new folder for one test, removed with all its contents, and what tests do with the files in it.

#ifndef ARXIUM_TESTS_SUPPORT_TEMPORARYFOLDER_H
#define ARXIUM_TESTS_SUPPORT_TEMPORARYFOLDER_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

class TemporaryFolder
{
public:
    TemporaryFolder()
        : m_path(std::filesystem::canonical(std::filesystem::temp_directory_path()) / "arxium-XXXXXX")
    {
        if (!mkdtemp(m_path.data()))
            throw std::runtime_error("no temporary folder");
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(TemporaryFolder const&) = delete;

    std::string const& path() const { return m_path; }
    std::string operator/(std::string const& name) const { return m_path + "/" + name; }

private:
    std::string m_path;  // absolute, without symbolic links and final separator
};

// The current folder for the lifetime of the object.
struct CurrentFolder
{
    explicit CurrentFolder(std::string const& path) { std::filesystem::current_path(path); }
    CurrentFolder(CurrentFolder const&) = delete;
    ~CurrentFolder() { std::filesystem::current_path(m_before); }

    std::filesystem::path const m_before = std::filesystem::current_path();
};

// The bytes of a file; none if there is no such file.
inline std::string readAll(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    bool const isFile = std::filesystem::is_regular_file(path);
    return isFile ? std::string(std::istreambuf_iterator<char>(file), {}) : "";
}

#endif
