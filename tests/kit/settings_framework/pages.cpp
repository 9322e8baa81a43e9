#include "tests/kit/settings_framework/pages.h"

NS_CLASS_IMPLEMENTATION(TestPage, PSListController, method<&TestPage::tapped>("tapped:"),
                        method<&TestPage::plain>("plain"))

namespace {

std::string entry(const std::string& key, const std::string& value) {
    return value.empty() ? std::string() : "<key>" + key + "</key><string>" + value + "</string>";
}

} // namespace

std::string item(const std::string& kind, const std::string& identifier, const std::string& title,
                 const std::string& more) {
    return "<dict>" + entry("cell", kind) + entry("id", identifier) + entry("label", title) + more + "</dict>";
}

std::string group(const std::string& identifier, const std::string& title, const std::string& footer) {
    return item("PSGroupCell", identifier, title, entry("footerText", footer));
}

std::string bound(const std::string& key, const std::string& defaultValue) {
    return entry("key", key) + "<key>default</key>" + defaultValue + entry("defaults", "com.quorrel.test") +
           entry("PostNotification", "com.quorrel.test.changed");
}

std::string choices(const std::vector<std::string>& titles) {
    std::string values = "<key>validValues</key><array>";
    std::string names = "<key>validTitles</key><array>";
    for (std::size_t i = 0; i < titles.size(); ++i) {
        values += "<integer>" + std::to_string(i) + "</integer>";
        names += "<string>" + titles[i] + "</string>";
    }
    return values + "</array>" + names + "</array>";
}
