#include "Page.h"

#include "Text.h"

namespace
{
char constexpr s_head[] = R"(<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Stored files</title>
<style>
:root { color-scheme: light dark; --line: #8884; --accent: #2563a8; }
@media (prefers-color-scheme: dark) { :root { --accent: #7db4ec; } }
body { font: 16px/1.5 system-ui, sans-serif; max-width: 60rem; margin: 0 auto; padding: 1.5rem 1rem; }
header { display: flex; justify-content: space-between; align-items: baseline; }
h1 { font-size: 1.5rem; margin: 0 0 1rem; }
h2 { font-size: 1.1rem; margin: 0 0 .5rem; }
a { color: var(--accent); text-decoration: none; overflow-wrap: anywhere; }
a:hover { text-decoration: underline; }
table { border-collapse: collapse; width: 100%; }
th, td { padding: .5rem .75rem; text-align: left; border-bottom: 1px solid var(--line); }
th { font-size: .85rem; font-weight: 600; opacity: .7; }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
.kind { border: 1px solid var(--line); border-radius: 1rem; padding: .1rem .6rem; font-size: .85rem; }
.sealed { border-color: var(--accent); color: var(--accent); }
section, .notice { border: 1px solid var(--line); border-radius: .5rem; padding: 1rem; margin: 1.5rem 0; }
form { display: flex; flex-wrap: wrap; gap: .75rem; align-items: center; }
input, select, button { font: inherit; padding: .35rem .6rem; }
button { border: 0; border-radius: .35rem; background: var(--accent); color: Canvas; cursor: pointer; }
.login { max-width: 22rem; margin: 15vh auto 0; }
.login form, .login label { display: grid; gap: .25rem; }
.login form { gap: 1rem; }
</style>
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
    return notice.empty() ? "" : "<p class=\"notice\" role=\"status\">" + escape(notice) + "</p>\n";
}

std::string makeRow(PageEntry const& entry)
{
    std::string const name = entry.m_url.empty()
                                 ? escape(entry.m_name)
                                 : "<a href=\"" + escape(entry.m_url) + "\">" + escape(entry.m_name) + "</a>";
    return "<tr><td>" + name + "<td><span class=\"kind " + entry.m_kind + "\">" + entry.m_kind +
           "</span><td class=\"number\">" + (entry.m_kind == "folder" ? "" : groupDigits(entry.m_size)) +
           "<td class=\"number\">" + formatTime("%Y-%m-%d %H:%M", entry.m_modified) +
           "<td class=\"number\">" + groupDigits(entry.m_nanoseconds / 1000) + " µs\n";
}
}  // namespace

std::string makeLoginPage(std::string const& notice)
{
    return std::string(s_head) + "<main class=\"login\"><h1>Stored files</h1>\n" + makeNotice(notice) +
           R"(<form method="post" action="/session">
<label>User <input name="user" autocomplete="username" required autofocus></label>
<label>Password <input name="password" type="password" autocomplete="current-password" required></label>
<button>Log in</button>
</form></main>
)";
}

std::string makeFilePage(std::vector<PageEntry> const& entries, std::string const& notice)
{
    std::string page = std::string(s_head) + R"(<header><h1>Stored files</h1>
<form method="post" action="/logout"><button>Log out</button></form></header>
)" + makeNotice(notice) +
                       R"(<table>
<tr><th>Name<th>Stored<th class="number">Bytes<th class="number">Changed (UTC)<th class="number">Library’s time
)";
    for (PageEntry const& entry : entries)
        page += makeRow(entry);
    return page + R"(</table>
<section><h2>Upload a file</h2>
<form method="post" action="/upload" enctype="multipart/form-data">
<select name="store" aria-label="Stored"><option>sealed<option>plain</select>
<input name="file" type="file" aria-label="File" required>
<button>Upload</button>
</form></section>
)";
}
