#include "tests/machine/support/UhidDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace machine {
namespace {

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

template <size_t N> void copyText(const std::string& text, uint8_t (&target)[N]) {
    std::copy_n(text.begin(), std::min(text.size(), N - 1), target);
}

} // namespace

UhidDevice::UhidDevice(UhidDescription description)
    : m_description(std::move(description)), m_device(::open("/dev/uhid", O_RDWR | O_CLOEXEC)),
      m_stop(::eventfd(0, EFD_CLOEXEC)) {
    if (m_device < 0) fail("/dev/uhid");
    uhid_event event{};
    event.type = UHID_CREATE2;
    auto& create = event.u.create2;
    copyText(m_description.name, create.name);
    copyText(m_description.unique, create.uniq);
    create.bus = m_description.bus;
    create.vendor = m_description.vendor;
    create.product = m_description.product;
    create.rd_size = static_cast<uint16_t>(m_description.descriptor.size());
    std::copy(m_description.descriptor.begin(), m_description.descriptor.end(), create.rd_data);
    send(event);
    m_thread = std::thread([this] { answerUntilStopped(); });
}

UhidDevice::~UhidDevice() {
    disconnect();
    ::close(m_stop);
}

void UhidDevice::disconnect() {
    if (!m_thread.joinable()) return;
    const uint64_t one = 1;
    (void)!::write(m_stop, &one, sizeof one);
    m_thread.join();
    ::close(std::exchange(m_device, -1)); // for the kernel, the device is unplugged
}

void UhidDevice::sendInput(const Report& report) {
    uhid_event event{};
    event.type = UHID_INPUT2;
    event.u.input2.size = static_cast<uint16_t>(report.size());
    std::copy(report.begin(), report.end(), event.u.input2.data);
    send(event);
}

std::vector<Report> UhidDevice::outputs() const {
    const std::lock_guard lock(m_mutex);
    return m_outputs;
}

std::optional<Report> UhidDevice::waitForOutput(const std::function<bool(const Report&)>& wanted, size_t seen,
                                                std::chrono::milliseconds timeout) const {
    std::unique_lock lock(m_mutex);
    std::optional<Report> found;
    m_changed.wait_for(lock, timeout, [&] {
        for (; !found && seen < m_outputs.size(); ++seen)
            if (wanted(m_outputs[seen])) found = m_outputs[seen];
        return found.has_value();
    });
    return found;
}

void UhidDevice::answerUntilStopped() {
    for (;;) {
        std::array<pollfd, 2> waiting{{{m_device, POLLIN, 0}, {m_stop, POLLIN, 0}}};
        if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) return;
        if (waiting[1].revents != 0) return;
        uhid_event event{};
        if (waiting[0].revents != 0 && ::read(m_device, &event, sizeof event) > 0) handle(event);
    }
}

void UhidDevice::handle(const uhid_event& event) {
    uhid_event answer{};
    if (event.type == UHID_OUTPUT) {
        const auto& output = event.u.output;
        const std::lock_guard lock(m_mutex);
        m_outputs.emplace_back(output.data, output.data + output.size);
        m_changed.notify_all();
    } else if (event.type == UHID_GET_REPORT) {
        answer.type = UHID_GET_REPORT_REPLY;
        auto& reply = answer.u.get_report_reply;
        reply.id = event.u.get_report.id;
        const auto report = m_description.features.find(event.u.get_report.rnum);
        if (report == m_description.features.end()) {
            reply.err = EIO;
        } else {
            reply.size = static_cast<uint16_t>(report->second.size());
            std::copy(report->second.begin(), report->second.end(), reply.data);
        }
        send(answer);
    } else if (event.type == UHID_SET_REPORT) {
        answer.type = UHID_SET_REPORT_REPLY;
        answer.u.set_report_reply.id = event.u.set_report.id;
        send(answer);
    }
}

void UhidDevice::send(const uhid_event& event) const {
    if (::write(m_device, &event, sizeof event) < 0) fail("write to /dev/uhid");
}

} // namespace machine
