// One event of the journal. Texts, words and bytes have no meaning yet. One thread at a time.
#pragma once

#include <cstdint>

#include "Frameworks/Utilities/StdString.h"
#include "Frameworks/Utilities/TimeInfo.h"

class JournalEntry {
public:
    StdString GetFirstText() const { return m_firstText; }
    StdString GetSecondText() const { return m_secondText; }
    std::uint32_t GetFirstWord() const { return m_firstWord; }
    std::uint8_t GetFirstByte() const { return m_firstByte; }
    std::uint8_t GetSecondByte() const { return m_secondByte; }
    std::uint32_t GetSecondWord() const { return m_secondWord; }
    std::uint32_t GetThirdWord() const { return m_thirdWord; }
    StdString GetThirdText() const { return m_thirdText; }
    TimeInfo GetFirstTime() const { return m_firstTime; }
    TimeInfo GetSecondTime() const { return m_secondTime; }

    void SetFirstText(const StdString& text) { m_firstText = text; }
    void SetSecondText(const StdString& text) { m_secondText = text; }
    void SetFirstWord(std::uint32_t word) { m_firstWord = word; }
    void SetFirstByte(std::uint8_t byte) { m_firstByte = byte; }
    void SetSecondByte(std::uint8_t byte) { m_secondByte = byte; }
    void SetSecondWord(std::uint32_t word) { m_secondWord = word; }
    void SetThirdWord(std::uint32_t word) { m_thirdWord = word; }
    void SetThirdText(const StdString& text) { m_thirdText = text; }
    void SetFirstTime(const TimeInfo& time) { m_firstTime = time; }
    void SetSecondTime(const TimeInfo& time) { m_secondTime = time; }

private:
    StdString m_firstText;
    StdString m_secondText;
    std::uint32_t m_firstWord = 0;
    std::uint8_t m_firstByte = 0;
    std::uint8_t m_secondByte = 0;
    std::uint32_t m_secondWord = 0;
    std::uint32_t m_thirdWord = 0;
    StdString m_thirdText;
    TimeInfo m_firstTime;
    TimeInfo m_secondTime;
};
