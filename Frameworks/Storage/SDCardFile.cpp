#include "Frameworks/Storage/SDCardFile.h"

#include "Frameworks/Storage/FileStatus.h"
#include "Frameworks/Utilities/TimeInfo.h"

bool SDCardFile::SetCard(SDCard* card) {
    m_card = card;
    return card != nullptr;
}

bool SDCardFile::SetFile(const StdString& name) {
    m_name = name;
    if (name.IsEmpty() || m_card == nullptr) {
        return false;
    }
    TimeInfo now;
    now.SetFormat("%Y-%m-%d");
    m_path = m_card->GetMountPath();
    if (m_path.Right(1) != "/") {
        m_path += "/";
    }
    m_path += now.GetTimeString() + "_" + name;
    now.SetFormat("%d");
    m_day = now.GetTimeString();
    return true;
}

bool SDCardFile::Open() {
    Close();
    if (m_card == nullptr || !IsReachable()) {
        return false;
    }
    m_file = fopen64(m_path.CString(), "a");
    if (m_file != nullptr) {
        // Without a buffer a full card fails the record that does not fit.
        std::setvbuf(m_file, nullptr, _IONBF, 0);
    }
    return IsOpen();
}

bool SDCardFile::IsReachable() {
    if (FileStatus().IsRegularFile(m_path)) {
        return true;
    }
    if (m_card->IsPresent()) {
        return m_card->IsMounted() || m_card->Mount();
    }
    if (m_card->IsMounted()) {
        m_card->Unmount();
    }
    return false;
}

void SDCardFile::Close() {
    if (m_file != nullptr) {
        std::fclose(m_file);
        m_file = nullptr;
    }
}

bool SDCardFile::Write(const StdString& text) {
    if (m_card == nullptr) {
        return false;
    }
    if (!m_card->IsPresent()) {
        Close();
        return m_card->Unmount();
    }
    if (!m_card->IsMounted()) {
        m_card->Mount();
        Open();
    }
    return Append(text);
}

bool SDCardFile::Append(const StdString& text) {
    const std::string& bytes = text.Text();
    return IsOpen() && std::fwrite(bytes.data(), 1, bytes.size(), m_file) == bytes.size();
}

bool SDCardFile::Flush() {
    if (!IsOpen()) {
        return false;
    }
    std::fflush(m_file);
    return true;
}

bool SDCardFile::IsEmpty() const { return IsOpen() && FileStatus().IsEmptyFile(m_path); }
