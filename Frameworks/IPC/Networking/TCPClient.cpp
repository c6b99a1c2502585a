#include "Frameworks/IPC/Networking/TCPClient.h"

#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

#include "Frameworks/IPC/Networking/HostInfo.h"

namespace {

constexpr std::size_t MACAddressSize = 6;
constexpr std::int32_t LingerSeconds = 10;

Mutex interfaceMutex;
StdString interfaceName GUARDED_BY(interfaceMutex) = "eth0";

// "00:04:25:1C:A0:02" and a zero byte.
std::vector<std::uint8_t> AsText(const std::vector<std::uint8_t>& address) {
    constexpr char Digits[] = "0123456789ABCDEF";
    std::vector<std::uint8_t> text;
    for (const std::uint8_t byte : address) {
        text.push_back(static_cast<std::uint8_t>(Digits[byte >> 4]));
        text.push_back(static_cast<std::uint8_t>(Digits[byte & 15]));
        text.push_back(':');
    }
    text.back() = '\0';
    return text;
}

bool AskForHardwareAddress(ifreq& request) {
    const int number = socket(AF_INET, SOCK_DGRAM, 0);
    if (number == -1) {
        return false;
    }
    const OpenDescriptor descriptor(number);
    return ioctl(number, SIOCGIFHWADDR, &request) != -1;
}

}  // namespace

TCPClient& TCPClient::operator=(const TCPClient& other) {
    m_socket = other.m_socket;
    Names names = other.GetNames();
    const MutexLock lock(m_mutex);
    m_names = std::move(names);
    return *this;
}

void TCPClient::SetLocalIPAddress(const StdString& address) {
    const MutexLock lock(m_mutex);
    m_names.localIPAddress = address;
}

void TCPClient::SetLocalName(const StdString& name) {
    const MutexLock lock(m_mutex);
    m_names.localName = name;
}

void TCPClient::SetServerIPAddress(const StdString& address) {
    const MutexLock lock(m_mutex);
    m_names.serverIPAddress = address;
}

void TCPClient::SetServerName(const StdString& name) {
    const MutexLock lock(m_mutex);
    m_names.serverName = name;
}

void TCPClient::SetInterfaceName(const StdString& name) {
    const MutexLock lock(interfaceMutex);
    interfaceName = name;
}

StdString TCPClient::GetInterfaceName() {
    const MutexLock lock(interfaceMutex);
    return interfaceName;
}

TCPClient::Names TCPClient::GetNames() const {
    const MutexLock lock(m_mutex);
    return m_names;
}

bool TCPClient::GetLocalHostInfo() {
    const HostInfo info;
    const StdString name = info.getHostName();
    const StdString address = info.getHostIPAddress();
    SetLocalName(name);
    SetLocalIPAddress(address);
    return !name.IsEmpty() && !address.IsEmpty();
}

bool TCPClient::ResolveServer() {
    const HostInfo info(GetServerIPAddress(), HostInfo::BY_ADDRESS);
    const StdString address = info.getHostIPAddress();
    const StdString name = info.getHostName();
    if (address.IsEmpty() || name.IsEmpty()) {
        return false;
    }
    SetServerIPAddress(address);
    SetServerName(name);
    return true;
}

bool TCPClient::Connect(std::int32_t port) {
    m_socket.SetPortNumber(port);
    m_socket.SetLingerOnOff(true);
    m_socket.SetLingerSeconds(LingerSeconds);
    m_socket.ConnectToServer(GetServerIPAddress(), HostInfo::BY_ADDRESS);
    return m_socket.IsConnected();
}

bool TCPClient::Send(const CommunicationsCommand* command, PayloadContainer* payload) {
    return m_socket.IsConnected() && m_socket.Send(command, payload);
}

std::vector<std::uint8_t> TCPClient::GetMACAddress(bool raw) {
    const StdString name = GetInterfaceName();
    ifreq request{};
    if (name.Text().size() >= sizeof request.ifr_name) {
        return {};
    }
    std::copy(name.Text().begin(), name.Text().end(), request.ifr_name);
    if (!AskForHardwareAddress(request)) {
        return {};
    }
    const char* bytes = request.ifr_hwaddr.sa_data;
    const std::vector<std::uint8_t> address(bytes, bytes + MACAddressSize);
    return raw ? address : AsText(address);
}
