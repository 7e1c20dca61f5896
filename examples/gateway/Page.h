// The page that a user sees. All texts are escaped here.

#ifndef ARXGATE_PAGE_H
#define ARXGATE_PAGE_H

#include <cstdint>
#include <string>
#include <vector>

struct PageEntry
{
    std::string m_name;
    std::string m_url;
    std::string m_kind;  // "plain", "sealed", "folder" or "damaged"
    std::uint64_t m_size = 0;
    std::uint64_t m_nanoseconds = 0;  // that the library took to sign the link and to look at the file
};

// notice may be empty.
std::string makeLoginPage(std::string const& notice);
std::string makeFilePage(std::vector<PageEntry> const& entries, std::string const& notice);

#endif
