#include "Frameworks/Utilities/Version.h"

StdString GetVersionText() {
    StdString text;
    for (const int number : VersionNumbers) {
        StdString digits;
        digits.FromInteger(number);
        text += (text.IsEmpty() ? digits : "." + digits);
    }
    return text;
}
