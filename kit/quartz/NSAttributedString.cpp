#include "platform/uikit/NSAttributedString.h"

NS_CLASS_IMPLEMENTATION(NSMutableAttributedString, NSObject)

std::shared_ptr<NSMutableAttributedString>
NSMutableAttributedString::initWithString_attributes(std::string text, NSTextAttributes attributes) {
    m_runs.clear();
    if (!text.empty()) m_runs.push_back({std::move(text), std::move(attributes)});
    return self(this);
}

void NSMutableAttributedString::appendAttributedString(const NSMutableAttributedString& other) {
    const auto runs = other.m_runs; // the other may be this one
    m_runs.insert(m_runs.end(), runs.begin(), runs.end());
}

std::string NSMutableAttributedString::string() const {
    std::string result;
    for (const Run& run : m_runs) result += run.text;
    return result;
}
