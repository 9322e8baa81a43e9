#pragma once

#include <unistd.h>
#include <utility>

namespace seat {

// Owns a file descriptor; -1 is none.
class Descriptor {
public:
    explicit Descriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) reset(std::exchange(other.m_descriptor, -1));
        return *this;
    }
    ~Descriptor() { reset(); }

    explicit operator bool() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }
    // Whoever asks closes it.
    int release() { return std::exchange(m_descriptor, -1); }
    void reset(int descriptor = -1) {
        if (m_descriptor >= 0) ::close(m_descriptor);
        m_descriptor = descriptor;
    }

private:
    int m_descriptor;
};

} // namespace seat
