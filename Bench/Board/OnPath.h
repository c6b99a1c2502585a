// One way for all hooks that take a path.
#pragma once

#include <type_traits>

#include "Bench/Board/Attachment.h"

namespace Bench {

// What a call on a path or file that the board refuses returns.
template <typename Result>
constexpr Result Failed() {
    if constexpr (std::is_pointer_v<Result>) {
        return nullptr;
    } else {
        return -1;
    }
}

// Counts a call on a path of the board. 0, or the error number with which it fails.
inline int PathError(BoardState& state, Call call, const Target& target, bool writing) {
    const BoardLock lock(state);
    if (const int error = CountCall(state, call); error != 0) {
        return error;
    }
    if (target.error != 0 || !writing || target.node.family != Family::Card) {
        return target.error;
    }
    const int error = CardAccessError(state, true);
    return error == ENOSPC && call.row != Call("mkdir").row ? 0 : error;
}

// Calls `act` with the path itself and an empty node, or on the board with the path of the file that represents it and
// its node. If the board refuses the path, fails with errno set instead.
template <typename Act>
auto OnPath(Call call, bool writing, const char* path, Act act) {
    BoardState* state = AttachedState();
    Target target;
    if (state != nullptr) {
        Resolve(*state, path, target);
    }
    if (!target.inside) {
        return act(path, Node{});
    }
    using Result = decltype(act(path, Node{}));
    const int error = PathError(*state, call, target, writing);
    return error == 0 ? act(static_cast<const char*>(target.path), target.node)
                      : Answer(error, Result{}, Failed<Result>());
}

// The same for an open file; the board never refuses one.
template <typename Act>
auto OnFile(Call call, int file, Act act) {
    const BoardFile found = FindFile(file);
    using Result = decltype(act(Node{}));
    return found && CountOrFail(*found.state, call) != 0 ? Failed<Result>() : act(found.node);
}

}  // namespace Bench
