// One entry of the host database: a host by name, by address, or the local one. The C library keeps database and entry
// in static storage; each look-up holds a lock and copies the result, so several threads may each use an object.
// Failures are logged.
#pragma once

#include <cstdint>
#include <optional>

#include "Frameworks/Utilities/StdString.h"

struct hostent;

class HostInfo {
public:
    // The key of a look-up.
    enum HostType : std::int32_t { BY_NAME = 0, BY_ADDRESS = 1, LOCAL_HOST = 2 };

    HostInfo();  // the local host, with the database open for getNextHost; prints its name on the standard output
    HostInfo(const StdString& name, std::int32_t type);  // any other type than 0 and 1: the local host
    HostInfo(const HostInfo&) = delete;
    HostInfo& operator=(const HostInfo&) = delete;
    ~HostInfo();

    StdString getHostIPAddress() const;  // the first address; without an entry the given name
    StdString getHostName() const;       // the official name; without an entry the given name
    bool getNextHost();                  // next entry of the database; for one object at a time

private:
    struct Entry {
        StdString name;
        StdString address;
    };

    void LookUpLocalHost();
    void LookUpByName(const StdString& name, const StdString& failure);
    void LookUpByAddress();
    bool Keep(const hostent* entry);

    bool m_isLookUpOpen = false;
    std::optional<Entry> m_entry;
    StdString m_name;
};
