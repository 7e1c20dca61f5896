#include <cstdio>
#include <memory>

#include "host/Commands.h"
#include "host/Failure.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"

namespace
{
class StandardOutput : public OJDOutputStream
{
public:
    void write(char const* data, std::size_t size) override
    {
        if (std::fwrite(data, 1, size, stdout) != size)
            systemFailed(NEB_HERE, "Standard output can't be written");
    }
    void flush() override
    {
        // The filter drops what its last line raises; the stream remembers that it failed.
        if (std::fflush(stdout) != 0 || std::ferror(stdout))
            systemFailed(NEB_HERE, "Standard output can't be written");
    }
};

int encode(bool trailingTabOnly)
{
    StandardOutput output;
    {
        ARXOJDQuotedPrintableOutputStream filter(output, trailingTabOnly);
        char buffer[65536];
        while (std::size_t const count = std::fread(buffer, 1, sizeof buffer, stdin))
            filter.write(buffer, count);
    }  // the filter's end brings out its last line
    if (std::ferror(stdin))
        systemFailed(NEB_HERE, "Standard input can't be read");
    output.flush();
    return 0;
}
}  // namespace

void addQpCommand(CLI::App& app, Action& chosen)
{
    auto const trailingTabOnly = std::make_shared<bool>(false);
    CLI::App* command = app.add_subcommand("qp", "Encode standard input as quoted-printable text");
    command->add_flag("--trailing-tab-only", *trailingTabOnly, "Leave tabs literal unless they end a line");
    command->callback([&chosen, trailingTabOnly] { chosen = [=] { return encode(*trailingTabOnly); }; });
}
