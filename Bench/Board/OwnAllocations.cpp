#include "Bench/Board/OwnAllocations.h"

namespace Bench {

namespace {

// malloc reads it, so reading it must not allocate.
[[gnu::tls_model("initial-exec")]] thread_local int living = 0;

}  // namespace

OwnAllocations::OwnAllocations() { ++living; }

OwnAllocations::~OwnAllocations() { --living; }

bool OwnAllocations::Any() { return living > 0; }

}  // namespace Bench
