// This program replaces libc's host database by one with a single entry that every look-up overwrites, as in libc.
#include "Frameworks/IPC/Networking/HostInfo.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netdb.h>

#include <cstring>
#include <thread>

#include "Frameworks/IPC/Networking/TCPClient.h"
#include "Tests/Support/LoggedTest.h"

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

constexpr char Unread[] = "HostInfo::HostInfo(StdString & hostName, hostType type) Unable to get netAddr for server - ";
constexpr char Unknown[] =
    "HostInfo::HostInfo(StdString & hostName, hostType type) Unable to get Network DB with server - ";

struct Host {
    std::string name;
    std::string address;
};

struct Database {
    std::string localName = "analyzer";
    std::vector<Host> hosts = {{"analyzer", "10.0.0.5"}, {"server", "10.0.0.7"}};
    std::vector<std::string> calls;
    std::size_t next = 0;
    bool hasAddresses = true;
};

Database* database = nullptr;  // of the running test

// Overwritten by each look-up, as in libc.
char entryName[64];
char entryAddress[4];
char* entryAddresses[2];
hostent entry;

hostent* Fill(const Host& host) {
    std::strncpy(entryName, host.name.c_str(), sizeof entryName - 1);
    inet_pton(AF_INET, host.address.c_str(), entryAddress);
    entryAddresses[0] = database->hasAddresses ? entryAddress : nullptr;
    entry.h_name = entryName;
    entry.h_addrtype = AF_INET;
    entry.h_length = sizeof entryAddress;
    entry.h_addr_list = entryAddresses;
    return &entry;
}

template <typename Condition>
hostent* Find(Condition condition) {
    for (const Host& host : database->hosts) {
        if (condition(host)) {
            return Fill(host);
        }
    }
    return nullptr;
}

class HostInfos : public LoggedTest {
protected:
    HostInfos() { database = &hosts; }
    ~HostInfos() override { database = nullptr; }

    Database hosts;
};

}  // namespace

extern "C" int gethostname(char* name, std::size_t size) {
    EXPECT_EQ(size, 64U);
    std::strncpy(name, database->localName.c_str(), size);
    return 0;
}

extern "C" hostent* gethostbyname(const char* name) {
    database->calls.push_back(std::string("byname ") + name);
    return Find([&](const Host& host) { return host.name == name; });
}

extern "C" hostent* gethostbyaddr(const void* address, socklen_t size, int type) {
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(type, AF_INET);
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, address, text, sizeof text);
    database->calls.push_back(std::string("byaddr ") + text);
    return Find([&](const Host& host) { return host.address == text; });
}

extern "C" void sethostent(int stayOpen) { database->calls.push_back("open " + std::to_string(stayOpen)); }

extern "C" void endhostent() { database->calls.emplace_back("close"); }

extern "C" hostent* gethostent() {
    return database->next < database->hosts.size() ? Fill(database->hosts[database->next++]) : nullptr;
}

TEST_F(HostInfos, know_the_local_host_and_print_its_name) {
    testing::internal::CaptureStdout();
    {
        const HostInfo info;
        EXPECT_EQ(info.getHostName(), "analyzer");
        EXPECT_EQ(info.getHostIPAddress(), "10.0.0.5");
    }
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                MatchesRegex("Frameworks/IPC/Networking/HostInfo\\.cpp:[0-9]+, hostname: analyzer\n"));
    EXPECT_THAT(hosts.calls, ElementsAre("open 1", "byname analyzer", "close"));
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(HostInfos, take_any_other_type_for_the_local_host) {
    const HostInfo info("server", 17);
    EXPECT_EQ(info.getHostName(), "analyzer");
}

TEST_F(HostInfos, have_a_name_for_a_host_without_one) {
    hosts.localName = "";
    const HostInfo info;
    EXPECT_EQ(info.getHostName(), "192.168.1");
    EXPECT_EQ(info.getHostIPAddress(), "192.168.1");
    EXPECT_THAT(Lines(), ElementsAre("HostInfo::HostInfo() Unable to get Network DB with server - 192.168.1",
                                     "HostInfo::getHostName() Unable to get host name",
                                     "HostInfo::getHostIPAddress() Unable to get host IP address"));
}

TEST_F(HostInfos, cut_a_local_name_to_64_characters) {
    hosts.localName = std::string(100, 'n');
    const HostInfo info;
    EXPECT_EQ(info.getHostName().Text(), std::string(64, 'n'));
}

