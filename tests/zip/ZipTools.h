// What the zip tests share: files, whole trees, archives made in code, and failures as values.

#ifndef ARXIUM_TESTS_ZIP_ZIPTOOLS_H
#define ARXIUM_TESTS_ZIP_ZIPTOOLS_H

#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <time.h>

#include "zip/ARXZipInputStreamI.h"

// Path and contents; a folder's path ends in "/".
using Tree = std::map<std::string, std::string>;

// Nothing for a folder.
std::string readAll(std::string const& path);
void writeAll(std::string const& path, std::string const& bytes);
Tree readTree(std::string const& folder);
void writeTree(std::string const& folder, Tree const& tree);
// That many bytes that no method can shrink.
std::string noise(std::size_t size);
// Runs a shell command quietly in a folder; its exit status.
int run(std::string const& folder, std::string const& command);

// Stored entries without a date, each holding its own name.
void makeArchive(std::string const& path, std::vector<std::string> const& names);
// Replaces the first match behind the archive's first central header.
void patchDirectory(std::string const& archive, std::size_t offset, std::string const& bytes);

// Name and contents of every entry; nothing for an entry that does not open.
Tree readStream(ARXZipInputStreamI& stream);

struct Failure
{
    std::string m_name;       // of the exception; empty if there was none
    std::string m_text;       // its messages
    std::string m_operation;  // text of the first place in the back trace
    std::size_t m_places;     // length of the back trace
};
Failure failureOf(std::function<void()> const& call);

class TimeZone
{
public:
    explicit TimeZone(char const* name) { set(name); }
    ~TimeZone() { set("UTC0"); }
    TimeZone(TimeZone const&) = delete;
    TimeZone& operator=(TimeZone const&) = delete;

private:
    static void set(char const* name)
    {
        setenv("TZ", name, 1);
        tzset();
    }
};

#endif
