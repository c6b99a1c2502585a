// The export of the journal to XML. Its form is undefined, so it neither reads nor writes a document. One thread at a
// time.
#pragma once

#include <cstdint>

#include "Frameworks/Storage/MemoryMappedFile.h"
#include "Frameworks/Utilities/StdString.h"
#include "Frameworks/Utilities/TimeInfo.h"
#include "Frameworks/Xml/XMLData.h"

class JournalExportFile : public XMLData {
public:
    virtual bool GetXML() { return false; }
    virtual bool SetXML() { return false; }

    MemoryMappedFile GetMappedFile() const { return m_mappedFile; }
    TimeInfo GetFirstTime() const { return m_firstTime; }
    StdString GetFirstText() const { return m_firstText; }
    StdString GetSecondText() const { return m_secondText; }
    StdString GetThirdText() const { return m_thirdText; }
    std::uint32_t GetWord() const { return m_word; }
    StdString GetFourthText() const { return m_fourthText; }
    TimeInfo GetSecondTime() const { return m_secondTime; }

    void SetMappedFile(const MemoryMappedFile& file) { m_mappedFile = file; }
    void SetFirstTime(const TimeInfo& time) { m_firstTime = time; }
    void SetFirstText(const StdString& text) { m_firstText = text; }
    void SetSecondText(const StdString& text) { m_secondText = text; }
    void SetThirdText(const StdString& text) { m_thirdText = text; }
    void SetWord(std::uint32_t word) { m_word = word; }
    void SetFourthText(const StdString& text) { m_fourthText = text; }
    void SetSecondTime(const TimeInfo& time) { m_secondTime = time; }

private:
    MemoryMappedFile m_mappedFile;
    TimeInfo m_firstTime;
    StdString m_firstText;
    StdString m_secondText;
    StdString m_thirdText;
    std::uint32_t m_word = 0;
    StdString m_fourthText;
    TimeInfo m_secondTime;
};
