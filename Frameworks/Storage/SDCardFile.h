// A log file on the SD card. It is only appended to, and it continues after the card was removed and inserted again.
// Only its owner's thread uses it. The card is borrowed and must live as long as the file.
#pragma once

#include <cstdio>

#include "Frameworks/Storage/SDCard.h"
#include "Frameworks/Utilities/StdString.h"

class SDCardFile {
public:
    SDCardFile() = default;
    SDCardFile(const SDCardFile&) = delete;
    SDCardFile& operator=(const SDCardFile&) = delete;
    ~SDCardFile() { Close(); }

    bool SetCard(SDCard* card);  // true for a card
    // Names the file of today (local time): mount path, "/", date, "_", name. Without a name or a card it returns false
    // and keeps the path.
    bool SetFile(const StdString& name);

    bool IsOpen() const { return !m_name.IsEmpty() && m_file != nullptr; }
    bool Open();   // mounts the card if necessary
    void Close();  // does nothing if it isn't open

    // Appends the whole text. Without a card it drops the text, closes the file and unmounts; the result is the result
    // of unmounting, so that a removed card is no error. A card that returned is mounted and the file opened again.
    // Returns false if the text did not fit.
    bool Write(const StdString& text);
    bool Flush();

    bool IsEmpty() const;  // open, and of no bytes

    // Day of the month in the file's name, two digits; and its path.
    StdString GetDay() const { return m_day; }
    StdString GetPath() const { return m_path; }

private:
    bool IsReachable();
    bool Append(const StdString& text);

    StdString m_name;
    StdString m_path;
    StdString m_day;
    std::FILE* m_file = nullptr;
    SDCard* m_card = nullptr;
};
