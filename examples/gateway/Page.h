// The page that a user sees.

#ifndef ARXGATE_PAGE_H
#define ARXGATE_PAGE_H

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

struct PageEntry
{
    std::string m_name;
    std::string m_url;
    std::string m_kind = "other";  // or "plain", "sealed", "folder", "damaged"
    std::uint64_t m_size = 0;
    std::time_t m_modified = 0;
    std::uint64_t m_nanoseconds = 0;  // that the library took to sign the link and to look at the file
};

std::string makeLoginPage(std::string const& notice);
// notice may be empty. All texts are escaped here.
std::string makeFilePage(std::vector<PageEntry> const& entries, std::string const& notice);

#endif
