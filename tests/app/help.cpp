// The help over the page: the first minute, how things are, and what the keyboard plays.

#include "tests/app/SettingsPageTest.h"

#include "app/introduction.h"
#include "kit/uikit/hid_keys.h"
#include "services/daemon_status/Status.h"
#include "services/input_protocol/messages.h"
#include "system/files/Descriptor.h"
#include "system/socket/connection_listener.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

using daemon_status::Bluetooth;
using daemon_status::InputService;
using daemon_status::Status;
using Role = UIAccessibilityRole;

// The input service's end of a socket.
class FakeInputService {
public:
    explicit FakeInputService(const std::string& path) {
        ::sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        m_listener.reset(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        EXPECT_EQ(::bind(m_listener.get(), reinterpret_cast<const ::sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(m_listener.get(), 8), 0);
    }
    // The role in which somebody has come.
    std::optional<input::Role> accept() {
        m_client.reset(::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        char message[input::maximumMessageSize];
        const auto size = m_client ? ::recv(m_client.get(), message, sizeof message, MSG_DONTWAIT) : -1;
        const auto hello =
            input::messageFrom<input::Hello>(message, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        return hello ? std::optional(hello->role) : std::nullopt;
    }
    void say(input::Readiness readiness, std::uint32_t inputs, input::Profile profile = input::Profile::plain) {
        auto state = input::makeMessage<input::State>();
        state.readiness = readiness;
        state.inputs = inputs;
        state.profile = profile;
        send(&state, sizeof state);
    }
    void refuse(input::RefusalReason reason) {
        auto refused = input::makeMessage<input::Refused>();
        refused.reason = reason;
        send(&refused, sizeof refused);
        m_client.reset();
    }
    void send(const void* bytes, std::size_t size) const {
        EXPECT_EQ(::send(m_client.get(), bytes, size, MSG_NOSIGNAL), static_cast<ssize_t>(size));
    }
    bool isLeft() const {
        char byte = 0;
        return ::recv(m_client.get(), &byte, 1, MSG_DONTWAIT) == 0;
    }

private:
    seat::Descriptor m_listener;
    seat::Descriptor m_client;
};

class HelpTest : public SettingsPageTest {
protected:
    void offer(bool isSimulated = false) {
        page->notices().withdraw(app::NoticeKind::DaemonAbsent); // of the first appearance: nobody is there
        page->offerHelp({.inputSocket = socketPath, .guide = {}, .isSimulated = isSimulated}, [this] { ++trials; });
        settle();
    }
    // What the daemon says of itself, as it does it.
    void daemonSays(const Status& status) {
        const std::string file = root.path() + daemon_status::filePath;
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        seat::Descriptor fresh(::open((file + ".new").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        ASSERT_EQ(::flock(fresh.get(), LOCK_EX | LOCK_NB), 0);
        const std::string text = daemon_status::textOf(status);
        ASSERT_EQ(::write(fresh.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
        std::filesystem::rename(file + ".new", file);
        statusFile = std::move(fresh);
    }
    std::string notice() {
        const auto* const found = find(Role::Alert);
        return found ? found->name : "";
    }
    void openTry() {
        page->showHelp();
        scrollToEnd();
        ASSERT_TRUE(tap(Role::Button, "Try It"));
        ASSERT_TRUE(waitUntil([&] { return find(Role::NavigationBar, "Try It"); }));
        touches->wait(1);
    }
    void scrollToEnd() {
        touches->wait(1);
        touches->key(seat::hid::end);
        touches->wait(1);
    }
    // Wherever the column is scrolled to.
    bool says(const std::string& text) {
        return waitUntil([&] {
            settle();
            auto& tree = page->scene().accessibility();
            tree.update();
            return std::ranges::any_of(tree.nodes(), [&](const auto& entry) {
                return entry.second.role == Role::StaticText && entry.second.name == text;
            });
        });
    }

    std::string socketPath = root.path() + "/input";
    seat::Descriptor statusFile;
    int trials = 0;
};

TEST_F(HelpTest, TheFirstOpeningExplainsAndWhatIsPutAwayNeverComesBackByItself) {
    offer();
    page->introduce();
    ASSERT_TRUE(find(Role::StaticText, "Play with what you have"));

    ASSERT_TRUE(tap(Role::Button, "Set Up Your Controller"));

    EXPECT_TRUE(waitUntil([&] { return find(Role::ListItem, "Controller"); }));
    EXPECT_FALSE(find(Role::StaticText, "Play with what you have"));
    page->introduce();
    EXPECT_FALSE(find(Role::StaticText, "Play with what you have"));
    EXPECT_TRUE(app::isIntroduced());
}

TEST_F(HelpTest, InASmallWindowThePictureLeavesRoomForTheFirstButton) {
    page->scene().resize({320, 480}, 1);
    offer();
    page->introduce();
    settle();

    const auto* const button = find(Role::Button, "Set Up Your Controller");
    ASSERT_TRUE(button);
    EXPECT_LE(CGRectGetMidY(button->extent), 480);
}

TEST_F(HelpTest, WhatWasNeverPutAwayComesAgain) {
    offer();
    page->introduce();
    ASSERT_TRUE(find(Role::Button, "Close"));

    EXPECT_FALSE(app::isIntroduced());
}

TEST_F(HelpTest, TheButtonInTheBarShowsItAndEscapePutsItAway) {
    offer();
    ASSERT_TRUE(tap(Role::Button, "Help"));
    ASSERT_TRUE(waitUntil([&] { return find(Role::StaticText, "Play with what you have"); }));
    touches->wait(1);

    touches->key(seat::hid::escape);

    EXPECT_TRUE(waitUntil([&] { return !find(Role::StaticText, "Play with what you have"); }));
    EXPECT_TRUE(find(Role::Button, "Help"));
}

TEST_F(HelpTest, TheButtonIsThereAgainOnTheWayBackToThePage) {
    offer();
    ASSERT_TRUE(tap(Role::ListItem, "Controller"));
    touches->wait(1);
    ASSERT_FALSE(find(Role::Button, "Help"));

    touches->key(seat::hid::left, UIKeyEvent::Alt);

    EXPECT_TRUE(waitUntil([&] { return find(Role::Button, "Help"); }));
}

TEST_F(HelpTest, ItSaysHowThingsAreAndFollowsThem) {
    offer();
    page->showHelp();
    ASSERT_TRUE(says("Bluetooth: Not Known"));
    daemonSays({.bluetooth = Bluetooth::off});
    page->showHelp(); // shown already: nothing more

    // The folder is new: it is found when the daemon has been heard of.
    seat::tellOfConnection(-1, "/Library/Caches/jvncontrol.sock");
    EXPECT_TRUE(says("Daemon: Running"));
    EXPECT_TRUE(says("Bluetooth: Off. Pairing or connecting a controller switches it on."));
    daemonSays({.bluetooth = Bluetooth::on,
                .isKeyboardChosen = true,
                .inputService = InputService::connected,
                .readiness = input::Readiness::noKeyboard});

    EXPECT_TRUE(says("Bluetooth: On"));
    EXPECT_TRUE(says("Keyboard: None Found. Plug in a keyboard, or connect one in the system’s Bluetooth settings."));
}

TEST_F(HelpTest, AStatusThatADeadDaemonHasLeftIsNone) {
    daemonSays({.bluetooth = Bluetooth::blocked});
    offer();
    ASSERT_NE(notice().find("Bluetooth is blocked"), std::string::npos);

    statusFile.reset();

    page->showHelp();
    EXPECT_TRUE(says("Bluetooth: Not Known"));
    EXPECT_EQ(notice(), "");
}

TEST_F(HelpTest, BluetoothThatIsAwayIsSaidUntilItIsBackAndNotToSomebodyWithAKeyboard) {
    daemonSays({.bluetooth = Bluetooth::absent});
    offer();
    EXPECT_NE(notice().find("There is no Bluetooth"), std::string::npos);
    ASSERT_TRUE(tap(Role::Button, "Close"));
    EXPECT_EQ(notice(), "");

    daemonSays({.bluetooth = Bluetooth::off});
    EXPECT_TRUE(waitUntil([&] { return notice().starts_with("Bluetooth is off."); }));
    daemonSays({.bluetooth = Bluetooth::off, .isKeyboardChosen = true});
    EXPECT_TRUE(waitUntil([&] { return notice().empty(); }));
}

TEST_F(HelpTest, AfterTheChoiceOfTheKeyboardItSaysWhatItWaitsForAndOffersToTryIt) {
    daemonSays({.bluetooth = Bluetooth::on});
    offer();
    const Status ready{.bluetooth = Bluetooth::on,
                       .isKeyboardChosen = true,
                       .inputService = InputService::connected,
                       .readiness = input::Readiness::waitingForGame,
                       .keyboards = 1};
    daemonSays({.bluetooth = Bluetooth::on, .isKeyboardChosen = true});
    daemonSays(ready);
    ASSERT_TRUE(waitUntil([&] { return notice().starts_with("The keyboard is ready."); }));

    FakeInputService service(socketPath);
    ASSERT_TRUE(tap(Role::Button, "Try It"));

    EXPECT_TRUE(waitUntil([&] { return find(Role::Image, "Gamepad"); }));
    EXPECT_EQ(service.accept(), input::Role::listen);
    Status playing = ready;
    playing.readiness = input::Readiness::playing;
    daemonSays(playing);
    touches->wait(1);
    touches->key(seat::hid::escape);
    const auto isReady = [&] { return notice().starts_with("The keyboard is ready."); };
    EXPECT_TRUE(waitUntil([&] { return find(Role::ListItem, "Controller") && !isReady(); }));
    daemonSays(ready);
    touches->wait(1);
    settle();
    EXPECT_FALSE(isReady()) << "it is how things are by now";
}

TEST_F(HelpTest, AKeyboardThatCannotPlayIsSaidWheneverItIsSo) {
    daemonSays({.bluetooth = Bluetooth::on, .isKeyboardChosen = true, .inputService = InputService::unreachable});
    offer();

    EXPECT_NE(notice().find("The service that plays the keyboard does not answer."), std::string::npos);
    daemonSays({.isKeyboardChosen = true,
                .inputService = InputService::connected,
                .readiness = input::Readiness::waitingForGame});
    EXPECT_TRUE(waitUntil([&] { return notice().empty(); }));
}

TEST_F(HelpTest, TryItShowsThePadWhileKeysArePressed) {
    offer();
    FakeInputService service(socketPath);
    openTry();
    ASSERT_EQ(service.accept(), input::Role::listen);
    service.say(input::Readiness::waitingForKeys, 0);
    EXPECT_TRUE(says("Let go of all keys"));

    service.say(input::Readiness::playing, 0);
    EXPECT_TRUE(says("Press a key"));
    service.say(input::Readiness::playing, 1u << 3 | 1u << 5);
    EXPECT_TRUE(says("It arrives as up, A"));
    service.say(input::Readiness::playing, 0);
    EXPECT_TRUE(says("Press a key"));

    EXPECT_FALSE(service.isLeft());
    touches->key(seat::hid::escape);
    EXPECT_TRUE(waitUntil([&] { return service.isLeft(); })) << "the keyboard is given back";
    EXPECT_TRUE(waitUntil([&] { return find(Role::NavigationBar, "Joyvane"); })) << "one screen back";
}

TEST_F(HelpTest, WhatKeepsTryItFromShowingAnythingIsSaidThere) {
    offer();
    openTry();
    EXPECT_TRUE(says("There is nothing to see"));
    EXPECT_TRUE(says("The reason: the input service is not installed, or its socket is switched off."));

    FakeInputService service(socketPath);
    ASSERT_TRUE(tap(Role::Button, "Try Again"));
    ASSERT_EQ(service.accept(), input::Role::listen);
    EXPECT_TRUE(says("One moment"));
    service.refuse(input::RefusalReason::notPermitted);
    EXPECT_TRUE(says("The reason: only users with a session at this computer's seat are let in."));

    ASSERT_TRUE(tap(Role::Button, "Try Again"));
    ASSERT_EQ(service.accept(), input::Role::listen);
    service.say(input::Readiness::ungoverned, 0);
    EXPECT_TRUE(says("No keyboard plays"));
    EXPECT_FALSE(find(Role::Button, "Try Again"));
    service.send("nonsense", 8);
    EXPECT_TRUE(says("The reason: the input service is of another version."));
}

TEST_F(HelpTest, WithSimulatedControllersNoKeyboardIsTaken) {
    offer(/*isSimulated=*/true);
    FakeInputService service(socketPath);
    openTry();

    EXPECT_TRUE(says("No keyboard plays here"));
    EXPECT_FALSE(service.accept());
}

TEST_F(HelpTest, ATrialIsOffered) {
    offer();
    page->showHelp();

    scrollToEnd();
    ASSERT_TRUE(tap(Role::Button, "Try Without a Controller"));

    EXPECT_EQ(trials, 1);
}

} // namespace
