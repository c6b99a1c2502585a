// Loading a document from a file and indexing it: its time, and the memory at its peak.
#pragma once

#include "Benchmarks/Documents.h"
#include "Benchmarks/HeapPeak.h"
#include "Benchmarks/Readers.h"
#include "Benchmarks/Stopwatch.h"

template <class Reader>
void LoadOrEnd(Reader& reader, DocumentSize size) {
    if (!reader.Load(DocumentPath(size))) {
        EndForFailure("a document does not load");
    }
}

template <class Reader, DocumentSize size>
double LoadTime() {
    DocumentPath(size);
    return SecondsEach(BatchOf(size), [] {
        Reader reader;
        LoadOrEnd(reader, size);
    });
}

// Bytes an element, the text included.
template <class Reader, DocumentSize size>
double LoadMemory() {
    OurReader counter;
    LoadOrEnd(counter, size);
    const double elements = counter.document.GetIndex().NextFree() - 1;
    const HeapPeak peak;
    Reader reader;
    LoadOrEnd(reader, size);
    return static_cast<double>(peak.Bytes()) / elements;
}
