#include "Commands.h"
#include "InputFile.h"
#include "OutputFile.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"

namespace
{
class StandardOutput : public OJDOutputStream
{
public:
    void write(char const* data, std::size_t size) override { printBytes(data, size); }
};

int encode(bool const& trailingTabOnly)
{
    StandardOutput output;
    ARXOJDQuotedPrintableOutputStream filter(output, trailingTabOnly);
    readFile("-", [&filter](char const* data, std::size_t size) { filter.write(data, size); });
    return 0;  // the filter's end brings out its last line; what fails there shows when the output is flushed
}
}  // namespace

void addQpCommand(CLI::App& app, Action& chosen)
{
    auto const [command, trailingTabOnly] =
        addCommand(app, chosen, "qp", "Encode standard input as quoted-printable text", encode);
    command->add_flag("--trailing-tab-only", *trailingTabOnly, "Leave tabs literal unless they end a line");
}
