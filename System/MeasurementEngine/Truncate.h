// A number cut to a whole one, toward zero. The settings may ask for anything, so what the type can't hold becomes its
// nearest bound, and what is no number becomes 0: the plain conversion has no defined result there.
#pragma once

#include <cmath>
#include <limits>

template <typename Integer>
Integer TruncateTo(double value) {
    static_assert(sizeof(Integer) <= 4, "every value of the type has to be exact as a double");
    if (std::isnan(value)) {
        return 0;
    }
    if (value <= static_cast<double>(std::numeric_limits<Integer>::min())) {
        return std::numeric_limits<Integer>::min();
    }
    if (value >= static_cast<double>(std::numeric_limits<Integer>::max())) {
        return std::numeric_limits<Integer>::max();
    }
    return static_cast<Integer>(value);
}
