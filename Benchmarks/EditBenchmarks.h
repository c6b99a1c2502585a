// Loading a document, changing one attribute of an item in its middle, and saving it with every other byte as it was.
#pragma once

#include "Benchmarks/Documents.h"

template <DocumentSize size>
double EditOurs();
template <DocumentSize size>
double EditPugixml();
