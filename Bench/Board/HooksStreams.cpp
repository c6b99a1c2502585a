// C streams and the streams of the C++ library above them. A stream on a file of the board is a cookie stream over the
// board's reads and writes, since libc's own inner calls meet no hook; fileno still tells its descriptor, by which the
// C++ library reads and writes.
#include <fcntl.h>
#include <mntent.h>

#include <atomic>
#include <cerrno>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

constexpr int MaximalStreams = 512;

struct Stream {
    std::atomic<FILE*> stream{nullptr};
    std::atomic<int> file{-1};
};

Stream streams[MaximalStreams];
std::atomic<int> openStreams{0};

bool RememberStream(FILE* stream, int file) {
    for (Stream& slot : streams) {
        FILE* none = nullptr;
        if (slot.stream.compare_exchange_strong(none, stream)) {
            slot.file.store(file);
            openStreams.fetch_add(1);
            return true;
        }
    }
    return false;
}

int StreamFile(FILE* stream) {
    if (openStreams.load() == 0) {
        return -1;
    }
    for (const Stream& slot : streams) {
        if (slot.stream.load() == stream) {
            return slot.file.load();
        }
    }
    return -1;
}

void ForgetStream(FILE* stream) {
    for (Stream& slot : streams) {
        if (slot.stream.load() == stream) {
            slot.file.store(-1);
            slot.stream.store(nullptr);
            openStreams.fetch_sub(1);
            return;
        }
    }
}

// A cookie is the place here with the number of its descriptor.
constexpr int MaximalFile = 4096;
char cookies[MaximalFile];

int CookieFile(void* cookie) { return static_cast<int>(static_cast<char*>(cookie) - cookies); }

ssize_t CookieRead(void* cookie, char* data, size_t size) {
    BoardState* state = AttachedState();
    const int file = CookieFile(cookie);
    return state == nullptr ? Real::read(file, data, size) : ReadFile(*state, file, FileNode(file), data, size);
}

ssize_t CookieWrite(void* cookie, const char* data, size_t size) {
    BoardState* state = AttachedState();
    const int file = CookieFile(cookie);
    const ssize_t written =
        state == nullptr ? Real::write(file, data, size) : WriteFile(*state, file, FileNode(file), data, size);
    return written < 0 ? 0 : written;
}

int CookieSeek(void* cookie, off64_t* offset, int whence) {
    const off64_t position = Real::lseek64(CookieFile(cookie), *offset, whence);
    if (position < 0) {
        return -1;
    }
    *offset = position;
    return 0;
}

int CookieClose(void* cookie) { return CloseFile(CookieFile(cookie)); }

// -1 for a mode that is none.
int FlagsOf(const char* mode) {
    int flags = 0;
    switch (mode[0]) {
        case 'r':
            flags = O_RDONLY;
            break;
        case 'w':
            flags = O_WRONLY | O_CREAT | O_TRUNC;
            break;
        case 'a':
            flags = O_WRONLY | O_CREAT | O_APPEND;
            break;
        default:
            return -1;
    }
    for (const char* next = mode + 1; *next != '\0' && *next != ','; ++next) {
        if (*next == '+') {
            flags = (flags & ~O_ACCMODE) | O_RDWR;
        } else if (*next == 'e') {
            flags |= O_CLOEXEC;
        } else if (*next == 'x') {
            flags |= O_EXCL;
        }
    }
    return flags;
}

FILE* OpenCookie(int file, const char* mode) {
    const cookie_io_functions_t functions{CookieRead, CookieWrite, CookieSeek, CookieClose};
    if (file >= MaximalFile) {
        errno = EMFILE;
        return nullptr;
    }
    FILE* stream = Real::fopencookie(&cookies[file], mode, functions);
    if (stream != nullptr && !RememberStream(stream, file)) {
        Real::fclose(stream);
        errno = EMFILE;
        return nullptr;
    }
    return stream;
}

template <typename RealOpen>
FILE* OpenStream(RealOpen& real, const char* path, const char* mode) {
    BoardState* state = AttachedState();
    const int flags = FlagsOf(mode);
    if (state == nullptr || flags < 0) {
        return real(path, mode);
    }
    constexpr mode_t AnyMode = 0666;
    bool passedOn = true;
    const int file = OpenFile(*state, Call::Fopen, path, flags, AnyMode, passedOn);
    if (passedOn) {
        return real(path, mode);
    }
    if (file < 0) {
        return nullptr;
    }
    FILE* stream = OpenCookie(file, mode);
    if (stream == nullptr) {
        CloseFile(file);
    }
    return stream;
}

}  // namespace

extern "C" {

FILE* fopen(const char* path, const char* mode) { return OpenStream(Real::fopen, path, mode); }
FILE* fopen64(const char* path, const char* mode) { return OpenStream(Real::fopen64, path, mode); }

FILE* fdopen(int file, const char* mode) noexcept {
    const bool ours = AttachedState() != nullptr && FileNode(file).family != Family::None;
    return ours ? OpenCookie(file, mode) : Real::fdopen(file, mode);
}

int fclose(FILE* stream) {
    const int file = StreamFile(stream);
    if (file < 0) {
        return Real::fclose(stream);
    }
    BoardState* state = AttachedState();
    const int failed = state == nullptr ? 0 : CountOrFail(*state, Call::Fclose);
    const int savedErrno = errno;
    ForgetStream(stream);
    const int result = Real::fclose(stream);  // the stream is gone also where fclose fails
    errno = failed != 0 ? savedErrno : errno;
    return failed != 0 ? EOF : result;
}

// A stream of libc's own reads a large piece at once, with a buffer or without; a cookie stream without one reads it
// byte by byte, each a call. So a stream that only reads keeps its buffer.
int setvbuf(FILE* stream, char* buffer, int mode, size_t size) noexcept {
    const int file = StreamFile(stream);
    const bool keeps = file >= 0 && FileAccess(file) == O_RDONLY && mode == _IONBF;
    return keeps ? 0 : Real::setvbuf(stream, buffer, mode, size);
}

int fileno(FILE* stream) noexcept {
    const int file = StreamFile(stream);
    return file >= 0 ? file : Real::fileno(stream);
}

int fileno_unlocked(FILE* stream) noexcept {
    const int file = StreamFile(stream);
    return file >= 0 ? file : Real::fileno_unlocked(stream);
}

// getmntent_r reads the stream that libc itself has opened on the file behind.
FILE* setmntent(const char* path, const char* mode) noexcept {
    BoardState* state = AttachedState();
    Target target;
    if (state != nullptr) {
        Resolve(*state, path, target);
    }
    if (!target.inside) {
        return Real::setmntent(path, mode);
    }
    if (CountOrFail(*state, Call::Setmntent) != 0) {
        return nullptr;
    }
    if (target.error != 0) {
        errno = target.error;
        return nullptr;
    }
    return Real::setmntent(target.path, mode);
}
}
