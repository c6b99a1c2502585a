// The client's end of a link to a server; both links of the system use it. A copy shares the connection. Any thread may
// write and close while one reads. All clients of the process share the name of the network interface.
#pragma once

#include "Frameworks/IPC/Networking/TCPSocket.h"

class TCPClient {
public:
    TCPClient() = default;
    TCPClient(const TCPClient& other) : m_socket(other.m_socket), m_names(other.GetNames()) {}
    TCPClient& operator=(const TCPClient& other);
    virtual ~TCPClient() = default;

    // Set them before the look-ups, which replace what they find.
    void SetLocalIPAddress(const StdString& address);
    void SetLocalName(const StdString& name);
    void SetServerIPAddress(const StdString& address);
    void SetServerName(const StdString& name);
    static void SetInterfaceName(const StdString& name);  // "eth0" at first

    StdString GetLocalIPAddress() const { return GetNames().localIPAddress; }
    StdString GetLocalName() const { return GetNames().localName; }
    StdString GetServerIPAddress() const { return GetNames().serverIPAddress; }
    StdString GetServerName() const { return GetNames().serverName; }
    static StdString GetInterfaceName();  // of all clients

    bool GetLocalHostInfo();  // from the host database; false without a name or an address
    bool ResolveServer();     // likewise for the server by its address; on failure the names stay

    bool IsConnected() const { return m_socket.IsConnected(); }
    bool Connect(std::int32_t port);  // to the server's address; blocks
    bool CloseConnection() { return m_socket.CloseConnection(); }
    bool CloseForGood() { return m_socket.CloseForGood(); }  // and no later Connect succeeds

    std::unique_ptr<CommunicationsCommand> ReceiveCommand() { return m_socket.RecieveCommand(); }
    std::unique_ptr<PayloadContainer> ReceivePayload(std::uint32_t length) { return m_socket.RecievePayload(length); }
    bool Send(const CommunicationsCommand* command, PayloadContainer* payload);  // false if not connected

    bool SendString(const StdString& text) { return m_socket.SendString(text); }
    StdString ReceiveString() { return m_socket.ReceiveString(); }

    // Of the network interface: six bytes, or the text "00:04:25:1C:A0:02" and a zero byte. Empty if there is no such
    // interface.
    static std::vector<std::uint8_t> GetMACAddress(bool raw);

private:
    struct Names {
        StdString localIPAddress;
        StdString localName;
        StdString serverIPAddress;
        StdString serverName;
    };

    Names GetNames() const;

    TCPSocket m_socket;
    mutable Mutex m_mutex;
    Names m_names GUARDED_BY(m_mutex);
};
