// A file on its way from a form into the root.

#ifndef ARXGATE_UPLOAD_H
#define ARXGATE_UPLOAD_H

#include <string>

#include <httplib.h>

#include "os/OsFile.h"

// Stores the file of the form, in place of an older one of its name. Returns what was stored, for the user.
// Empty if the form breaks off, has no file or several, or names it wrongly; nothing is stored then.
std::string storeUpload(OsFile const& root, httplib::ContentReader const& form);

#endif
