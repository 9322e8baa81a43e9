#include "desktop/mail/mail_draft.h"

#include "desktop/mail/header_text.h"
#include "kit/foundation/base64.h"
#include "platform/log.h"
#include "system/files/atomic_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string_view>

namespace seat {
namespace {

// Lines of 76 characters, as messages want them.
std::string base64Lines(std::string_view bytes) {
    constexpr std::size_t lineLength = 76;
    const std::string text = encodeBase64(bytes);
    std::string lines;
    for (std::size_t i = 0; i == 0 || i < text.size(); i += lineLength) lines += text.substr(i, lineLength) + "\r\n";
    return lines;
}

std::string draftFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/') return std::string(data) + "/joyvane";
    const char* home = std::getenv("HOME");
    return std::string(home && *home ? home : "/tmp") + "/.local/share/joyvane";
}

} // namespace

std::string mailDraft(const MailMessage& message) {
    std::string draft = "X-Unsent: 1\r\n";
    draft += "To: " + headerRecipients(message.recipients) + "\r\n";
    draft += "Subject: " + headerText(message.subject) + "\r\n";
    draft += "MIME-Version: 1.0\r\n"
             "Content-Type: text/html; charset=utf-8\r\n"
             "Content-Transfer-Encoding: base64\r\n"
             "\r\n";
    return draft + base64Lines(message.htmlBody);
}

std::string saveMailDraft(const MailMessage& message) {
    const std::string folder = draftFolder();
    const std::string file = folder + "/message.eml";
    std::error_code problem;
    std::filesystem::create_directories(folder, problem);
    const std::string draft = mailDraft(message);
    const auto error =
        writeFileAtomically(file, std::span(reinterpret_cast<const std::uint8_t*>(draft.data()), draft.size()));
    if (!error) return file;
    NSLog("the message could not be handed over: %s", error->localizedDescription().c_str());
    return {};
}

} // namespace seat
