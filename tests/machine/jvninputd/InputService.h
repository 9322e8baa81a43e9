#pragma once

#include <string>
#include <sys/types.h>

namespace machine {

// A jvninputd of the test's own, at a socket of its own, from the constructor (which waits until it listens) to the end
// of the scope. What cannot be done throws std::system_error.
class InputService {
public:
    // The module, if one is given, is loaded into it before all others.
    explicit InputService(std::string module = {});
    ~InputService();
    InputService(const InputService&) = delete;
    InputService& operator=(const InputService&) = delete;

    void signal(int number) const;
    // SIGKILL, and waits for its end.
    void kill();
    // Waits until it has been ended by a SIGKILL from elsewhere; what does not come throws.
    void waitForEnd();
    // As it was started first; after kill() or waitForEnd().
    void start();

    const std::string& socket() const { return m_socket; }
    pid_t process() const { return m_process; }
    // What it has said so far.
    std::string log() const;
    // How often it has been woken so far: its voluntary context switches.
    long wakeUps() const;
    // Its private memory, in KiB.
    long privateMemory() const;
    // How many descriptors it has.
    long descriptors() const;

private:
    std::string m_module;
    std::string m_folder;
    std::string m_socket;
    pid_t m_process = -1;
};

} // namespace machine
