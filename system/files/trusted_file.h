#pragma once

#include "system/files/Descriptor.h"

#include <string>

struct stat;

namespace seat {

// Why somebody who is neither this user nor the administrator could change what has this status, as the rest of a
// sentence that begins with its name ("belongs to user 1234"); empty when nobody else can. A group in which the owner
// is alone is nobody else.
std::string foreignHand(const struct stat& status);

// Opens a regular file for reading, at a real path. Neither the file nor its folder may be a link, and they and all
// folders above must be this user's or the administrator's and writable by nobody else; above the file's own folder
// also one in which everybody may write but nobody take away (as /tmp). None on failure: `problem` is then the rest of
// a sentence that begins with the file's name. Any thread.
Descriptor openTrustedFile(const std::string& path, std::string& problem);

} // namespace seat
