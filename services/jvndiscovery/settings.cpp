#include "services/jvndiscovery/settings.h"

#include "platform/foundation/NSData.h"
#include "services/common/log.h"
#include "system/files/Descriptor.h"
#include "system/preferences/PreferencesFile.h"
#include "system/preferences/preferences_writer.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>

namespace jvndiscovery {
namespace {

constexpr const char* folder = "/var/mobile/Library/Preferences";
constexpr const char* domain = "com.quorrel.joyvane";
constexpr const char* typeKey = "controller_type";
constexpr const char* addressKey = "PS4BluetoothAddress";

// At once: an interruption must not be held up, and whoever stores can come again.
constexpr std::chrono::milliseconds lockTime{0};

class AddressChange final : public seat::PreferencesChanges {
public:
    explicit AddressChange(const bluetooth::Address& address)
        : m_data(NSData::dataWithVector({address.bytes.begin(), address.bytes.end()})) {}

    seat::PreferencesChange take() override { return {nullptr, {{addressKey, m_data}}}; }
    void stored() override {}

private:
    std::shared_ptr<NSData> m_data;
};

} // namespace

std::optional<int> storedControllerType(const std::string& root) {
    const std::string path = root + folder;
    const seat::Descriptor directory(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!directory) {
        if (errno == ENOENT) return 0;
        services::log("reading the preferences in %s: %s", path.c_str(), std::strerror(errno));
        return std::nullopt;
    }
    using File = seat::PreferencesFile;
    const File file = File::read(directory.get(), std::string(domain) + ".plist");
    if (file.state == File::State::Missing) return 0;
    if (file.state != File::State::Good) {
        services::log("reading the preferences %s/%s.plist: %s", path.c_str(), domain, file.reason.c_str());
        return std::nullopt;
    }
    const std::int64_t type = file.values->objectForKey(typeKey).integerValue();
    using Limits = std::numeric_limits<int>;
    return type < Limits::min() || type > Limits::max() ? -1 : static_cast<int>(type);
}

Stored storeAddress(const std::string& root, const bluetooth::Address& address) {
    AddressChange change(address);
    const auto result = seat::changePreferencesFile(root + folder, domain, change, lockTime);
    if (result.isBusy) return Stored::NotYet;
    if (!result.aside.empty())
        services::log("the preferences were damaged and are moved aside to %s", result.aside.c_str());
    if (!result.reason.empty())
        services::log("storing the address of %s: %s", address.forLog().c_str(), result.reason.c_str());
    return result.isStored ? Stored::Yes : Stored::Failed;
}

} // namespace jvndiscovery
