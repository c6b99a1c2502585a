#include "Frameworks/IPC/Networking/HostInfo.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "Frameworks/Threading/Mutex.h"
#include "Frameworks/Utilities/Report.h"

namespace {

constexpr std::size_t MaxHostName = 64;
constexpr char SourcePath[] = "Frameworks/IPC/Networking/HostInfo.cpp:";  // without the build folder
constexpr char DefaultName[] = "192.168.1";
constexpr char AddressConstructor[] = "HostInfo::HostInfo(StdString & hostName, hostType type) ";

Mutex databaseMutex;  // for the database's position and the entry of a look-up

StdString LocalHostName() {
    char name[MaxHostName + 1] = {};
    gethostname(name, MaxHostName);
    return name[0] == '\0' ? DefaultName : name;
}

// Empty if the entry has no IPv4 address.
StdString FirstAddress(const hostent& entry) {
    in_addr address{};
    if (entry.h_length != static_cast<int>(sizeof address) || entry.h_addr_list == nullptr ||
        entry.h_addr_list[0] == nullptr) {
        return {};
    }
    std::memcpy(&address, entry.h_addr_list[0], sizeof address);
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

}  // namespace

HostInfo::HostInfo() { LookUpLocalHost(); }

HostInfo::HostInfo(const StdString& name, std::int32_t type) {
    switch (type) {
        case BY_NAME:
            LookUpByName(name, "HostInfo::HostInfo  Unable to retrieve host my name");
            break;
        case BY_ADDRESS:
            m_name = name;
            LookUpByAddress();
            break;
        default:
            LookUpLocalHost();
            break;
    }
}

HostInfo::~HostInfo() {
    if (m_isLookUpOpen) {
        const MutexLock lock(databaseMutex);
        endhostent();
    }
}

void HostInfo::LookUpLocalHost() {
    {
        const MutexLock lock(databaseMutex);
        sethostent(1);
    }
    m_isLookUpOpen = true;
    m_name = LocalHostName();
    const std::string place = SourcePath + std::to_string(__LINE__);
    std::fputs((place + ", hostname: " + m_name.Text() + "\n").c_str(), stdout);
    std::fflush(stdout);
    LookUpByName(m_name, "HostInfo::HostInfo() Unable to get Network DB with server - " + m_name);
}

void HostInfo::LookUpByName(const StdString& name, const StdString& failure) {
    const MutexLock lock(databaseMutex);
    if (!Keep(gethostbyname(name.CString()))) {
        ReportError(failure, TEST_INTERFACE);
    }
}

// An unreadable address is still looked up, as the address of all ones.
void HostInfo::LookUpByAddress() {
    const in_addr_t address = inet_addr(m_name.CString());
    if (address == INADDR_NONE) {
        ReportError(AddressConstructor + ("Unable to get netAddr for server - " + m_name), TEST_INTERFACE);
    }
    const MutexLock lock(databaseMutex);
    if (!Keep(gethostbyaddr(&address, sizeof address, AF_INET))) {
        ReportError(AddressConstructor + ("Unable to get Network DB with server - " + m_name), TEST_INTERFACE);
    }
}

StdString HostInfo::getHostIPAddress() const {
    if (!m_entry) {
        ReportError("HostInfo::getHostIPAddress() Unable to get host IP address", TEST_INTERFACE);
        return m_name;
    }
    return m_entry->address;
}

StdString HostInfo::getHostName() const {
    if (!m_entry) {
        ReportError("HostInfo::getHostName() Unable to get host name", TEST_INTERFACE);
        return m_name;
    }
    return m_entry->name;
}

bool HostInfo::getNextHost() {
    if (!m_isLookUpOpen) {
        return false;
    }
    const MutexLock lock(databaseMutex);
    if (!Keep(gethostent())) {
        return ReportError("HostInfo::getNextHost() Unable to get Network DB entry for next Host", TEST_INTERFACE);
    }
    return true;
}

// Needs the lock.
bool HostInfo::Keep(const hostent* entry) {
    m_entry.reset();
    if (entry != nullptr) {
        m_entry = Entry{entry->h_name, FirstAddress(*entry)};
    }
    return m_entry.has_value();
}
