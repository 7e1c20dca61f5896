// A file that is written beside its target and takes the target's name only when it is complete.

#ifndef ARXHOST_PLACEDFILE_H
#define ARXHOST_PLACEDFILE_H

#include <string>

class PlacedFile
{
public:
    // A target that exists and is no regular file is refused.
    explicit PlacedFile(std::string target);
    // Removes a file that was not placed.
    ~PlacedFile();

    PlacedFile(PlacedFile const&) = delete;
    PlacedFile& operator=(PlacedFile const&) = delete;

    // Where to write.
    std::string const& getPath() const { return m_path; }
    void place();

private:
    std::string m_target;
    std::string m_path;
};

#endif
