// A message's body of any bytes, as the composer shows it and as it goes to the mail program.

#include "desktop/mail/html_blocks.h"
#include "desktop/mail/message_text.h"
#include "tests/fuzz/support.h"

#include <algorithm>

namespace {

bool isPlain(char c) { return c >= ' ' && c < 0x7f; }

std::string headerOf(const std::string& message) { return message.substr(0, message.find("\r\n\r\n")); }

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string body = fuzz::text(data, size);
    for (const auto& block : seat::htmlBlocks(body))
        for (const auto& run : block.runs)
            fuzz::expect(!run.text.empty() || !run.address.empty(), "a run holds something");

    static const auto* const header = new std::string(headerOf(seat::mailDraft("")));
    const std::string draft = seat::mailDraft(body);
    fuzz::expect(headerOf(draft) == *header, "no body reaches the header");
    for (std::size_t at = 0; at < draft.size();) {
        const std::size_t end = draft.find("\r\n", at);
        fuzz::expect(end != std::string::npos && end - at <= 998, "lines are short, and end as a message's do");
        fuzz::expect(std::all_of(draft.begin() + static_cast<std::ptrdiff_t>(at),
                                 draft.begin() + static_cast<std::ptrdiff_t>(end), isPlain),
                     "whatever the body holds, a draft is plain text");
        at = end + 2;
    }
    (void)seat::plainMessage(body);
    const std::string address = seat::mailAddressWithBody(body);
    fuzz::expect(address.starts_with("mailto:") && std::ranges::all_of(address, isPlain) &&
                     address.find(' ') == std::string::npos && std::ranges::count(address, '?') == 1 &&
                     std::ranges::count(address, '&') == 0,
                 "an address has one field, its body");
    return 0;
}
