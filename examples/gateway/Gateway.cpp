#include "Gateway.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>
#include <vector>

#include <fcntl.h>

#include "NEBCore/NEBWeb64.h"
#include "text/NEBUtHRTimer.h"
#include "url/ARXUriDispatchHelper.h"

#include "FileResponse.h"
#include "FolderArchive.h"
#include "Page.h"
#include "StoredFile.h"
#include "Text.h"
#include "Upload.h"

namespace
{
std::size_t constexpr s_longestLogin = 4096;
char constexpr s_readMethods[] = "GET, HEAD";

void setText(httplib::Response& response, int status, std::string const& text)
{
    response.status = status;
    response.set_content(text + "\n", "text/plain");
}

// One text whatever is wrong.
void forbid(httplib::Response& response)
{
    setText(response, 403, "This link is not valid in this session.");
}

void setPage(httplib::Response& response, int status, std::string const& page)
{
    response.status = status;
    response.set_header("Cache-Control", "no-store");
    response.set_header(
        "Content-Security-Policy",
        "default-src 'none'; style-src 'unsafe-inline'; form-action 'self'; frame-ancestors 'none'; "
        "base-uri 'none'");
    response.set_content(page, "text/html; charset=utf-8");
}

void redirectHome(httplib::Response& response, std::string const& cookie)
{
    response.set_header("Set-Cookie", cookie);
    response.set_redirect("/", 303);
}

// What follows the path of a link. No name holds "/", so name and session can't be mixed up in what is
// signed.
std::string signName(std::string const& name, std::string const& session)
{
    std::string query;
    ARXUriDispatchHelper::generateByteServingUrlFromBasePath(name, ("/" + session).c_str(), query);
    return query;
}

// The name that the link is right for; empty for any wrong value.
std::string findSignedName(httplib::Request const& request, std::string const& session)
{
    std::string const text = request.get_param_value("f");
    std::string name;
    if (session.empty() || !NEBWeb64Decode(text.data(), text.size(), name) || !isServableName(name))
        return "";
    std::size_t const query = request.target.find('?');
    return isEqual(request.target.substr(query), signName(name, session)) ? name : "";
}

bool carriesBody(httplib::Request const& request)
{
    std::string const length = request.get_header_value("Content-Length");
    return request.has_header("Transfer-Encoding") || (!length.empty() && length != "0");
}

// Ends the connection after the response.
void closeAfter(httplib::Response& response)
{
    response.set_header("Connection", "close");
    if (!response.content_provider_)
    {
        response.set_header("Content-Length", std::to_string(response.body.size()));
        setProvider(response, [body = std::move(response.body)](std::size_t, httplib::DataSink& sink)
                    { return sink.write(body.data(), body.size()); });
        response.body.clear();
    }
    response.content_provider_ = [send = std::move(response.content_provider_)](
                                     std::size_t offset, std::size_t length, httplib::DataSink& sink)
    {
        send(offset, length, sink);
        return false;
    };
}

// Without a kind if it is neither a file nor a folder.
PageEntry makeEntry(OsFile const& root, std::string const& name, std::string const& session)
{
    PageEntry entry;
    entry.m_name = name;
    NEBUtHRTimer timer;
    timer.start();
    try
    {
        if (auto const file = StoredFile::open(openBelow(root, name, 0)))
        {
            entry.m_kind = file->isSealed() ? "sealed" : "plain";
            entry.m_size = file->getSize();
            entry.m_url = "/gateway" + signName(name, session);
        }
        else if (openBelow(root, name, O_DIRECTORY).isOpen())
        {
            entry.m_kind = "folder";
            entry.m_url = "/download.zip" + signName(name, session);
        }
    }
    catch (...)
    {
        printCurrentException(name);
        entry.m_kind = "damaged";
    }
    entry.m_nanoseconds = timer.getElapsed(true);
    return entry;
}
}  // namespace

Gateway::Route const Gateway::s_routes[] = {
    {"/", s_readMethods, &Gateway::showPage},
    {"/gateway", s_readMethods, &Gateway::serveFile},
    {"/download.zip", s_readMethods, &Gateway::serveFolder},
    {"/metrics", s_readMethods, &Gateway::showMetrics},
    {"/session", "POST", &Gateway::logIn},
    {"/upload", "POST", &Gateway::upload},
};

