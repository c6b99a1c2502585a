// The whole part of a number. A value out of the type's range becomes the nearest bound, and no number becomes 0: a
// plain conversion is undefined there. Any thread.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

template <typename Integer>
Integer TruncateTo(double value) {
    static_assert(sizeof(Integer) <= 4, "a double must hold every value of the type");
    using Limits = std::numeric_limits<Integer>;
    return std::isnan(value) ? Integer{0}
                             : static_cast<Integer>(std::clamp<double>(value, Limits::min(), Limits::max()));
}
