#include "host/mail/mail_draft.h"

#include "host/foundation/atomic_file.h"
#include "platform/log.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string_view>

namespace host {
namespace {

// Lines of 76 characters, as messages want them.
std::string base64Lines(std::string_view bytes) {
    static constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = (group << 8) | (k < count ? static_cast<std::uint8_t>(bytes[i + k]) : 0u);
        for (std::size_t k = 0; k < 4; ++k) text += k <= count ? digits[(group >> (18 - 6 * k)) & 63] : '=';
        if (i / 3 % 19 == 18) text += "\r\n";
    }
    if (!text.ends_with('\n')) text += "\r\n";
    return text;
}

std::string draftFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/') return std::string(data) + "/joyvane";
    const char* home = std::getenv("HOME");
    return std::string(home && *home ? home : "/tmp") + "/.local/share/joyvane";
}

} // namespace

std::string mailDraft(const std::string& htmlBody) {
    return "X-Unsent: 1\r\n"
           "To: \r\n"
           "Subject: \r\n"
           "MIME-Version: 1.0\r\n"
           "Content-Type: text/html; charset=utf-8\r\n"
           "Content-Transfer-Encoding: base64\r\n"
           "\r\n" +
           base64Lines(htmlBody);
}

std::string saveMailDraft(const std::string& htmlBody) {
    const std::string folder = draftFolder();
    const std::string file = folder + "/message.eml";
    std::error_code problem;
    std::filesystem::create_directories(folder, problem);
    const std::string draft = mailDraft(htmlBody);
    const auto error =
        writeFileAtomically(file, std::span(reinterpret_cast<const std::uint8_t*>(draft.data()), draft.size()));
    if (!error) return file;
    NSLog("the message could not be handed over: %s", error->localizedDescription().c_str());
    return {};
}

} // namespace host
