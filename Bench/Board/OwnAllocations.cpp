#include "Bench/Board/OwnAllocations.h"

namespace Bench {

namespace {

// Read within malloc, so it may need none.
[[gnu::tls_model("initial-exec")]] thread_local int living = 0;

}  // namespace

OwnAllocations::OwnAllocations() { ++living; }

OwnAllocations::~OwnAllocations() { --living; }

bool OwnAllocations::Any() { return living > 0; }

}  // namespace Bench
