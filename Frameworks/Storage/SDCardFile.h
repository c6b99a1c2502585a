// A log file on the SD card that is only ever appended to, and that outlives the removal and the return of the card.
// Its owner's thread alone uses it. The card is borrowed and has to live as long as the file.
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
    // Names the file of today (local time): mount path, "/", date, "_", name. False, and the path stays, without name
    // or card.
    bool SetFile(const StdString& name);

    bool IsOpen() const { return !m_name.IsEmpty() && m_file != nullptr; }
    bool Open();   // mounts the card where it has to
    void Close();  // nothing where it isn't open

    // Appends the whole text. Without a card in the slot the text is dropped, the file closed and the card unmounted;
    // the result is that of unmounting, so that a removed card is no error of its own. A card that came back is
    // mounted, and the file opened again. False where the text didn't fit.
    bool Write(const StdString& text);
    bool Flush();

    bool IsEmpty() const;  // open, and the file on the card has no bytes

    // Day of the month, two digits, for which the file was named; and where it lies.
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
