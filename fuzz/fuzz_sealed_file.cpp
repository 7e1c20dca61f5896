// A changed encrypted file is never read to a clean end, and what is read of it before is what was written.
// The input says how to change a file, which is written afresh: its bytes are different in each process.

#include <iterator>

#include "fuzz/RunningCrypto.h"

namespace
{
std::size_t constexpr s_sizeLimit = 1 << 20;

std::string seal(std::string const& plain)
{
    CryptoSession session;
    mustHold(session.setUp("<setInfoDocument><action>CipherStream</action><fileOutput>sealed</fileOutput>"
                           "</setInfoDocument>") == KRY_SUCCESS,
             "a file can be begun");
    session.write(plain);
    session.setUp("<setInfoDocument><dataLocation>file</dataLocation></setInfoDocument>");
    session.write("");
    std::ifstream file("sealed", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Whether there was a clean end; plain receives what came before it.
bool unseal(std::string const& sealed, std::string& plain)
{
    std::ofstream("mutant", std::ios::binary) << sealed;
    CryptoSession session;
    std::int32_t status = session.setUp(
        "<setInfoDocument><action>DecipherStream</action><fileInput>mutant"
        "</fileInput></setInfoDocument>");
    for (std::size_t before = 1; status == KRY_SUCCESS && before != plain.size();)
        before = plain.size(), status = session.read(plain);
    return status == KRY_SUCCESS;
}

// One change, wherever the input says. other is a second file of the same data.
void change(std::string& sealed, std::string const& other, FuzzInput& input)
{
    unsigned const operation = input.takeByte() % 7;
    std::size_t const at = input.takeNumber() % (sealed.size() + 1);
    std::size_t const from = input.takeNumber() % (other.size() + 1);
    std::size_t const count = input.takeNumber() % 70000;
    switch (operation)
    {
    case 0:
        sealed.resize(at);
        break;
    case 1:
        sealed.erase(at, count);
        break;
    case 2:
        sealed.insert(at, sealed.substr(std::min(from, sealed.size()), count));
        break;
    case 3:
        sealed.replace(at, count, other, from, count);
        break;
    case 4:
        sealed.insert(at, input.takeShortText());
        break;
    case 5:
        sealed.append(count, static_cast<char>(input.takeByte()));
        break;
    default:
        if (at < sealed.size())
            sealed[at] = static_cast<char>(sealed[at] ^ static_cast<char>(from));
    }
}
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static RunningCrypto s_crypto;
    static std::string const s_plains[] = {"", "x", std::string(65536, 'y'), std::string(2 * 65536 + 5, 'z')};
    static std::string const s_files[] = {seal(s_plains[0]), seal(s_plains[1]), seal(s_plains[2]),
                                          seal(s_plains[3])};
    static std::string const s_others[] = {seal(s_plains[0]), seal(s_plains[1]), seal(s_plains[2]),
                                           seal(s_plains[3])};

    FuzzInput input(data, size);
    unsigned const which = input.takeByte() % 4;
    std::string sealed = s_files[which];
    while (!input.empty() && sealed.size() < s_sizeLimit)
        change(sealed, s_others[which], input);
    std::string plain;
    bool const isWhole = unseal(sealed, plain);
    mustHold(isWhole == (sealed == s_files[which] || sealed == s_others[which]),
             "only what was written is read to a clean end");
    mustHold(s_plains[which].compare(0, plain.size(), plain) == 0, "what is read is what was written");
    return 0;
}
