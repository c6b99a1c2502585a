// A new object, or null where memory has run out: a cycle then goes on without it and says so.
#pragma once

#include <memory>
#include <new>
#include <utility>

template <typename Object, typename... Arguments>
std::unique_ptr<Object> TryMake(Arguments&&... arguments) {
    return std::unique_ptr<Object>(new (std::nothrow) Object(std::forward<Arguments>(arguments)...));
}
