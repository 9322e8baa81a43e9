#include "desktop/mail/mail_program.h"

#include "desktop/mail/MailDrafts.h"
#include "desktop/mail/message_text.h"
#include "kit/dispatch/main_queue.h"

#include <utility>

namespace seat {

std::optional<MailProgram> mailProgram() {
    const auto forMessages = defaultProgram("message/rfc822");
    if (forMessages && takesFiles(*forMessages)) return MailProgram{*forMessages, MailProgram::Takes::Draft};
    const auto forAddresses = defaultProgram("x-scheme-handler/mailto");
    if (forAddresses && takesAddresses(*forAddresses)) return MailProgram{*forAddresses, MailProgram::Takes::Address};
    return std::nullopt;
}

void handOver(const MailProgram& mail, const std::string& htmlBody, std::function<void(bool isStarted)> ended) {
    if (mail.takes == MailProgram::Takes::Address)
        return startProgram(mail.program, mailAddressWithBody(plainMessage(htmlBody)), std::move(ended));
    const std::string draft = MailDrafts::shared().save(mailDraft(htmlBody));
    if (draft.empty()) return queueOnMain([ended] { ended(/*isStarted=*/false); });
    startProgram(mail.program, draft, [draft, ended](bool isStarted) {
        if (!isStarted) MailDrafts::shared().discard(draft);
        ended(isStarted);
    });
}

} // namespace seat
