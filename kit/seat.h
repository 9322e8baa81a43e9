#pragma once

// All that the frameworks in kit/ need from below, and nothing else: time, the log, files, preferences, text, and a
// painter for what kit/quartz does not paint itself. system/ and desktop/ define what is declared here; another seat
// defines it in its own way (tests/memory_seat/ does, in memory), and is chosen when a program is linked. Functions are
// for the main thread unless they say more.

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSError.h"
#include "platform/foundation/id.h"
#include "platform/foundation/time.h"
#include "platform/quartz/CGContext.h"
#include "platform/uikit/UIFont.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace seat {

// ---- time

// Where the one clock (`CACurrentMediaTime`, `gettimeofday`) takes its time from. Read from any thread.
class ClockSource {
public:
    virtual ~ClockSource() = default;
    // Seconds that never go back.
    virtual double mediaTime() const = 0;
    virtual platform::timeval timeOfDay() const = 0;
};

// Non-owning; nullptr brings back the system's clock. The source must outlive its use.
void setClockSource(const ClockSource* source);

// True while a source other than the system's is set: time then passes only when somebody says so.
bool clockIsHeld();

// ---- threads and locale; any thread

// The thread on which the process began.
bool isMainThread();

// While one lives, printf on this thread writes numbers as the C locale has them, whatever the user's is.
class PlainNumbers {
public:
    PlainNumbers();
    ~PlainNumbers();
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;

private:
    void* m_previous = nullptr;
};

// ---- log

// Where a logged line goes, which has no line end and at most a kilobyte. Any thread, one at a time; takes no memory.
void writeLogLine(std::string_view line) noexcept;

// ---- files

// A file by its real path, as a whole. Any thread. nil, and `error` set if it is not null, when the file cannot be
// read, is no regular file (a pipe is not waited for), or is larger than `maximumLength` bytes. The error's code is the
// system's number, its text names the operation, the file and the reason; nothing is logged here.
std::shared_ptr<NSData> readFile(const std::string& path, std::size_t maximumLength, std::shared_ptr<NSError>* error);

// ---- preferences: a domain is the file "<domain>.plist" in the phone's preferences folder. Any thread.

// The file is read afresh. nil when the key, or the file, is absent, or when the file cannot be read (logged once a
// failure, not once a read). A value that waits to be stored comes before the file's.
id preferenceValue(const std::string& domain, const std::string& key);

// What has become of a change.
enum class PreferenceWrite {
    Stored,  // it is in the file
    Pending, // a worker waits for another writer, or writes a large file: the value is read back from now on
    Failed,  // it is lost, as has been logged: what the file holds is read back
};

// Changes one key and keeps what else the file holds as it is by then; nil removes the key. Never waits for another
// program. `ended` is called once if this gives back Pending, with how it ended, on a worker's thread.
PreferenceWrite setPreferenceValue(const std::string& domain, const std::string& key, const id& value,
                                   std::function<void(PreferenceWrite)> ended = {});

// ---- text

struct FontMetrics {
    double ascent = 0; // of a font of size 1
    double descent = 0;
};
FontMetrics metricsOfSystemFont(bool bold);

struct TextRun {
    std::string text; // UTF-8, "\n" begins a new line
    std::shared_ptr<UIFont> font;
    CGColorRef color; // nil draws nothing
};

enum class TextAlignment { Left, Center, Right };

struct TextSize {
    CGSize size;              // points; edges on device pixels of the main screen
    double firstBaseline = 0; // points from the top
};

// Wraps at words (and inside one that is too long) at `maxWidth` points, into at most `lines` lines (0: as many as it
// takes); text beyond the last line is cut with an ellipsis. Empty text has no size. Without fonts text has a height
// and no width. Works on any thread; what it has shaped is kept on the main one.
TextSize measureText(std::span<const TextRun> runs, double maxWidth, int lines);

// Laid out in the same way at the rectangle's width, as a block in the middle of its height, baselines on device
// pixels. A nil context draws nothing.
void drawText(CGContextRef context, std::span<const TextRun> runs, CGRect rect, TextAlignment alignment, int lines);

// ---- painting. Rectangles, rounded rectangles, convex paths, gradients and pictures that are not scaled are painted
// by kit/quartz itself; a painter is made for a target only when something else is to be drawn into it.

struct Clip;      // kit/quartz/Clip.h
struct PixelRect; // kit/quartz/pixels.h
struct PixelTarget;
class PixelRows;

enum class FillRule { Winding, EvenOdd };

// Draws into a target's pixels, source over, edges anti-aliased. Transforms are finite. Coordinates that are no numbers
// and colours that paint nothing draw nothing. Belongs to the thread that made it.
class Painter {
public:
    virtual ~Painter() = default;
    // Of all that is drawn from now on. The rectangle lies in the target; nothing is drawn before the first call.
    virtual void setClip(const Clip& clip) = 0;
    virtual void fillPath(const CGPath& path, const CGAffineTransform& toPixels, FillRule rule, const CGColor& color,
                          double alpha) = 0;
    // The rows' pixels, as far as they lie in `rect` and in the path, which is in device pixels.
    virtual void fillPath(const CGPath& path, const PixelRect& rect, PixelRows& rows) = 0;
    // `lineWidth` in the path's units, above 0; flat ends, mitred corners.
    virtual void strokePath(const CGPath& path, const CGAffineTransform& toPixels, double lineWidth,
                            const CGColor& color, double alpha) = 0;
    // Premultiplied pixels without padding; `toPixels` places the unit square that they fill.
    virtual void drawImage(const std::uint32_t* pixels, int width, int height, const CGAffineTransform& toPixels,
                           double alpha) = 0;
};

// Never nil. The pixels must outlive the painter.
std::unique_ptr<Painter> makePainter(const PixelTarget& target);

} // namespace seat