TEST_F(HostInfos, know_a_host_by_its_name) {
    const HostInfo info("server", HostInfo::BY_NAME);
    EXPECT_EQ(info.getHostName(), "server");
    EXPECT_EQ(info.getHostIPAddress(), "10.0.0.7");
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(HostInfos, keep_no_name_that_was_looked_up_in_vain) {
    const HostInfo info("unknown", HostInfo::BY_NAME);
    EXPECT_EQ(info.getHostName(), "");
    EXPECT_EQ(info.getHostIPAddress(), "");
    EXPECT_THAT(Lines(), ElementsAre("HostInfo::HostInfo  Unable to retrieve host my name",
                                     "HostInfo::getHostName() Unable to get host name",
                                     "HostInfo::getHostIPAddress() Unable to get host IP address"));
}

TEST_F(HostInfos, know_a_host_by_its_address) {
    {
        const HostInfo info("10.0.0.7", HostInfo::BY_ADDRESS);
        EXPECT_EQ(info.getHostName(), "server");
        EXPECT_EQ(info.getHostIPAddress(), "10.0.0.7");
    }
    EXPECT_THAT(hosts.calls, ElementsAre("byaddr 10.0.0.7"));  // without opening the database
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(HostInfos, use_an_unknown_address_as_it_is) {
    const HostInfo info("10.0.0.9", HostInfo::BY_ADDRESS);
    EXPECT_EQ(info.getHostName(), "10.0.0.9");
    EXPECT_EQ(info.getHostIPAddress(), "10.0.0.9");
    EXPECT_THAT(Lines(),
                ElementsAre(std::string(Unknown) + "10.0.0.9", "HostInfo::getHostName() Unable to get host name",
                            "HostInfo::getHostIPAddress() Unable to get host IP address"));
}

TEST_F(HostInfos, look_up_even_an_invalid_address) {
    const HostInfo info("server", HostInfo::BY_ADDRESS);
    EXPECT_THAT(hosts.calls, ElementsAre("byaddr 255.255.255.255"));
    EXPECT_THAT(Lines(), ElementsAre(std::string(Unread) + "server", std::string(Unknown) + "server"));
}

TEST_F(HostInfos, have_no_address_if_the_entry_has_none) {
    hosts.hasAddresses = false;
    const HostInfo info("server", HostInfo::BY_NAME);
    EXPECT_EQ(info.getHostName(), "server");
    EXPECT_EQ(info.getHostIPAddress(), "");
}

TEST_F(HostInfos, step_through_the_database) {
    HostInfo info;
    EXPECT_TRUE(info.getNextHost());
    EXPECT_EQ(info.getHostName(), "analyzer");
    EXPECT_TRUE(info.getNextHost());
    EXPECT_EQ(info.getHostName(), "server");
    EXPECT_EQ(info.getHostIPAddress(), "10.0.0.7");
    EXPECT_THAT(Lines(), ElementsAre());
    EXPECT_FALSE(info.getNextHost());
    EXPECT_THAT(Lines(), ElementsAre("HostInfo::getNextHost() Unable to get Network DB entry for next Host"));
}

TEST_F(HostInfos, do_not_step_without_an_open_database) {
    HostInfo info("server", HostInfo::BY_NAME);
    EXPECT_FALSE(info.getNextHost());
    EXPECT_EQ(info.getHostName(), "server");
    EXPECT_THAT(Lines(), ElementsAre());
}

// Both use the entry that every look-up overwrites.
TEST_F(HostInfos, of_two_threads_do_not_meet) {
    const auto lookUp = [](const char* name, const char* address) {
        for (int round = 0; round < 500; ++round) {
            const HostInfo info(address, HostInfo::BY_ADDRESS);
            EXPECT_EQ(info.getHostName(), name);
            EXPECT_EQ(info.getHostIPAddress(), address);
        }
    };
    std::thread other(lookUp, "analyzer", "10.0.0.5");
    lookUp("server", "10.0.0.7");
    other.join();
}

TEST_F(HostInfos, give_a_client_the_names_of_both_ends) {
    TCPClient client;
    EXPECT_TRUE(client.GetLocalHostInfo());
    EXPECT_EQ(client.GetLocalName(), "analyzer");
    EXPECT_EQ(client.GetLocalIPAddress(), "10.0.0.5");
    client.SetServerIPAddress("10.0.0.7");
    client.SetServerName("Local");
    EXPECT_TRUE(client.ResolveServer());
    EXPECT_EQ(client.GetServerName(), "server");
    EXPECT_EQ(client.GetServerIPAddress(), "10.0.0.7");
}

TEST_F(HostInfos, without_an_address_leave_a_client_unchanged) {
    hosts.hasAddresses = false;
    TCPClient client;
    EXPECT_FALSE(client.GetLocalHostInfo());
    client.SetServerIPAddress("10.0.0.7");
    client.SetServerName("Local");
    EXPECT_FALSE(client.ResolveServer());
    EXPECT_EQ(client.GetServerName(), "Local");
    EXPECT_EQ(client.GetServerIPAddress(), "10.0.0.7");
}
