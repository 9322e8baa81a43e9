#include "app/introduction.h"

#include "platform/log.h"
#include "system/files/Descriptor.h"
#include "system/files/root.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

std::string notePath() { return seat::root() + "/.introduced"; }

} // namespace

bool app::isIntroduced() { return ::access(notePath().c_str(), F_OK) == 0; }

void app::setIntroduced() {
    const seat::Descriptor note(::open(notePath().c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!note) NSLog("%s cannot be written: %s", notePath().c_str(), std::strerror(errno));
}
