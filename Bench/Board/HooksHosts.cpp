// The board's host database, independent of the machine's: "localhost" and the board's own name.
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

constexpr const char* LocalHost = "localhost";
constexpr int Hosts = 2;

// The result of a look-up; valid until the thread's next one.
struct Entry {
    char name[HostNameLength + 1];
    in_addr address;
    char* aliases[1];
    char* addresses[2];
    hostent entry;
};

thread_local Entry lookedUp;
thread_local int nextHost = 0;

hostent* Fill(const char* name, in_addr address) {
    std::snprintf(lookedUp.name, sizeof(lookedUp.name), "%s", name);
    lookedUp.address = address;
    lookedUp.aliases[0] = nullptr;
    lookedUp.addresses[0] = reinterpret_cast<char*>(&lookedUp.address);
    lookedUp.addresses[1] = nullptr;
    lookedUp.entry = {lookedUp.name, lookedUp.aliases, AF_INET, sizeof(in_addr), lookedUp.addresses};
    return &lookedUp.entry;
}

in_addr Loopback() { return {htonl(INADDR_LOOPBACK)}; }

hostent* NotFound(int reason) {
    h_errno = reason;
    return nullptr;
}

void OwnName(BoardState& state, char (&name)[HostNameLength + 1]) {
    std::memcpy(name, BoardLock(state)->network.hostName, sizeof(name));
}

}  // namespace

extern "C" {

int gethostname(char* name, size_t size) noexcept {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::gethostname(name, size);
    }
    char own[HostNameLength + 1];
    OwnName(*state, own);
    const std::size_t length = std::strlen(own) + 1;
    std::memcpy(name, own, std::min(length, size));
    return Answer(length > size ? ENAMETOOLONG : 0);
}

int __gethostname_chk(char* name, size_t size, size_t space) noexcept {
    if (size > space) {
        std::abort();
    }
    return gethostname(name, size);
}

hostent* gethostbyname(const char* name) {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::gethostbyname(name);
    }
    if (CountOrFail(*state, "gethostbyname") != 0) {
        return NotFound(NETDB_INTERNAL);
    }
    in_addr address{};
    if (inet_aton(name, &address) != 0) {
        return Fill(name, address);
    }
    char own[HostNameLength + 1];
    OwnName(*state, own);
    for (const char* host : {LocalHost, static_cast<const char*>(own)}) {
        if (*name != '\0' && strcasecmp(name, host) == 0) {
            return Fill(host, Loopback());
        }
    }
    return NotFound(HOST_NOT_FOUND);
}

hostent* gethostbyaddr(const void* address, socklen_t size, int family) {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::gethostbyaddr(address, size, family);
    }
    if (CountOrFail(*state, "gethostbyaddr") != 0) {
        return NotFound(NETDB_INTERNAL);
    }
    const in_addr loopback = Loopback();
    const bool known = family == AF_INET && size == sizeof(loopback) && std::memcmp(address, &loopback, size) == 0;
    return known ? Fill(LocalHost, loopback) : NotFound(HOST_NOT_FOUND);
}

void sethostent(int stayOpen) {
    nextHost = 0;
    if (AttachedState() == nullptr) {
        Real::sethostent(stayOpen);
    }
}

hostent* gethostent() {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::gethostent();
    }
    char own[HostNameLength + 1];
    OwnName(*state, own);
    if (nextHost == Hosts || (nextHost == 1 && own[0] == '\0')) {
        return NotFound(HOST_NOT_FOUND);
    }
    return Fill(nextHost++ == 0 ? LocalHost : own, Loopback());
}

void endhostent() {
    nextHost = 0;
    if (AttachedState() == nullptr) {
        Real::endhostent();
    }
}
}
