// The routes of the gateway.
//
//     GET  /                   the files of the root as signed links, or the login
//     POST /session            begins a session:  user=NAME&password=PASSWORD
//     GET  /gateway?...        a file of the root
//     GET  /download.zip?...   a folder of the root
//     POST /upload             stores a file (multipart/form-data: store, which is "sealed" or "plain"; file)
//     GET  /metrics            for Prometheus; needs no session, so keep it from the outside
//
// A signed link names a file and a session. It is made again and compared as a whole. The server's threads
// serve requests at the same time.

#ifndef ARXGATE_GATEWAY_H
#define ARXGATE_GATEWAY_H

#include <atomic>
#include <string>

#include <httplib.h>

#include "os/OsFile.h"

#include "Journal.h"
#include "Sessions.h"

class Gateway
{
public:
    // root is the folder of the stored files. accelPrefix: see --accel; empty without.
    Gateway(std::string const& root, std::string const& usersFile, std::string accelPrefix);

    // The gateway must outlive the server.
    void install(httplib::Server& server);
    // From now on each response is the last of its connection. Any thread may call.
    void end() { m_isEnding = true; }

private:
    // A request on its way through the gateway.
    struct Exchange
    {
        httplib::Request const& m_request;
        httplib::Ranges m_ranges;
        httplib::Response& m_response;
        httplib::ContentReader const* m_body;  // null for methods without
        std::string m_session;
    };
    struct Route
    {
        char const* m_path;
        char const* m_methods;
        void (Gateway::*m_serve)(Exchange& exchange);
    };

    void dispatch(httplib::Request const& request, httplib::Response& response,
                  httplib::ContentReader const* body);
    void serve(Exchange& exchange);
    void showPage(Exchange& exchange);
    void logIn(Exchange& exchange);
    void serveFile(Exchange& exchange);
    void serveFolder(Exchange& exchange);
    void upload(Exchange& exchange);
    void showMetrics(Exchange& exchange);

    static Route const s_routes[];

    OsFile m_root;
    std::string m_accelPrefix;
    Sessions m_sessions;
    Journal m_journal;
    std::atomic<bool> m_isEnding{false};
};

#endif
