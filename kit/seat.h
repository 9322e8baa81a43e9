#pragma once

// All that the frameworks in kit/ need from below, and nothing else: time, files, the preferences, and a painter with
// text. system/ and desktop/ define what is declared here; another seat defines it in its own way (tests/memory_seat/
// does, in memory), and is chosen when a program is linked. Functions are for the main thread unless they say more.

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSError.h"
#include "platform/foundation/id.h"
#include "platform/foundation/time.h"
#include "platform/quartz/CALayer.h"
#include "platform/quartz/CGContext.h"
#include "platform/uikit/UIFont.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
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

// ---- files

// A file by its real path, as a whole. Any thread. nil, and `error` set if it is not null, when the file cannot be
// read, is no regular file (a pipe is not waited for), or is larger than `maximumLength` bytes. The error's code is the
// system's number, its text names the operation, the file and the reason; nothing is logged here.
std::shared_ptr<NSData> readFile(const std::string& path, std::size_t maximumLength, std::shared_ptr<NSError>* error);

// ---- preferences: a domain is the file "<domain>.plist" in the phone's preferences folder. Any thread.

// The file is read afresh. nil when the key, or the file, is absent, or when the file cannot be read (logged once a
// failure, not once a read). A value that is still to be stored comes before the file's.
id preferenceValue(const std::string& domain, const std::string& key);

// Changes one key and keeps what else the file holds as it is by then; nil removes the key. True when it is in the file
// as this returns. Otherwise the reason is logged and the value is kept for the session: this process reads it back,
// each later write to the domain stores it too, and a lock that was merely held for too long is waited for by a worker.
// `storedLater` is called when such a later write has stored it, on the thread that wrote.
bool setPreferenceValue(const std::string& domain, const std::string& key, const id& value,
                        std::function<void()> storedLater = {});

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

// ---- painting; the drawing calls of platform/quartz/CGContext.h and the image contexts of platform/uikit/UIImage.h
// are the seat's too

// Makes the context the calling thread's current one while this lives; they nest.
class CurrentContext {
public:
    explicit CurrentContext(CGContextRef context);
    ~CurrentContext();
    CurrentContext(const CurrentContext&) = delete;
    CurrentContext& operator=(const CurrentContext&) = delete;
};

struct PixelTarget;

// Draws what the tree shows now (see `advanceAnimations`) into the damaged places, and nothing beside them. What no
// layer covers is left as it is. `scale`: pixels a point; damage is in the root's superspace, where (0, 0) is the
// target's corner, and is taken out to whole pixels. Layer delegates draw meanwhile.
void renderLayerTree(CALayer& root, const PixelTarget& target, double scale, std::span<const CGRect> damageInPoints);

} // namespace seat
