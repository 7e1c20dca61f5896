// Runs a fuzz target over files and over the files of folders, where libFuzzer is not at hand.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/Fuzz.h"

namespace
{
void replay(std::filesystem::path const& path)
{
    std::ifstream file(path, std::ios::binary);
    std::vector<char> const bytes{std::istreambuf_iterator<char>(file), {}};
    mustHold(file.good() || file.eof(), "an input can be read");
    std::fprintf(stderr, "%s\n", path.c_str());  // the last one is the one that broke
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
}
}  // namespace

int main(int argc, char** argv)
{
    int count = 0;
    for (std::filesystem::path const path : std::vector<char*>(argv + 1, argv + argc))
    {
        if (std::filesystem::is_regular_file(path))
            replay(path), ++count;
        if (std::filesystem::is_directory(path))
            for (auto const& entry : std::filesystem::recursive_directory_iterator(path))
                if (entry.is_regular_file())
                    replay(entry.path()), ++count;
    }
    std::printf("%d inputs\n", count);
    return count == 0 ? 1 : 0;
}
