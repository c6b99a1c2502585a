// A new object, or null if memory has run out, for callers that can continue without it. Any thread.
#pragma once

#include <memory>
#include <new>
#include <utility>

template <typename Object, typename... Arguments>
std::unique_ptr<Object> TryMake(Arguments&&... arguments) {
    return std::unique_ptr<Object>(new (std::nothrow) Object(std::forward<Arguments>(arguments)...));
}
