#pragma once

namespace seat {

// An X server tells of a held key by pairs of release and press; the toolkit finds out that they belong together only
// if both have come when it looks at the first. This has the server send presses alone until the key is really up. Does
// nothing with another window system. After the toolkit's application object was made.
void askForPlainKeyRepeat();

} // namespace seat
