#include <cstdint>
#include <iomanip>
#include <iostream>

#include "Commands.h"
#include "NEBCore/I18NString.h"
#include "text/ARNEBI18NBuffer.h"

namespace
{
struct ChecksumOptions
{
    std::string m_text;
    bool m_fold = false;
};

int checksum(ChecksumOptions const& options)
{
    ARNEBI18NBuffer const buffer(I18NString(options.m_text.c_str()));
    std::uint32_t const value = options.m_fold ? buffer.getCssCrc() : buffer.getCrc();
    std::cout << std::hex << std::setw(8) << std::setfill('0') << value << '\n';
    return 0;
}
}  // namespace

void addChecksumCommand(CLI::App& app, Action& chosen)
{
    auto const [command, options] =
        addCommand(app, chosen, "checksum",
                   "Print the CRC-32 of a text in UTF-16, terminator included. It belongs to the byte "
                   "order of this machine: don't exchange it with machines of the other order",
                   checksum);
    command->add_option("TEXT", options->m_text, "The text, UTF-8")->required();
    command->add_flag("--fold", options->m_fold, "Fold upper-case letters first");
}
