// Which paths of the program are the board's, and where its files are.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "Bench/Board/Attachment.h"

namespace Bench {

namespace {

constexpr std::string_view Redirected[] = {"/sys", "/dev", "/mnt", "/etc/mtab", "/usr/share/vorn", "/var/log/vorn"};

// Paths below these folders that are not the board's: libc, the sanitizers and shells open them.
constexpr std::string_view Ordinary[] = {
    "/dev/null",
    "/dev/zero",
    "/dev/full",
    "/dev/random",
    "/dev/urandom",
    "/dev/tty",
    "/dev/ptmx",
    "/dev/pts",
    "/dev/shm",
    "/dev/fd",
    "/dev/stdin",
    "/dev/stdout",
    "/dev/stderr",
    "/dev/log",
    "/dev/console",
    "/sys/devices/system/cpu",
    "/sys/devices/system/node",
    "/sys/fs/cgroup",
    "/sys/kernel/mm/transparent_hugepage",
};

// Removes double and trailing slashes, "." and "..". Returns false if the path is too long.
bool Normalize(const char* path, char (&normal)[MaxPath], std::size_t& length) {
    std::string_view rest(path);
    length = 0;
    while (!rest.empty()) {
        const std::size_t end = rest.find('/');
        const std::string_view part = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 1);
        if (part.empty() || part == ".") {
            continue;
        }
        if (part == "..") {
            while (length > 0 && normal[--length] != '/') {
            }
            continue;
        }
        if (length + part.size() + 2 > sizeof(normal)) {
            return false;
        }
        normal[length++] = '/';
        std::memcpy(normal + length, part.data(), part.size());
        length += part.size();
    }
    normal[length] = '\0';
    return length > 0;
}

void Lead(Target& target, Family family, std::string_view folder, std::string_view inner, std::string_view rest) {
    target.inside = true;
    target.node = {family};
    Buffer path{target.path, sizeof(target.path)};
    Put(path, "%.*s%.*s%.*s", static_cast<int>(folder.size()), folder.data(), static_cast<int>(inner.size()),
        inner.data(), static_cast<int>(rest.size()), rest.data());
}

void ResolveOnCard(const BoardState& state, std::string_view rest, Target& target) {
    Lead(target, Family::Card, state.folder, "/card", rest);
    if (!rest.empty()) {
        target.error = CardAccessError(state, false);
    }
}

void ResolveOnBoard(const BoardState& state, std::string_view path, Target& target) {
    Lead(target, Family::Regular, state.folder, path, "");
    if (path == "/dev/mmcblk0" || path == "/dev/mmcblk0p1") {
        target.node.file = BlockDevice;
    }
    if (PathMissing(state, path)) {
        target.error = ENOENT;
        return;
    }
    const Node node = FindNode(state, path);
    if (node.family != Family::None) {
        target.node = node;
    }
}

}  // namespace

void Resolve(BoardState& state, const char* path, Target& target) {
    target.inside = false;
    char normal[MaxPath];
    std::size_t length = 0;
    if (path[0] != '/' || !Normalize(path, normal, length)) {
        return;
    }
    const std::string_view whole(normal, length);
    const auto below = [whole](std::string_view folder) { return IsBelow(whole, folder); };
    if (below(state.folder) || std::any_of(std::begin(Ordinary), std::end(Ordinary), below)) {
        return;
    }
    const BoardLock lock(state);
    if (state.card.mounted && below(state.card.mountPoint)) {
        ResolveOnCard(state, whole.substr(std::strlen(state.card.mountPoint)), target);
    } else if (std::any_of(std::begin(Redirected), std::end(Redirected), below)) {
        ResolveOnBoard(state, whole, target);
    }
}

}  // namespace Bench
