// Makes a response of a stored file as RFC 9110 wants it.

#ifndef ARXGATE_FILERESPONSE_H
#define ARXGATE_FILERESPONSE_H

#include <memory>
#include <string>

#include <httplib.h>

#include "StoredFile.h"

// Sets Content-Type by the extension of the name, Content-Disposition, and Cache-Control: a browser may keep
// the file but asks again each time. Browsers are to show only what can't run scripts here.
void describeFile(std::string const& name, httplib::Response& response);

// The whole file, or the range that the request asks for, or 304 or 416. Several ranges at once give the
// whole file, as RFC 9110 allows. ranges are those of the request.
void respondWithFile(httplib::Request const& request, httplib::Ranges const& ranges,
                     std::shared_ptr<StoredFile const> const& file, httplib::Response& response);

// The bytes alone. If reading fails on the way, the connection ends before the body does.
void sendBytes(std::shared_ptr<StoredFile const> const& file, std::uint64_t first, std::uint64_t length,
               httplib::Response& response);

// Sends what provider writes, as the Content-Type that is set already. A provider that returns false closes
// the connection.
void setProvider(httplib::Response& response, httplib::ContentProviderWithoutLength provider);

#endif
