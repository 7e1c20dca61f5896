// A path either has no canonical form (empty, or above its root) or the one that the model gives, and that is
// a form for good: normalising it again changes nothing, unless a name that looks like a drive prefix has
// become the first. A tail is the end of its path, comparison does not depend on the order, and "absolute"
// agrees between a path, its canonical form and what getAbsolutePath makes of it.

#include "NEBCore/NEBAssertError.h"
#include "fuzz/Fuzz.h"
#include "fuzz/PathModel.h"
#include "path/ARXFmDir.h"

namespace
{
std::string normalize(std::string const& path)
{
    std::string out = "untouched";
    try
    {
        ARXFmDir::getNormalizedPath(path, out);
    }
    catch (NEBAssertError const&)
    {
        mustHold(out == "untouched", "a failure leaves the out string");
        return "";
    }
    return out;
}

void checkNormalized(std::string const& path)
{
    std::string const once = normalize(path);
    mustHold(once == (path.empty() ? "" : modelNormalizedPath(path)), "the form is the model's");
    if (!once.empty() && modelHasDrive(once) == modelHasDrive(path))
        mustHold(once == normalize(once), "normalising twice changes nothing");
}

void checkPair(std::string const& first, std::string const& second)
{
    std::uint64_t const offset = ARXFmDir::findDifferentiatingPathOffset(first.c_str(), second.c_str());
    mustHold(offset == ARXFmDir::findDifferentiatingPathOffset(second.c_str(), first.c_str()),
             "the first difference does not depend on the order");
    bool const isEqual = offset == first.size() && offset == second.size();
    mustHold(isEqual == ARXFmDir::isEquivalentPath(first.c_str(), second.c_str()),
             "equivalent paths have no difference");
    std::string out;
    try
    {
        ARXFmDir::getPathTail(out, first.c_str(), second.c_str());
        mustHold(second.size() >= out.size() && second.substr(second.size() - out.size()) == out,
                 "a tail is the end of its path");
        ARXFmDir::getAbsolutePath(first.c_str(), second.c_str(), out);
        mustHold(!ARXFmDir::isAbsolutePath(first.c_str()) || ARXFmDir::isAbsolutePath(out.c_str()),
                 "an absolute directory makes absolute paths");
    }
    catch (NEBAssertError const&)
    {
        mustHold(second.empty() || (modelHasDrive(first) && modelHasDrive(second)),
                 "only empty paths and two drives are refused");
    }
}
}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    FuzzInput input(data, size);
    std::string const text = input.takeRest();
    std::size_t const end = text.find('\0');
    std::string const first = text.substr(0, end);
    std::string const second = end == std::string::npos ? "" : text.substr(end + 1).c_str();
    checkNormalized(first);
    checkNormalized(second);
    checkPair(first, second);
    return 0;
}
