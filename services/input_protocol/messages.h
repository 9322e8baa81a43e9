#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <type_traits>

// What jvninputd and its clients say to each other, over a local socket that keeps messages apart (SOCK_SEQPACKET).
// Every message is one of the structures below, whole, in the machine's own byte order, with its reserved bytes zero.
// jvninputd answers anything else (another size, version or type, a value that is not listed) with Refused and closes.
//
// A client connects, says Hello once, and then listens; jvninputd sends State, Keyboards and, to a governor, one
// Controller for each controller that is there, and each of them again whenever it changes. Nothing needs an answer.
// A client that reads slowly misses states that are out of date, never the latest. Nothing here tells what was typed.
//
// Closing the connection undoes what it asked for at once: keyboards are given back, the pad goes, lights stay as they
// are.

namespace input {

// The unit's socket. Tests and people may start jvninputd with another.
inline constexpr const char* socketPath = "/run/jvninputd.socket";

// Counts up with every change of this file that an older reader would misunderstand.
inline constexpr std::uint16_t protocolVersion = 1;

enum class MessageType : std::uint16_t {
    // From a client
    hello = 1,
    settings = 2,
    light = 3,
    // To a client
    refused = 101,
    state = 102,
    keyboards = 103,
    controller = 104,
};

struct Header {
    std::uint16_t version;
    MessageType type;
};

// What a connection is for. Users are told apart by the credentials of the socket; each has these for itself.
enum class Role : std::uint8_t {
    // Says what plays (Settings) and how controllers are lit (Light). One a user; a second one is refused. This is the
    // user's jvnd.
    govern = 1,
    // Listens. Two a user, those that try included.
    observe = 2,
    // Listens, and may send Settings that count instead of the governor's (also without one) while it is connected.
    // One a user.
    tryOut = 3,
    // Listens, and counts as a game that has the pad open while it is connected, so that its user can see the keyboard
    // play without one. One a user.
    listen = 4,
};

// The first message of a connection.
struct Hello {
    static constexpr MessageType type = MessageType::hello;
    Header header;
    Role role;
    std::uint8_t reserved[3];
};

// When the keyboard plays.
enum class PlayMode : std::uint8_t {
    whileListened = 0, // while a game has the pad open
    byHand = 1,        // from one chord to the next; switched off at first
};

// A key by its USB HID usage (Keyboard/Keypad page), and the native code (1 to 21) of the input that it drives.
struct KeyBinding {
    std::uint16_t usage;
    std::uint16_t nativeCode;
};

inline constexpr std::size_t maximumBindings = 256;

// From a governor, or one that tries: whether and how keyboards play. Replaces the former one whole. Until the first
// one no keyboard plays and there is no pad.
struct Settings {
    static constexpr MessageType type = MessageType::settings;
    Header header;
    std::uint8_t keyboardPlays; // 1 when the keyboard is the chosen controller; with 0 there is no pad
    PlayMode mode;
    std::uint8_t forceExtended; // 1: the extended profile even if no binding needs it (codes 11 to 20 do)
    std::uint8_t reserved;
    std::uint32_t bindingCount; // at most maximumBindings; what stands behind them is not looked at
    // A usage that comes twice counts with its last binding. Usages that no key has and codes that are no input are
    // left out, with one log line for all.
    KeyBinding bindings[maximumBindings];
};

// A Bluetooth address as it is printed: 00:AA:01:01:00:01 is 00 AA 01 01 00 01.
using Address = std::uint8_t[6];

enum class LightAction : std::uint8_t {
    leaveAlone = 0, // from now on games have it (ambient), the address and the colour are not looked at
    set = 1,        // now if the controller is there, and each time that it comes
};

// From a governor: the colour of one controller, found by the address that its input device carries. If no controller
// has that address (all zero: none is known) and just one with a light is on a cable, that one is meant. Replaces the
// former one. Without any, lights are left alone. It acts only while the user's session is in front and not locked.
struct Light {
    static constexpr MessageType type = MessageType::light;
    Header header;
    Address address;
    LightAction action;
    std::uint8_t red, green, blue;
    std::uint8_t reserved[2];
};

enum class RefusalReason : std::uint16_t {
    notPermitted = 1,    // neither root nor a user with a session at the seat
    version = 2,         // see Refused::version
    roleTaken = 3,       // the user has that governor, or as many observers as are allowed
    malformed = 4,       // no message of this file, or one that this role may not send
    tooManyMessages = 5, // more than can be meant
    busy = 6,            // too many connections altogether
};

// The last message of a connection that jvninputd closes, as far as the socket takes one more. Somebody who was still
// sending may read ECONNRESET once before it.
struct Refused {
    static constexpr MessageType type = MessageType::refused;
    Header header; // its version is the one that jvninputd speaks
    RefusalReason reason;
    std::uint16_t reserved;
};

// Why keyboards play, or do not.
enum class Readiness : std::uint8_t {
    ungoverned = 0,     // no Settings yet, or the keyboard is not the chosen controller
    notInFront = 1,     // the user's session is not the active one of the seat
    locked = 2,         // the user's session is locked
    noKeyboard = 3,     // there is a pad, but no keyboard
    noPad = 4,          // the pad could not be made; the log says why
    waitingForGame = 5, // nobody listens (whileListened)
    switchedOff = 6,    // the chord has not switched it on (byHand)
    paused = 7,         // the chord has paused it (whileListened)
    waitingForKeys = 8, // plays as soon as no key is down
    playing = 9,        // at least one keyboard drives the pad
};

enum class Profile : std::uint8_t {
    none = 0, // there is no pad
    plain = 1,
    extended = 2,
};

// To everybody, after Hello and whenever it changes.
struct State {
    static constexpr MessageType type = MessageType::state;
    Header header;
    Readiness readiness;
    PlayMode mode;
    Profile profile;
    std::uint8_t gameListens;    // 1 while some process has the pad open, or somebody listens in that role
    std::uint8_t keyboards;      // how many would play; 255 stands for more as well
    std::uint8_t keyboardsTaken; // how many do
    std::uint8_t reserved[2];
    // Bit N is set while the input with native code N is down, opposites settled. Always 0 for a governor, which is not
    // woken by what is played.
    std::uint32_t inputs;
};

inline constexpr std::size_t maximumKeyboardNames = 8;
inline constexpr std::size_t keyboardNameSize = 64;

// To everybody, after Hello and whenever it changes: the keyboards that would play, by the names that they give
// themselves.
struct Keyboards {
    static constexpr MessageType type = MessageType::keyboards;
    Header header;
    std::uint32_t count;                                // of all; the names are those of the first maximumKeyboardNames
    char names[maximumKeyboardNames][keyboardNameSize]; // UTF-8 without control characters, cut to fit, zero-terminated
};

enum class Bus : std::uint8_t { other = 0, bluetooth = 1, usb = 2 };

// To a governor: a controller's input device has come or gone. Only devices that udev takes for a joystick and that
// carry an address are told of, our own pad never. A controller that is there over Bluetooth and on a cable at once is
// told of twice.
struct Controller {
    static constexpr MessageType type = MessageType::controller;
    Header header;
    Address address;
    Bus bus;
    std::uint8_t present;  // 1: there and ready to be opened by games; 0: gone
    std::uint8_t hasLight; // 1 when its colour can be set
    std::uint8_t reserved[3];
};

// A message with its header filled in and everything else zero.
template <class Message> Message makeMessage() {
    Message message{};
    message.header = {protocolVersion, Message::type};
    return message;
}

// The header of what was received; nothing when that is shorter than one.
inline std::optional<Header> headerOf(const void* data, std::size_t size) {
    if (size < sizeof(Header)) return std::nullopt;
    Header header;
    std::memcpy(&header, data, sizeof header);
    return header;
}

// The received message, when size, version and type are those of Message; its values are not looked at.
template <class Message> std::optional<Message> messageFrom(const void* data, std::size_t size) {
    const auto header = headerOf(data, size);
    if (!header || header->version != protocolVersion || header->type != Message::type || size != sizeof(Message))
        return std::nullopt;
    Message message;
    std::memcpy(&message, data, sizeof message);
    return message;
}

// No message is larger.
inline constexpr std::size_t maximumMessageSize = sizeof(Settings);

// Structures without gaps, so that no byte of the sender's memory goes along.
template <class Message, std::size_t size> inline constexpr bool isPacked = std::is_trivially_copyable_v<Message> &&
                                                                            sizeof(Message) == size;
static_assert(isPacked<Hello, 8> && isPacked<Light, 16> && isPacked<Refused, 8> && isPacked<State, 16>);
static_assert(isPacked<Settings, 4 + 4 + 4 + maximumBindings * 4>);
static_assert(isPacked<Keyboards, 4 + 4 + maximumKeyboardNames * keyboardNameSize> && isPacked<Controller, 16>);
static_assert(sizeof(Keyboards) <= maximumMessageSize);

} // namespace input
