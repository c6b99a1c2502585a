// A settings file for the user. The class is complete, and nothing loads such a file: the analyzer's settings file
// decides alone. One thread at a time.
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

    // An empty path means "./configuration/user.conf.xml". False, without a report, where the file can't be read or is
    // not well formed; what was loaded before then stays.
    bool Load(const StdString& path);

    virtual bool GetXML();  // false without ROOT_USER or without its section
    virtual bool SetXML();  // writing is not provided for: false

    void Cleanup() {}  // nothing: the section and the document live as long as the file object

    UserConfigInfo* GetUserConfigInfo() const { return m_user.get(); }  // null before the first read

private:
    StdString m_path;
    std::unique_ptr<XmlDocument> m_ownedDocument;
    std::unique_ptr<UserConfigInfo> m_user;
};
