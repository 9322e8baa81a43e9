#pragma once

#include <memory>

class QGuiApplication;

namespace testing_support {

// What text needs in a program that has no window: the toolkit's fonts. One, in main(), while anything is laid out.
class OffscreenToolkit {
public:
    OffscreenToolkit(int& argumentCount, char** arguments);
    ~OffscreenToolkit();
    OffscreenToolkit(const OffscreenToolkit&) = delete;
    OffscreenToolkit& operator=(const OffscreenToolkit&) = delete;

private:
    std::unique_ptr<QGuiApplication> m_application;
};

} // namespace testing_support
