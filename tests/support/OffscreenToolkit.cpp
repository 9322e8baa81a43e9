#include "tests/support/OffscreenToolkit.h"

#include <QGuiApplication>

namespace testing_support {

OffscreenToolkit::OffscreenToolkit(int& argumentCount, char** arguments) {
    ::qputenv("QT_QPA_PLATFORM", "offscreen");
    m_application = std::make_unique<QGuiApplication>(argumentCount, arguments);
}

OffscreenToolkit::~OffscreenToolkit() = default;

} // namespace testing_support
