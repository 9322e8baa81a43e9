#include "system/process/ChildOutput.h"

#include "platform/log.h"
#include "system/process/children.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace seat {

namespace {

constexpr std::size_t longestLine = 400; // bytes
constexpr int mostReads = 64;            // at a time, so that a flood does not hold the main thread

} // namespace

ChildOutput::ChildOutput(Descriptor output, std::string name) : m_output(std::move(output)), m_name(std::move(name)) {
    m_source = addReadableSource(m_output.get(), [this] { readWhatIsThere(); });
}

ChildOutput::~ChildOutput() { stop(); }

void ChildOutput::stop() {
    removeSource(std::exchange(m_source, 0));
    m_output.reset();
}

void ChildOutput::readWhatIsThere() {
    char buffer[4096];
    for (int i = 0; i < mostReads && m_output; ++i) {
        const auto count = ::read(m_output.get(), buffer, sizeof buffer);
        if (count > 0) {
            take({buffer, static_cast<std::size_t>(count)});
        } else if (count == 0) {
            if (!m_line.empty()) logLine();
            stop();
        } else if (errno != EINTR) {
            return;
        }
    }
}

void ChildOutput::finish() {
    readWhatIsThere();
    // Somebody whom the tool has started may have the other end still.
    if (!m_line.empty()) logLine();
}

void ChildOutput::take(std::string_view text) {
    for (const char c : text) {
        if (m_lines > mostLoggedLines) return;
        if (c == '\n')
            logLine();
        else if (m_line.size() < longestLine)
            m_line += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
}

void ChildOutput::logLine() {
    const std::string line = std::exchange(m_line, {});
    if (m_lines++ < mostLoggedLines)
        NSLog("%s: %s", m_name.c_str(), line.c_str());
    else
        NSLog("%s: it says more than %d lines; the rest is left out", m_name.c_str(), mostLoggedLines);
}

} // namespace seat
