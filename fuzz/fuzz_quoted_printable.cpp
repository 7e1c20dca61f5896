// Quoted-printable text, decoded by the rules of RFC 2045, gives the data back, with CRLF for each line end
// and without a carriage return at the very end. It is the same text however the data is split among the
// calls. No line passes 76 characters or ends in a blank; there is nothing but printable ASCII.

#include "fuzz/Fuzz.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"

namespace
{
struct TextStream : OJDOutputStream
{
    void write(char const* data, std::size_t size) override { m_text.append(data, size); }
    std::string m_text;
};

// splits: the sizes of the calls, over and over; none for one call.
std::string encode(std::string_view data, bool onlyTrailingTab, std::string const& splits)
{
    TextStream target;
    {
        ARXOJDQuotedPrintableOutputStream stream(target, onlyTrailingTab);
        for (std::size_t i = 0; !data.empty(); ++i)
        {
            std::size_t const wanted =
                splits.empty() ? data.size() : 1 + static_cast<unsigned char>(splits[i % splits.size()]);
            std::size_t const size = std::min(wanted, data.size());
            stream.write(data.data(), size);
            data.remove_prefix(size);
        }
    }
    return target.m_text;
}

int digit(char c)
{
    mustHold((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'), "escapes are hexadecimal, in capitals");
    return c <= '9' ? c - '0' : c - 'A' + 10;
}

void decodeLine(std::string_view line, std::string& data)
{
    mustHold(line.size() <= 76, "no line passes 76 characters");
    mustHold(line.empty() || (line.back() != ' ' && line.back() != '\t'), "no line ends in a blank");
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        mustHold((line[i] >= ' ' && line[i] <= '~') || line[i] == '\t', "all characters are printable");
        if (line[i] != '=')
            data += line[i];
        else if (i + 1 < line.size())
        {
            mustHold(i + 2 < line.size(), "escapes are whole");
            data += static_cast<char>(digit(line[i + 1]) << 4 | digit(line[i + 2]));
            i += 2;
        }
    }
}

std::string decode(std::string_view text)
{
    std::string data;
    for (std::size_t end; (end = text.find("\r\n")) != std::string_view::npos; text.remove_prefix(end + 2))
    {
        decodeLine(text.substr(0, end), data);
        if (end == 0 || text[end - 1] != '=')
            data += "\r\n";
    }
    mustHold(text.empty() || text.back() != '=', "no soft line break ends the text");
    decodeLine(text, data);
    return data;
}

std::string withLineEnds(std::string const& data)
{
    std::string result;
    for (char const c : data)
        result += c == '\n' && (result.empty() || result.back() != '\r') ? "\r\n" : std::string(1, c);
    if (!result.empty() && result.back() == '\r')
        result.pop_back();
    return result;
}
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    FuzzInput input(data, size);
    bool const onlyTrailingTab = input.takeByte() % 2 != 0;
    std::string const splits = input.takeShortText();
    std::string const bytes = input.takeRest();
    std::string const text = encode(bytes, onlyTrailingTab, "");
    mustHold(text == encode(bytes, onlyTrailingTab, splits), "the text does not depend on the splits");
    mustHold(onlyTrailingTab || text.find('\t') == std::string::npos, "tabs are encoded if asked for");
    mustHold(decode(text) == withLineEnds(bytes), "the text gives the data back");
    return 0;
}
