#include "app/reasons.h"

#include "kit/foundation/translation.h"
#include "platform/foundation/NSLocalizedString.h"

#include <array>
#include <string_view>

namespace app {

namespace {

// What the parts below say. The system's own words are here for languages in which its library has none.
constexpr std::array known{
    NSLocalizable("another process holds its lock"),
    NSLocalizable("another program keeps changing it"),
    NSLocalizable("its lock keeps being removed"),
    NSLocalizable("its lock cannot be opened"),
    NSLocalizable("it cannot be locked"),
    NSLocalizable("its folder"),
    NSLocalizable("there is no memory left"),
    NSLocalizable("it is larger than 4 MiB"),
    NSLocalizable("it holds no dictionary"),
    NSLocalizable("it is damaged, and too many damaged ones lie beside it"),
    NSLocalizable("moving the damaged file aside"),
    NSLocalizable("it is a link that another user has made"),
    NSLocalizable("it is a link to what is another user's"),
    NSLocalizable("a folder is in its place"),
    NSLocalizable("a pipe is in its place"),
    NSLocalizable("a socket is in its place"),
    NSLocalizable("a device is in its place"),
    NSLocalizable("it cannot be read"),
    NSLocalizable("it ended with 0 and has reported nothing"),
    NSLocalizable("the input service is not installed, or its socket is switched off"),
    NSLocalizable("the input service does not answer"),
    NSLocalizable("the input service has ended the connection"),
    NSLocalizable("the input service is of another version"),
    NSLocalizable("No space left on device"),
    NSLocalizable("Disk quota exceeded"),
    NSLocalizable("Read-only file system"),
    NSLocalizable("Permission denied"),
    NSLocalizable("Operation not permitted"),
    NSLocalizable("No such file or directory"),
    NSLocalizable("Not a directory"),
    NSLocalizable("Is a directory"),
    NSLocalizable("Input/output error"),
    NSLocalizable("Too many open files"),
    NSLocalizable("Too many levels of symbolic links"),
    NSLocalizable("File too large"),
    NSLocalizable("File name too long"),
    NSLocalizable("Exec format error"),
    NSLocalizable("Connection refused"),
    NSLocalizable("Cannot allocate memory"),
};

// What ends in a number.
constexpr std::array counted{
    NSLocalizable("it ended with %1"),
    NSLocalizable("it was ended by signal %1"),
    NSLocalizable("ended with %1"),
    NSLocalizable("was ended by signal %1"),
    NSLocalizable("the service manager's tool ended with %1"),
    NSLocalizable("the service manager's tool was ended by signal %1"),
};

std::string clauseInUsersWords(std::string_view clause) {
    for (const std::string_view text : known)
        if (text == clause) return seat::translated(std::string(text));
    for (const std::string_view text : counted) {
        const auto words = text.substr(0, text.size() - 2);
        const auto number = clause.starts_with(words) ? clause.substr(words.size()) : std::string_view();
        if (!number.empty() && number.find_first_not_of("0123456789") == std::string_view::npos)
            return seat::filled(seat::translated(std::string(text)), {number});
    }
    return std::string(clause);
}

} // namespace

std::string reasonInUsersWords(const std::string& reason) {
    constexpr std::string_view separator = ": ";
    std::string words;
    std::string_view rest = reason;
    for (;;) {
        const auto end = rest.find(separator);
        words += clauseInUsersWords(rest.substr(0, end));
        if (end == std::string_view::npos) return words;
        words += separator;
        rest.remove_prefix(end + separator.size());
    }
}

} // namespace app
