#pragma once

// Events of the accessibility bus that the toolkit has no name for, or tells wrongly. They go out over the toolkit's
// own connection, so that they come from where its nodes are, and wait for nobody. Without that connection they do
// nothing. Main thread.

#include <QString>

class QAccessibleInterface;

namespace seat {

enum class Announcement { Polite = 1, Assertive = 2 }; // as the bus numbers them: at the next pause, or at once

// To be spoken or shown as it is, wherever the user is; an empty text is not.
void announce(QAccessibleInterface& node, const QString& text, Announcement kind);
// The toolkit's own event says how many children there are where it should say which one it is.
enum class ChildEvent { Added, Removed };
void tellOfChild(QAccessibleInterface& parent, QAccessibleInterface& child, ChildEvent event, int place);
// By the bus's own word for the state: the toolkit tells of few.
void tellState(QAccessibleInterface& node, const char* state, bool has);

} // namespace seat