Gateway::Gateway(std::string const& root, std::string const& usersFile, std::string accelPrefix)
    : m_root(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      m_accelPrefix(std::move(accelPrefix)),
      m_sessions(usersFile)
{
    if (!m_root.isOpen())
        throw std::system_error(errno, std::generic_category(), root);
}

// A POST waits for a handler that reads its body; all else is served before the server collects a body in
// memory.
void Gateway::install(httplib::Server& server)
{
    server.set_default_headers({{"X-Content-Type-Options", "nosniff"},
                                {"Referrer-Policy", "same-origin"},
                                {"Cross-Origin-Resource-Policy", "same-origin"}});
    server.Post(".*", [this](httplib::Request const& request, httplib::Response& response,
                             httplib::ContentReader const& body) { dispatch(request, response, &body); });
    server.set_pre_routing_handler(
        [this](httplib::Request const& request, httplib::Response& response)
        {
            if (request.method == "POST")
                return httplib::Server::HandlerResponse::Unhandled;
            dispatch(request, response, nullptr);
            return httplib::Server::HandlerResponse::Handled;
        });
    // The server refuses a Range header that it can't read, which RFC 9110 wants to be ignored.
    server.set_error_handler(
        [this](httplib::Request const& request, httplib::Response& response)
        {
            if (response.status == 416 && !response.has_header("Content-Range"))
                dispatch(request, response, nullptr);
        });
    server.set_logger([this](httplib::Request const& request, httplib::Response const& response)
                      { m_journal.end(request, response); });
}

// The server cuts all bodies by the Range header, without a look at If-Range or their size. Without ranges in
// the request, which is no const object, it leaves that to us.
void Gateway::dispatch(httplib::Request const& request, httplib::Response& response,
                       httplib::ContentReader const* body)
{
    Exchange exchange{request, {}, response, body, ""};
    exchange.m_ranges.swap(const_cast<httplib::Request&>(request).ranges);
    try
    {
        serve(exchange);
    }
    catch (...)
    {
        printCurrentException("a request");
        setText(response, 500, "The gateway failed; its log says why.");
    }
    // Only what redirects has read a body to its end. The server would take the rest for the next request.
    if (m_isEnding || (carriesBody(request) && response.status != 303))
        closeAfter(response);
}

void Gateway::serve(Exchange& exchange)
{
    auto const route =
        std::find_if(std::begin(s_routes), std::end(s_routes),
                     [&](Route const& each) { return exchange.m_request.path == each.m_path; });
    if (!exchange.m_body && carriesBody(exchange.m_request))
        return setText(exchange.m_response, 400, "This method takes no body.");
    if (route == std::end(s_routes))
        return setText(exchange.m_response, 404, "There is no such page.");
    if (!std::strstr(route->m_methods, exchange.m_request.method.c_str()))
    {
        exchange.m_response.set_header("Allow", route->m_methods);
        return setText(exchange.m_response, 405, "This method is not allowed here.");
    }
    exchange.m_session = Sessions::find(exchange.m_request.get_header_value("Cookie"));
    (this->*route->m_serve)(exchange);
}

void Gateway::showPage(Exchange& exchange)
{
    if (exchange.m_session.empty())
        return setPage(exchange.m_response, 200, makeLoginPage(""));
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(getPath(m_root)))
        names.insert(entry.path().filename().string());
    std::vector<PageEntry> entries;
    for (std::string const& name : names)
        if (isServableName(name))
            if (PageEntry entry = makeEntry(m_root, name, exchange.m_session); !entry.m_kind.empty())
                entries.push_back(std::move(entry));
    std::string const notice = findCookie(exchange.m_request.get_header_value("Cookie"), "notice");
    setPage(exchange.m_response, 200, makeFilePage(entries, httplib::detail::decode_url(notice, false)));
}

void Gateway::logIn(Exchange& exchange)
{
    std::string text;
    bool const isWhole = (*exchange.m_body)(
        [&text](char const* data, std::size_t size)
        {
            text.append(data, size);
            return text.size() <= s_longestLogin;
        });
    httplib::Request form;
    if (isWhole)
        httplib::detail::parse_query_text(text, form.params);
    if (m_sessions.isPassword(form.get_param_value("user"), form.get_param_value("password")))
        return redirectHome(exchange.m_response, Sessions::begin());
    setPage(exchange.m_response, 403, makeLoginPage("This user and password don’t go together."));
}

void Gateway::serveFile(Exchange& exchange)
{
    std::string const name = findSignedName(exchange.m_request, exchange.m_session);
    if (name.empty())
        return forbid(exchange.m_response);
    auto const file = StoredFile::open(openBelow(m_root, name, 0));
    if (!file)
        return setText(exchange.m_response, 404, "There is no such file any more.");
    describeFile(name, exchange.m_response);
    if (m_accelPrefix.empty() || file->isSealed())
        return respondWithFile(exchange.m_request, exchange.m_ranges, file, exchange.m_response);
    exchange.m_response.status = 200;
    exchange.m_response.set_header("X-Accel-Redirect", m_accelPrefix + percentEncode(name));
}

void Gateway::serveFolder(Exchange& exchange)
{
    std::string const name = findSignedName(exchange.m_request, exchange.m_session);
    if (name.empty())
        return forbid(exchange.m_response);
    OsFile const folder = openBelow(m_root, name, O_DIRECTORY);
    if (!folder.isOpen())
        return setText(exchange.m_response, 404, "There is no such folder any more.");
    auto const archive = makeArchive(folder);
    describeFile(name + ".zip", exchange.m_response);
    exchange.m_response.status = 200;
    sendBytes(archive, 0, archive->getSize(), exchange.m_response);
}

void Gateway::upload(Exchange& exchange)
{
    if (exchange.m_session.empty())
        return forbid(exchange.m_response);
    if (!exchange.m_request.is_multipart_form_data())
        return setText(exchange.m_response, 415, "An upload is a form of type multipart/form-data.");
    std::string const stored = storeUpload(m_root, *exchange.m_body);
    if (stored.empty())
        return setText(exchange.m_response, 400, "There is no whole file here, or its name can't be used.");
    redirectHome(exchange.m_response,
                 "notice=" + percentEncode(stored) + "; Max-Age=10; Path=/; HttpOnly; SameSite=Strict");
}

void Gateway::showMetrics(Exchange& exchange)
{
    exchange.m_response.status = 200;
    exchange.m_response.set_content(m_journal.format(), "text/plain; version=0.0.4");
}
