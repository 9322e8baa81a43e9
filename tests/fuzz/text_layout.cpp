// Any bytes as text, at widths and numbers of lines that the first three bytes say: it has a finite size, keeps to its
// width, and can be drawn.

#include "kit/seat.h"
#include "platform/quartz/CGContext.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIImage.h"
#include "tests/fuzz/support.h"

#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    const double width = data[0] < 250 ? data[0] * 2.0 : HUGE_VAL;
    const int lines = data[1] % 5;
    const auto font = UIFont::systemFontOfSize(1 + data[2] % 40);
    const std::string text = fuzz::text(data + 3, size - 3);
    // Two runs, cut anywhere, so inside a character too.
    const std::size_t cut = text.empty() ? 0 : data[2] % text.size();
    const auto black = UIColor::blackColor()->CGColor();
    const seat::TextRun runs[] = {{text.substr(0, cut), font, black}, {text.substr(cut), font, black}};

    const auto measured = seat::measureText(runs, width, lines);
    fuzz::expect(std::isfinite(measured.size.width) && std::isfinite(measured.size.height) &&
                     measured.size.width >= 0 && measured.size.height >= 0 && std::isfinite(measured.firstBaseline),
                 "text has a size");
    const auto again = seat::measureText(runs, width, lines);
    fuzz::expect(again.size.width == measured.size.width && again.size.height == measured.size.height,
                 "the same text has the same size");

    UIGraphicsBeginImageContextWithOptions({40, 40}, false, 1);
    seat::drawText(UIGraphicsGetCurrentContext(), runs, {{-5, 3}, {std::min(width, 50.0), 30}},
                   static_cast<seat::TextAlignment>(data[1] % 3), lines);
    UIGraphicsEndImageContext();
    return 0;
}
