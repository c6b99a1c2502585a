#include "Frameworks/Configuration/UserConfigurationFile.h"

#include "Frameworks/Xml/XmlDocument.h"

namespace {

constexpr const char* DefaultPath = "./configuration/user.conf.xml";
constexpr const char* RootName = "ROOT_USER";
constexpr const char* UserSectionName = "USER_CONFIG_INFO";

}  // namespace

UserConfigurationFile::UserConfigurationFile() = default;

UserConfigurationFile::~UserConfigurationFile() = default;

bool UserConfigurationFile::Load(const StdString& path) {
    const StdString chosenPath = path.IsEmpty() ? DefaultPath : path;
    auto document = std::make_unique<XmlDocument>();
    if (!document->Load(chosenPath.CString()) || !document->IsWellFormed()) {
        return false;
    }
    m_user.reset();
    m_path = chosenPath;
    m_ownedDocument = std::move(document);
    SetDocument(m_ownedDocument.get());
    return true;
}

bool UserConfigurationFile::GetXML() {
    XmlDocument* document = GetDocument();
    if (document == nullptr) {
        return false;
    }
    document->ResetPosition();
    if (!document->FindElement(RootName) || !document->IntoElement()) {
        return false;
    }
    m_user = std::make_unique<UserConfigInfo>();
    m_user->SetDocument(document);
    m_user->SetSource(m_path);
    const bool read = m_user->GetXML(UserSectionName);
    return document->OutOfElement() && read;
}

bool UserConfigurationFile::SetXML() { return false; }
