// Addresses of a gateway that proot carries: where each of them is for the kernel, and what the gateway sees of it.
#include <arpa/inet.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <stddef.h>
#include <string.h>
#include <sys/un.h>

#include <string>

#include "simulator/carried/addresses.h"

namespace {

carrier run_with(uint16_t shift) {
    carrier run = {127U << 24 | 65U << 16 | 3U << 8, shift, "/tmp/vlk_gateway.abcdef/root"};
    return run;
}

sockaddr_in internet(const std::string &address, uint16_t port) {
    sockaddr_in result = {};
    result.sin_family = AF_INET;
    result.sin_port = htons(port);
    inet_pton(AF_INET, address.c_str(), &result.sin_addr);
    return result;
}

std::string text_of(const sockaddr_in &address) {
    char text[INET_ADDRSTRLEN];
    inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
    return std::string(text) + ":" + std::to_string(ntohs(address.sin_port));
}

// Where an address of the gateway is outside, or the error.
std::string outside(address_use use, const std::string &address, uint16_t port, uint16_t shift = 0,
                    bool internal_is_there = true) {
    carrier run = run_with(shift);
    sockaddr_in inside = internet(address, port);
    sockaddr_storage result;
    socklen_t length = 0;
    int error = address_outside(&run, internal_is_there, use, reinterpret_cast<sockaddr *>(&inside), sizeof inside,
                                &result, &length);
    if (error != 0)
        return strerrorname_np(error);
    EXPECT_EQ(length, sizeof inside);
    return text_of(*reinterpret_cast<sockaddr_in *>(&result));
}

std::string inside(const std::string &address, uint16_t port, uint16_t shift = 0) {
    carrier run = run_with(shift);
    sockaddr_in given = internet(address, port);
    socklen_t length = sizeof given;
    address_inside(&run, reinterpret_cast<sockaddr *>(&given), &length, sizeof given);
    return text_of(given);
}

TEST(CarriedAddresses, TheGatewaysAreAddressesOfTheRunsOwnNetworkAndBack) {
    for (address_use use : {ADDRESS_TO_BIND, ADDRESS_TO_REACH}) {
        EXPECT_EQ(outside(use, "192.168.254.254", 60001), "127.65.3.254:60001");
        EXPECT_EQ(outside(use, "127.0.0.1", 60001), "127.65.3.1:60001");
        EXPECT_EQ(outside(use, "127.0.0.2", 0), "127.65.3.2:0");
    }
    EXPECT_EQ(inside("127.65.3.254", 60001), "192.168.254.254:60001");
    EXPECT_EQ(inside("127.65.3.1", 60001), "127.0.0.1:60001");
    EXPECT_EQ(inside("127.65.3.2", 7), "127.0.0.2:7");
}

TEST(CarriedAddresses, AllAddressesAreThatOf127001SoThatNobodyOutsideReachesThem) {
    EXPECT_EQ(outside(ADDRESS_TO_BIND, "0.0.0.0", 111), "127.65.3.1:111");
    EXPECT_EQ(outside(ADDRESS_TO_REACH, "0.0.0.0", 111), "127.65.3.1:111");
}

TEST(CarriedAddresses, ThePortmapperAnswersUnderTheInternalAddressToo) {
    EXPECT_EQ(outside(ADDRESS_TO_REACH, "192.168.254.254", 111), "127.65.3.1:111");
    EXPECT_EQ(outside(ADDRESS_TO_BIND, "192.168.254.254", 111), "127.65.3.254:111");
}

TEST(CarriedAddresses, ThereIsNoOtherNetwork) {
    for (const char *address : {"10.0.0.1", "192.168.254.253", "127.0.1.1", "255.255.255.255", "127.65.3.1"}) {
        EXPECT_EQ(outside(ADDRESS_TO_BIND, address, 1), "EADDRNOTAVAIL") << address;
        EXPECT_EQ(outside(ADDRESS_TO_REACH, address, 1), "ENETUNREACH") << address;
    }
    EXPECT_EQ(inside("127.65.4.1", 60001), "127.65.4.1:60001");
    EXPECT_EQ(inside("127.0.0.1", 60001), "127.0.0.1:60001");
}

TEST(CarriedAddresses, AnInternalAddressThatIsGoneIsNotThere) {
    EXPECT_EQ(outside(ADDRESS_TO_BIND, "192.168.254.254", 60001, 0, false), "EADDRNOTAVAIL");
    EXPECT_EQ(outside(ADDRESS_TO_REACH, "192.168.254.254", 60001, 0, false), "ENETUNREACH");
    EXPECT_EQ(outside(ADDRESS_TO_REACH, "192.168.254.254", 111, 0, false), "ENETUNREACH");
    EXPECT_EQ(outside(ADDRESS_TO_BIND, "127.0.0.1", 60001, 0, false), "127.65.3.1:60001");
}

TEST(CarriedAddresses, LowPortsAreHighOnesForWhoMayNotBindThem) {
    EXPECT_EQ(outside(ADDRESS_TO_BIND, "127.0.0.1", 111, 64000), "127.65.3.1:64111");
    EXPECT_EQ(outside(ADDRESS_TO_BIND, "127.0.0.1", 1023, 64000), "127.65.3.1:65023");
    EXPECT_EQ(outside(ADDRESS_TO_BIND, "127.0.0.1", 1024, 64000), "127.65.3.1:1024");
    EXPECT_EQ(outside(ADDRESS_TO_BIND, "127.0.0.1", 0, 64000), "127.65.3.1:0");
    EXPECT_EQ(inside("127.65.3.1", 64111, 64000), "127.0.0.1:111");
    EXPECT_EQ(inside("127.65.3.1", 65023, 64000), "127.0.0.1:1023");
    EXPECT_EQ(inside("127.65.3.1", 65024, 64000), "127.0.0.1:65024");
    EXPECT_EQ(inside("127.65.3.1", 63999, 64000), "127.0.0.1:63999");
    EXPECT_EQ(inside("127.65.3.1", 64111), "127.0.0.1:64111");
}

// Local sockets.

struct local_name {
    sockaddr_un name;
    socklen_t length;
};

local_name local(const std::string &path) {
    local_name result = {};
    result.name.sun_family = AF_UNIX;
    memcpy(result.name.sun_path, path.data(), path.size());
    result.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    return result;
}

std::string path_in(const void *name, socklen_t length) {
    return {static_cast<const char *>(name) + offsetof(sockaddr_un, sun_path),
            length - offsetof(sockaddr_un, sun_path)};
}

std::string local_outside(address_use use, const std::string &path) {
    carrier run = run_with(0);
    local_name given = local(path);
    sockaddr_storage result;
    socklen_t length = 0;
    int error =
        address_outside(&run, true, use, reinterpret_cast<sockaddr *>(&given.name), given.length, &result, &length);
    return error != 0 ? strerrorname_np(error) : path_in(&result, length);
}

std::string local_inside(const std::string &path) {
    carrier run = run_with(0);
    local_name given = local(path);
    address_inside(&run, reinterpret_cast<sockaddr *>(&given.name), &given.length, sizeof given.name);
    return path_in(&given.name, given.length);
}

const std::string NUL(1, '\0');

TEST(CarriedAddresses, PathsOfDatagramsAreBelowTheRunsFolder) {
    const std::string root = "/tmp/vlk_gateway.abcdef/root";
    for (const char *path : {"/tmp/client", "/run/here", "/nvram/x"}) {
        EXPECT_EQ(local_outside(ADDRESS_TO_REACH, path), root + path + NUL);
        EXPECT_EQ(local_inside(root + path + NUL), path + NUL);
    }
    EXPECT_EQ(local_outside(ADDRESS_TO_REACH, "/var/run/radstat/ath0"), root + "/run/radstat/ath0" + NUL);
    EXPECT_EQ(local_outside(ADDRESS_TO_REACH, "/dev/log"), "/dev/log");
    EXPECT_EQ(local_inside("/tmp/vlk_gateway.abcdef/rooted/x"), "/tmp/vlk_gateway.abcdef/rooted/x");
}

TEST(CarriedAddresses, PathsThatAreBoundOrConnectedAreLeftToProot) {
    EXPECT_EQ(local_outside(ADDRESS_TO_BIND, "/tmp/client"), "/tmp/client");
}

TEST(CarriedAddresses, PathsThatDoNotFitAreRefused) {
    const std::string fits = "/tmp/" + std::string(107 - 28 - 5, 'x');
    EXPECT_EQ(local_outside(ADDRESS_TO_REACH, fits).size(), 108u);
    EXPECT_EQ(local_outside(ADDRESS_TO_REACH, fits + "x"), "ENAMETOOLONG");
}

TEST(CarriedAddresses, AbstractNamesAreTheRunsOwn) {
    EXPECT_EQ(local_outside(ADDRESS_TO_BIND, NUL + "name"), NUL + "name@7f410300");
    EXPECT_EQ(local_outside(ADDRESS_TO_REACH, NUL + "name"), NUL + "name@7f410300");
    EXPECT_EQ(local_inside(NUL + "name@7f410300"), NUL + "name");
    EXPECT_EQ(local_inside(NUL + "name@7f410400"), NUL + "name@7f410400");
    EXPECT_EQ(local_outside(ADDRESS_TO_BIND, NUL + std::string(98, 'x')).size(), 108u);
    EXPECT_EQ(local_outside(ADDRESS_TO_BIND, NUL + std::string(99, 'x')), "EINVAL");
}

TEST(CarriedAddresses, NamesThatTheKernelChoseStayAsTheyAre) {
    EXPECT_EQ(local_outside(ADDRESS_TO_REACH, NUL + "0a1b2"), NUL + "0a1b2");
    EXPECT_EQ(local_outside(ADDRESS_TO_REACH, NUL + "0a1bx"), NUL + "0a1bx@7f410300");
}

TEST(CarriedAddresses, ASocketWithoutANameStaysWithout) {
    EXPECT_EQ(local_outside(ADDRESS_TO_BIND, ""), "");
    EXPECT_EQ(local_inside(""), "");
}

}  // namespace
