// A folder as a zip archive.

#ifndef ARXGATE_FOLDERARCHIVE_H
#define ARXGATE_FOLDERARCHIVE_H

#include <memory>

#include "StoredFile.h"

// All regular files below the folder, sealed ones as plain bytes; symbolic links are left out. Raises
// ARXException beyond 4 GiB.
std::shared_ptr<StoredFile> makeArchive(OsFile const& folder);

#endif
