// A new object, or null where memory has run out, for those who can go on without it. Any thread.
#pragma once

#include <memory>
#include <new>
#include <utility>

template <typename Object, typename... Arguments>
std::unique_ptr<Object> TryMake(Arguments&&... arguments) {
    return std::unique_ptr<Object>(new (std::nothrow) Object(std::forward<Arguments>(arguments)...));
}
