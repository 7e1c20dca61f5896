// Who may see the page and use its links.
//
// Gateways share no memory, so a session is its own proof: the cookie holds an identifier and a signature of
// it, which every gateway with the same key file can check. The price: a session ends by its time, by the
// browser that forgets the cookie, or for all users at once by a new key, but a single one can't be called
// back.
//
// Any number of threads may call.

#ifndef ARXGATE_SESSIONS_H
#define ARXGATE_SESSIONS_H

#include <map>
#include <string>

class Sessions
{
public:
    // usersFile holds a line USER:HASH for each user, with a hash of crypt(5), as "openssl passwd -6" makes
    // it. Empty lines and those that begin with # are skipped.
    explicit Sessions(std::string const& usersFile);

    bool isPassword(std::string const& user, std::string const& password) const;
    // A value for the Set-Cookie header that begins a session. Browsers send it back by TLS alone, except on
    // the loopback.
    static std::string begin();
    // The session's identifier from the Cookie header: 40 characters, of them 128 random bits. Empty without
    // a session, or for one whose time is over.
    static std::string find(std::string const& cookies);

private:
    std::map<std::string, std::string> m_hashes;  // by user
};

#endif
