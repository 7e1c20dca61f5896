#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include "NEBCFGAPI/NEBConfigurationStore.h"
#include "frame/Arxium.h"
#include "text/NEBUtHRTimer.h"

#include "Gateway.h"
#include "Text.h"

namespace
{
std::size_t constexpr s_threads = 256;  // connections served at once

struct Options
{
    std::string m_root;
    std::string m_listen = "127.0.0.1:8080";
    std::string m_config;
    std::string m_users;
    std::string m_certificate;
    std::string m_key;
    std::string m_accelPrefix;
};

void addOptions(CLI::App& app, Options& options)
{
    app.add_option("--root", options.m_root, "Folder of the stored files")->required();
    app.add_option("--listen", options.m_listen, "HOST:PORT; port 0 chooses a free one")
        ->capture_default_str();
    app.add_option("--config", options.m_config, "Settings of the library, a line key=value each");
    app.add_option("--users", options.m_users, "Who may log in, a line USER:HASH of crypt(5) each")
        ->required();
    CLI::Option* const certificate = app.add_option("--tls-cert", options.m_certificate, "Certificates, PEM");
    app.add_option("--tls-key", options.m_key, "Private key of the certificate, PEM")->needs(certificate);
    app.add_option("--accel", options.m_accelPrefix,
                   "Let nginx send plain files: X-Accel-Redirect with this prefix");
}

std::unique_ptr<httplib::Server> makeServer(Options const& options)
{
    if (options.m_certificate.empty())
        return std::make_unique<httplib::Server>();
    auto server = std::make_unique<httplib::SSLServer>(options.m_certificate.c_str(), options.m_key.c_str());
    if (!server->is_valid())
        throw std::runtime_error(options.m_certificate + ": no certificate with its key");
    return server;
}

// Returns the socket. The server asks for a queue of 5 connections only, so its socket listens once more.
int bind(httplib::Server& server, std::string const& address)
{
    std::size_t const colon = address.rfind(':');
    std::string const host = address.substr(0, colon);
    char const* const end = address.data() + address.size();
    std::uint16_t wanted = 0;
    auto const [rest, error] = std::from_chars(address.data() + colon + 1, end, wanted);
    if (colon == std::string::npos || error != std::errc() || rest != end)
        throw std::runtime_error(address + ": no HOST:PORT");
    int listener = -1;
    server.set_socket_options(
        [&listener](int socket)
        {
            int const yes = 1;
            ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
            listener = socket;
        });
    int port = wanted;
    if (wanted == 0)
        port = server.bind_to_any_port(host);
    else if (!server.bind_to_port(host, wanted))
        port = -1;
    if (port < 0 || ::listen(listener, SOMAXCONN) != 0)
        throw std::runtime_error(address + ": can't be listened to");
    std::printf("arxgate listens on port %d\n", port);
    std::fflush(stdout);
    return listener;
}

// Ends by SIGTERM or SIGINT, after the requests in flight. The server's own stop would drop the bodies that
// it has not begun to send; without its listening socket it ends as soon as all connections are closed.
void serve(Options const& options)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);  // in all threads; this one waits for them

    Gateway gateway(options.m_root, options.m_users, options.m_accelPrefix);
    auto const server = makeServer(options);
    server->new_task_queue = [] { return new httplib::ThreadPool(s_threads); };
    server->set_keep_alive_max_count(1000000);
    server->set_write_timeout(60);
    server->set_read_timeout(60);
    server->set_tcp_nodelay(true);
    gateway.install(*server);
    int const listener = bind(*server, options.m_listen);
    std::thread serving(
        [&server]
        {
            server->listen_after_bind();
            ::kill(::getpid(), SIGTERM);  // if it ends by itself
        });
    int signal = 0;
    sigwait(&signals, &signal);
    gateway.end();
    ::shutdown(listener, SHUT_RDWR);
    serving.join();
}

int run(int argc, char** argv)
{
    Options options;
    CLI::App app("Serves stored files by signed links.", "arxgate");
    addOptions(app, options);
    CLI11_PARSE(app, argc, argv);

    if (!options.m_config.empty())
        NEBConfigurationStore::getStore().load(options.m_config);
    Arxium::initialize();
    NEBUtHRTimer::initialize();
    serve(options);
    NEBUtHRTimer::terminate();
    Arxium::terminate();
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    try
    {
        return run(argc, argv);
    }
    catch (...)
    {
        printCurrentException("main");
        return 1;
    }
}
