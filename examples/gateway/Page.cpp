#include "Page.h"

namespace
{
char constexpr s_head[] = R"(<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Stored files</title>
<style>
:root { color-scheme: light dark; }
body { font: 16px/1.5 system-ui, sans-serif; max-width: 60rem; margin: 0 auto; padding: 1.5rem 1rem; }
table { border-collapse: collapse; width: 100%; }
th, td { padding: .5rem .75rem; text-align: left; border-bottom: 1px solid #8884; overflow-wrap: anywhere; }
.number { text-align: right; font-variant-numeric: tabular-nums; }
form { display: flex; flex-wrap: wrap; gap: .75rem; margin: 1.5rem 0; }
input, select, button { font: inherit; padding: .35rem .6rem; }
</style>
<h1>Stored files</h1>
)";

std::string escape(std::string const& text)
{
    std::string escaped;
    for (char const c : text)
    {
        if (c == '&' || c == '<' || c == '>' || c == '"')
            escaped += "&#" + std::to_string(static_cast<int>(c)) + ";";
        else
            escaped += c;
    }
    return escaped;
}

std::string makeNotice(std::string const& notice)
{
    return notice.empty() ? "" : "<p role=\"status\">" + escape(notice) + "</p>\n";
}

std::string makeRow(PageEntry const& entry)
{
    std::string const link = "<a href=\"" + escape(entry.m_url) + "\">" + escape(entry.m_name) + "</a>";
    return "<tr><td>" + (entry.m_url.empty() ? escape(entry.m_name) : link) + "<td>" + entry.m_kind +
           "<td class=\"number\">" + (entry.m_kind == "folder" ? "" : std::to_string(entry.m_size)) +
           "<td class=\"number\">" + std::to_string(entry.m_nanoseconds / 1000) + " µs\n";
}
}  // namespace

std::string makeLoginPage(std::string const& notice)
{
    return s_head + makeNotice(notice) + R"(<form method="post" action="/session">
<label>User <input name="user" autocomplete="username" required autofocus></label>
<label>Password <input name="password" type="password" autocomplete="current-password" required></label>
<button>Log in</button>
</form>
)";
}

std::string makeFilePage(std::vector<PageEntry> const& entries, std::string const& notice)
{
    std::string page = s_head + makeNotice(notice) + R"(<table>
<tr><th>Name<th>Stored<th class="number">Bytes<th class="number">Library’s time
)";
    for (PageEntry const& entry : entries)
        page += makeRow(entry);
    return page + R"(</table>
<form method="post" action="/upload" enctype="multipart/form-data">
<select name="store" aria-label="Stored"><option>sealed<option>plain</select>
<input name="file" type="file" aria-label="File" required>
<button>Upload</button>
</form>
)";
}
