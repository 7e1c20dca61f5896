#include <iostream>
#include <memory>

#include "Commands.h"
#include "InputFile.h"
#include "streams/ARXOJDQuotedPrintableOutputStream.h"

namespace
{
class StandardOutput : public OJDOutputStream
{
public:
    void write(char const* data, std::size_t size) override
    {
        std::cout.write(data, static_cast<std::streamsize>(size));
    }
};

int encode(bool trailingTabOnly)
{
    StandardOutput output;
    InputFile input("-");
    ARXOJDQuotedPrintableOutputStream filter(output, trailingTabOnly);
    for (auto* piece = &input.readPiece(); !piece->empty(); piece = &input.readPiece())
        filter.write(piece->data(), piece->size());
    return 0;  // the filter's end brings out its last line; what fails there shows when the output is flushed
}
}  // namespace

void addQpCommand(CLI::App& app, Action& chosen)
{
    auto const trailingTabOnly = std::make_shared<bool>(false);
    CLI::App* command = app.add_subcommand("qp", "Encode standard input as quoted-printable text");
    command->add_flag("--trailing-tab-only", *trailingTabOnly, "Leave tabs literal unless they end a line");
    command->callback([&chosen, trailingTabOnly] { chosen = [=] { return encode(*trailingTabOnly); }; });
}
