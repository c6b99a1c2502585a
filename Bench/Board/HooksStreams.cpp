// C streams, and the streams of the C++ library that use them. A stream on a file of the board is a cookie stream over
// the board's reads and writes, because libc's internal calls bypass the hooks. fileno still returns its descriptor,
// which the C++ library uses.
#include <fcntl.h>
#include <mntent.h>

#include <algorithm>
#include <atomic>

#include "Bench/Board/OnPath.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

constexpr int MaxStreams = 512;

struct Stream {
    std::atomic<FILE*> stream{nullptr};
    std::atomic<int> file{-1};
};

Stream streams[MaxStreams];
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

Stream* FindStream(FILE* stream) {
    Stream* end = openStreams.load() == 0 ? std::begin(streams) : std::end(streams);
    Stream* slot =
        std::find_if(std::begin(streams), end, [stream](const Stream& each) { return each.stream.load() == stream; });
    return slot == end ? nullptr : slot;
}

int StreamFile(FILE* stream) {
    const Stream* slot = FindStream(stream);
    return slot == nullptr ? -1 : slot->file.load();
}

void ForgetStream(FILE* stream) {
    if (Stream* slot = FindStream(stream); slot != nullptr) {
        slot->file.store(-1);
        slot->stream.store(nullptr);
        openStreams.fetch_sub(1);
    }
}

// The cookie of a descriptor is the address of its element.
constexpr int MaxFile = 4096;
char cookies[MaxFile];

int CookieFile(void* cookie) { return static_cast<int>(static_cast<char*>(cookie) - cookies); }

ssize_t CookieRead(void* cookie, char* data, size_t size) {
    const BoardFile file = FindFile(CookieFile(cookie));
    return file ? ReadFile(file, data, size) : Real::read(CookieFile(cookie), data, size);
}

ssize_t CookieWrite(void* cookie, const char* data, size_t size) {
    const BoardFile file = FindFile(CookieFile(cookie));
    const ssize_t written = file ? WriteFile(file, data, size) : Real::write(CookieFile(cookie), data, size);
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

// -1 for an invalid mode.
int FlagsOf(const char* mode) {
    if (mode[0] != 'r' && mode[0] != 'w' && mode[0] != 'a') {
        return -1;
    }
    int flags = mode[0] == 'r' ? O_RDONLY : O_WRONLY | O_CREAT | (mode[0] == 'w' ? O_TRUNC : O_APPEND);
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
    if (file >= MaxFile) {
        return Answer<FILE*>(EMFILE, nullptr, nullptr);
    }
    FILE* stream = Real::fopencookie(&cookies[file], mode, functions);
    if (stream != nullptr && !RememberStream(stream, file)) {
        Real::fclose(stream);
        return Answer<FILE*>(EMFILE, nullptr, nullptr);
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
    const int file = OpenPath(*state, "fopen", path, flags, AnyMode, passedOn);
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
    return FindFile(file) ? OpenCookie(file, mode) : Real::fdopen(file, mode);
}

int fclose(FILE* stream) {
    const int file = StreamFile(stream);
    if (file < 0) {
        return Real::fclose(stream);
    }
    BoardState* state = AttachedState();
    const int error = state == nullptr ? 0 : CountCall(*BoardLock(*state), "fclose");
    ForgetStream(stream);
    return Answer(error, Real::fclose(stream), EOF);  // the stream is closed even if fclose fails
}

// A stream of libc reads a large piece at once, with or without a buffer; a cookie stream without a buffer reads it
// byte by byte, each in one call. So a stream that only reads keeps its buffer.
int setvbuf(FILE* stream, char* buffer, int mode, size_t size) noexcept {
    const BoardFile file = FindFile(StreamFile(stream));
    return file && file.open->access == O_RDONLY && mode == _IONBF ? 0 : Real::setvbuf(stream, buffer, mode, size);
}

int fileno(FILE* stream) noexcept {
    const int file = StreamFile(stream);
    return file >= 0 ? file : Real::fileno(stream);
}

int fileno_unlocked(FILE* stream) noexcept {
    const int file = StreamFile(stream);
    return file >= 0 ? file : Real::fileno_unlocked(stream);
}

// getmntent_r reads the stream that libc itself opened on the bench folder's file.
FILE* setmntent(const char* path, const char* mode) noexcept {
    return OnPath("setmntent", false, path, [mode](const char* target, Node) { return Real::setmntent(target, mode); });
}
}
