#include "FileResponse.h"

#include <algorithm>
#include <cctype>
#include <map>

#include "Journal.h"
#include "Text.h"

namespace
{
struct Type
{
    char const* m_name;
    bool m_isShown;  // by the browser itself; other files are saved
};

Type findType(std::string const& fileName)
{
    static std::map<std::string, Type> const types{
        {"css", {"text/css", false}},          {"csv", {"text/csv", false}},
        {"gif", {"image/gif", true}},          {"html", {"text/html", false}},
        {"jpeg", {"image/jpeg", true}},        {"jpg", {"image/jpeg", true}},
        {"json", {"application/json", false}}, {"mp3", {"audio/mpeg", true}},
        {"mp4", {"video/mp4", true}},          {"pdf", {"application/pdf", true}},
        {"png", {"image/png", true}},          {"svg", {"image/svg+xml", false}},
        {"txt", {"text/plain", true}},         {"wav", {"audio/wav", true}},
        {"webm", {"video/webm", true}},        {"webp", {"image/webp", true}},
        {"xml", {"application/xml", false}},   {"zip", {"application/zip", false}}};
    std::string extension = fileName.substr(fileName.rfind('.') + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    auto const found = types.find(extension);
    return found != types.end() ? found->second : Type{"application/octet-stream", false};
}

struct Part
{
    std::uint64_t m_first;
    std::uint64_t m_length;
};

// What a range takes of size bytes: nothing if it begins after them. An end that is left out is negative.
Part resolve(httplib::Range const& range, std::uint64_t size)
{
    auto const last = static_cast<std::uint64_t>(range.second);
    if (range.first < 0)
        return {size - std::min(last, size), std::min(last, size)};
    std::uint64_t const first = std::min(static_cast<std::uint64_t>(range.first), size);
    return {first, (range.second < 0 ? size : std::min(last + 1, size)) - first};
}

// An If-Range that is a date doesn't count: a file may change twice in a second.
bool isRangeWanted(httplib::Request const& request, httplib::Ranges const& ranges, std::string const& etag)
{
    return request.method == "GET" && ranges.size() == 1 && (ranges[0].first >= 0 || ranges[0].second >= 0) &&
           (!request.has_header("If-Range") || request.get_header_value("If-Range") == etag);
}

bool isKnown(httplib::Request const& request, std::string const& etag)
{
    std::string const known = request.get_header_value("If-None-Match");
    return known == "*" || known.find(etag) != std::string::npos;
}
}  // namespace

// The name in the form of RFC 8187, which carries all characters.
void describeFile(std::string const& name, httplib::Response& response)
{
    Type const type = findType(name);
    response.set_header("Content-Type", type.m_name);
    response.set_header("Cache-Control", "private, no-cache");
    response.set_header("Content-Disposition", std::string(type.m_isShown ? "inline" : "attachment") +
                                                   "; filename*=UTF-8''" + percentEncode(name));
}

void respondWithFile(httplib::Request const& request, httplib::Ranges const& ranges,
                     std::shared_ptr<StoredFile const> const& file, httplib::Response& response)
{
    std::string const etag = file->getETag();
    response.set_header("ETag", etag);
    response.set_header("Last-Modified", formatTime("%a, %d %b %Y %H:%M:%S GMT", file->getModified()));
    response.set_header("Accept-Ranges", "bytes");

    response.status = isKnown(request, etag) ? 304 : 200;
    if (response.status == 304)
        return;
    if (!isRangeWanted(request, ranges, etag))
        return sendBytes(file, 0, file->getSize(), response);
    Part const part = resolve(ranges[0], file->getSize());
    std::string const size = "/" + std::to_string(file->getSize());
    response.status = part.m_length != 0 ? 206 : 416;
    if (response.status == 416)
        return response.set_header("Content-Range", "bytes *" + size);
    response.set_header("Content-Range", "bytes " + std::to_string(part.m_first) + "-" +
                                             std::to_string(part.m_first + part.m_length - 1) + size);
    sendBytes(file, part.m_first, part.m_length, response);
}

// One call of the provider writes all. An exception that left it would end the process.
void sendBytes(std::shared_ptr<StoredFile const> const& file, std::uint64_t first, std::uint64_t length,
               httplib::Response& response)
{
    response.set_header("Content-Length", std::to_string(length));
    auto const sendAll = [=](std::size_t, httplib::DataSink& sink)
    {
        sink.done();
        auto const send = [&](char const* data, std::size_t size)
        {
            bool const sent = sink.write(data, size);
            Journal::countSent(sent ? size : 0);
            return sent;
        };
        try
        {
            return file->read(first, length, send);
        }
        catch (...)
        {
            printCurrentException("a response");
            return false;
        }
    };
    setProvider(response, sendAll);
}

void setProvider(httplib::Response& response, httplib::ContentProviderWithoutLength provider)
{
    std::string const type = response.get_header_value("Content-Type");
    response.headers.erase("Content-Type");  // the next call adds one
    response.set_content_provider(type, std::move(provider));
}
