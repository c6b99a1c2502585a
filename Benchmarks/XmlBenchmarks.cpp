#include "Benchmarks/XmlBenchmarks.h"

#include <pugixml.hpp>

#include "Benchmarks/Documents.h"
#include "Benchmarks/Stopwatch.h"
#include "Frameworks/Xml/XmlDocument.h"

template <DocumentSize size>
double LoadOurs() {
    const std::string& path = DocumentPath(size);
    return SecondsEach(BatchOf(size), [&path] {
        XmlDocument document;
        if (!document.Load(path.c_str())) {
            EndForFailure("our document does not load");
        }
    });
}

template <DocumentSize size>
double LoadPugixml() {
    const std::string& path = DocumentPath(size);
    return SecondsEach(BatchOf(size), [&path] {
        pugi::xml_document document;
        if (!document.load_file(path.c_str())) {
            EndForFailure("pugixml's document does not load");
        }
    });
}

template double LoadOurs<SMALL>();
template double LoadOurs<LARGE>();
template double LoadPugixml<SMALL>();
template double LoadPugixml<LARGE>();
