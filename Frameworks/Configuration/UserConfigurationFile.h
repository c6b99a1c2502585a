// A user's settings file. The running system never loads one: only the analyzer's settings file counts. One thread at a
// time.
#pragma once

#include <memory>

#include "Frameworks/Configuration/ConfigurationSections.h"
#include "Frameworks/Xml/XMLData.h"

class UserConfigurationFile : public XMLData {
public:
    UserConfigurationFile();
    UserConfigurationFile(const UserConfigurationFile&) = delete;
    UserConfigurationFile& operator=(const UserConfigurationFile&) = delete;
    ~UserConfigurationFile() override;

    // An empty path means "./configuration/user.conf.xml". Returns false, without a report, if the file can't be read
    // or is not well formed; the previous content then stays.
    bool Load(const StdString& path);

    virtual bool GetXML();  // false without ROOT_USER or without its section
    virtual bool SetXML();  // not supported: false

    void Cleanup() {}  // does nothing: section and document live as long as this object

    UserConfigInfo* GetUserConfigInfo() const { return m_user.get(); }  // null before the first read

private:
    StdString m_path;
    std::unique_ptr<XmlDocument> m_ownedDocument;
    std::unique_ptr<UserConfigInfo> m_user;
};
