// The address record that goes to the socket layer, byte by byte: these calls stand for the layer's own.

#include "daemonlink/ControlConnection.h"
#include "daemonlink/control_socket.h"
#include "platform/socket.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr int descriptor = 17;

struct Layer {
    std::optional<platform::sockaddr_un> connected;
    std::size_t size = 0;
    int result = 0;
    std::vector<int> closed;
};
Layer layer;

class AddressRecord : public testing::Test {
protected:
    AddressRecord() { layer = {}; }
    static std::string path() { return {layer.connected->sun_path, sizeof layer.connected->sun_path}; }
    static std::string padded(std::string text) {
        text.resize(sizeof platform::sockaddr_un::sun_path);
        return text;
    }
};

} // namespace

int platform::socket(int domain, int type, int protocol) {
    EXPECT_EQ(domain, AF_UNIX_FAMILY);
    EXPECT_EQ(type, SOCK_STREAM_TYPE);
    EXPECT_EQ(protocol, 0);
    return descriptor;
}
int platform::connect(int given, const sockaddr_un* address, std::size_t size) {
    EXPECT_EQ(given, descriptor);
    layer.connected = *address;
    layer.size = size;
    return layer.result;
}
int platform::close(int given) {
    layer.closed.push_back(given);
    return 0;
}
std::ptrdiff_t platform::send(int, const void*, std::size_t, int) { return -1; }
std::ptrdiff_t platform::recv(int, void*, std::size_t, int) { return -1; }
int platform::setsockopt(int, int, int, const void*, std::size_t) { return -1; }

namespace {

TEST_F(AddressRecord, OfTheControlSocketHoldsItsPathAndZeros) {
    ControlConnection::open().release();

    ASSERT_TRUE(layer.connected);
    EXPECT_EQ(layer.size, 106u);
    EXPECT_EQ(layer.connected->sun_len, 32) << "the path with its zero";
    EXPECT_EQ(layer.connected->sun_family, 1);
    EXPECT_EQ(path(), padded("/Library/Caches/jvncontrol.sock"));
}

TEST_F(AddressRecord, OfAGivenPathHoldsAsManyBytesOfItAsAreSaid) {
    const std::string text = "/a/path/and/more";

    EXPECT_EQ(JVNConnecToUNIXSocket(text.c_str(), 7), descriptor);

    ASSERT_TRUE(layer.connected);
    EXPECT_EQ(layer.connected->sun_len, 7);
    EXPECT_EQ(layer.connected->sun_family, 1);
    EXPECT_EQ(path(), padded("/a/path"));
}

TEST_F(AddressRecord, IsFilledToItsEndByAPathOfAHundredAndFourBytes) {
    const std::string text(120, 'x');

    JVNConnecToUNIXSocket(text.c_str(), 104);

    EXPECT_EQ(layer.connected->sun_len, 104);
    EXPECT_EQ(path(), std::string(104, 'x'));
}

TEST_F(AddressRecord, OfADaemonThatIsAwayLeavesNoDescriptorOpen) {
    layer.result = -1;

    EXPECT_EQ(JVNConnectToControlSocket(), -1);

    EXPECT_EQ(layer.closed, std::vector<int>{descriptor});
}

} // namespace
