#include <memory>
#include <utility>

#include "host/Commands.h"

void addFilePairCommand(CLI::App& app, Action& chosen, FilePairTexts const& texts,
                        void (*work)(std::string const& source, std::string const& target))
{
    auto const paths = std::make_shared<std::pair<std::string, std::string>>();
    CLI::App* command = app.add_subcommand(texts.m_name, texts.m_description);
    command->add_option("FILE", paths->first, texts.m_source)->required();
    command->add_option("OUT", paths->second, texts.m_target)->required();
    command->callback(
        [&chosen, paths, work]
        {
            chosen = [paths, work]
            {
                work(paths->first, paths->second);
                return 0;
            };
        });
}
