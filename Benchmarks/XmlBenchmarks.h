// Documents of the form of the analyzer's settings file, read and changed by us and by others.
#pragma once

enum DocumentSize {
    SMALL,  // the settings file as it is delivered, 40 KB
    LARGE,  // the same sections again and again, 20 MB
};

template <DocumentSize size>
double LoadOurs();
template <DocumentSize size>
double LoadPugixml();
