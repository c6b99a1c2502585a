// The functions of libc that the hooks replace. Each is looked up at its first use, so that hooks work before any
// constructor has run; the library's constructor looks up all of them, so that none is looked up after a fork. Code of
// the library that must bypass the hooks calls libc through here.
#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <mntent.h>
#include <netdb.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <ctime>

namespace Bench {

// The function of that name in the libraries after this one. Ends the process if there is none.
void* FindNext(const char* name);

class RealAddress {
public:
    constexpr explicit RealAddress(const char* name) : m_name(name) {}

    void* Find() {
        void* address = m_address.load(std::memory_order_relaxed);
        if (address == nullptr) {
            address = FindNext(m_name);
            m_address.store(address, std::memory_order_relaxed);
        }
        return address;
    }

private:
    const char* m_name;
    std::atomic<void*> m_address{nullptr};
};

template <typename Signature>
class RealFunction;

template <typename Result, typename... Parameters>
class RealFunction<Result(Parameters...)> : public RealAddress {
public:
    using RealAddress::RealAddress;
    Result operator()(Parameters... parameters) {
        return reinterpret_cast<Result (*)(Parameters...)>(Find())(parameters...);
    }
};

template <typename Result, typename... Parameters>
class RealFunction<Result(Parameters..., ...)> : public RealAddress {
public:
    using RealAddress::RealAddress;
    template <typename... More>
    Result operator()(Parameters... parameters, More... more) {
        return reinterpret_cast<Result (*)(Parameters..., ...)>(Find())(parameters..., more...);
    }
};

// One row for each function, for its declaration, definition and look-up.
#define BENCH_REAL_FUNCTIONS(ROW)                                                                   \
    ROW(open, int(const char*, int, ...))                                                           \
    ROW(open64, int(const char*, int, ...))                                                         \
    ROW(openat, int(int, const char*, int, ...))                                                    \
    ROW(openat64, int(int, const char*, int, ...))                                                  \
    ROW(creat, int(const char*, mode_t))                                                            \
    ROW(close, int(int))                                                                            \
    ROW(dup, int(int))                                                                              \
    ROW(dup2, int(int, int))                                                                        \
    ROW(dup3, int(int, int, int))                                                                   \
    ROW(fcntl, int(int, int, ...))                                                                  \
    ROW(fcntl64, int(int, int, ...))                                                                \
    ROW(read, ssize_t(int, void*, size_t))                                                          \
    ROW(write, ssize_t(int, const void*, size_t))                                                   \
    ROW(readv, ssize_t(int, const iovec*, int))                                                     \
    ROW(writev, ssize_t(int, const iovec*, int))                                                    \
    ROW(pread64, ssize_t(int, void*, size_t, off64_t))                                              \
    ROW(pwrite64, ssize_t(int, const void*, size_t, off64_t))                                       \
    ROW(lseek, off_t(int, off_t, int))                                                              \
    ROW(lseek64, off64_t(int, off64_t, int))                                                        \
    ROW(fsync, int(int))                                                                            \
    ROW(fdatasync, int(int))                                                                        \
    ROW(ftruncate, int(int, off_t))                                                                 \
    ROW(ftruncate64, int(int, off64_t))                                                             \
    ROW(truncate, int(const char*, off_t))                                                          \
    ROW(truncate64, int(const char*, off64_t))                                                      \
    ROW(ioctl, int(int, unsigned long, ...))                                                        \
    ROW(poll, int(pollfd*, nfds_t, int))                                                            \
    ROW(ppoll, int(pollfd*, nfds_t, const timespec*, const sigset_t*))                              \
    ROW(select, int(int, fd_set*, fd_set*, fd_set*, timeval*))                                      \
    ROW(mmap, void*(void*, size_t, int, int, int, off_t))                                           \
    ROW(mmap64, void*(void*, size_t, int, int, int, off64_t))                                       \
    ROW(munmap, int(void*, size_t))                                                                 \
    ROW(fopen, FILE*(const char*, const char*))                                                     \
    ROW(fopen64, FILE*(const char*, const char*))                                                   \
    ROW(fdopen, FILE*(int, const char*))                                                            \
    ROW(fopencookie, FILE*(void*, const char*, cookie_io_functions_t))                              \
    ROW(fclose, int(FILE*))                                                                         \
    ROW(setvbuf, int(FILE*, char*, int, size_t))                                                    \
    ROW(fileno, int(FILE*))                                                                         \
    ROW(fileno_unlocked, int(FILE*))                                                                \
    ROW(opendir, DIR*(const char*))                                                                 \
    ROW(stat, int(const char*, struct stat*))                                                       \
    ROW(stat64, int(const char*, struct stat64*))                                                   \
    ROW(lstat, int(const char*, struct stat*))                                                      \
    ROW(lstat64, int(const char*, struct stat64*))                                                  \
    ROW(fstat, int(int, struct stat*))                                                              \
    ROW(fstat64, int(int, struct stat64*))                                                          \
    ROW(fstatat, int(int, const char*, struct stat*, int))                                          \
    ROW(fstatat64, int(int, const char*, struct stat64*, int))                                      \
    ROW(statfs, int(const char*, struct statfs*))                                                   \
    ROW(statfs64, int(const char*, struct statfs64*))                                               \
    ROW(fstatfs, int(int, struct statfs*))                                                          \
    ROW(fstatfs64, int(int, struct statfs64*))                                                      \
    ROW(statvfs, int(const char*, struct statvfs*))                                                 \
    ROW(statvfs64, int(const char*, struct statvfs64*))                                             \
    ROW(mount, int(const char*, const char*, const char*, unsigned long, const void*))              \
    ROW(umount, int(const char*))                                                                   \
    ROW(umount2, int(const char*, int))                                                             \
    ROW(setmntent, FILE*(const char*, const char*))                                                 \
    ROW(access, int(const char*, int))                                                              \
    ROW(mkdir, int(const char*, mode_t))                                                            \
    ROW(rmdir, int(const char*))                                                                    \
    ROW(remove, int(const char*))                                                                   \
    ROW(unlink, int(const char*))                                                                   \
    ROW(rename, int(const char*, const char*))                                                      \
    ROW(chmod, int(const char*, mode_t))                                                            \
    ROW(clock_gettime, int(clockid_t, timespec*))                                                   \
    ROW(clock_nanosleep, int(clockid_t, int, const timespec*, timespec*))                           \
    ROW(gettimeofday, int(timeval*, void*))                                                         \
    ROW(time, time_t(time_t*))                                                                      \
    ROW(clock, clock_t())                                                                           \
    ROW(nanosleep, int(const timespec*, timespec*))                                                 \
    ROW(usleep, int(useconds_t))                                                                    \
    ROW(sleep, unsigned(unsigned))                                                                  \
    ROW(socket, int(int, int, int))                                                                 \
    ROW(bind, int(int, const sockaddr*, socklen_t))                                                 \
    ROW(connect, int(int, const sockaddr*, socklen_t))                                              \
    ROW(send, ssize_t(int, const void*, size_t, int))                                               \
    ROW(recv, ssize_t(int, void*, size_t, int))                                                     \
    ROW(shutdown, int(int, int))                                                                    \
    ROW(setsockopt, int(int, int, int, const void*, socklen_t))                                     \
    ROW(getsockopt, int(int, int, int, void*, socklen_t*))                                          \
    ROW(gethostname, int(char*, size_t))                                                            \
    ROW(gethostbyname, hostent*(const char*))                                                       \
    ROW(gethostbyaddr, hostent*(const void*, socklen_t, int))                                       \
    ROW(sethostent, void(int))                                                                      \
    ROW(gethostent, hostent*())                                                                     \
    ROW(endhostent, void())                                                                         \
    ROW(fork, pid_t())                                                                              \
    ROW(system, int(const char*))                                                                   \
    ROW(pthread_create, int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*))            \
    ROW(sem_timedwait, int(sem_t*, const timespec*))                                                \
    ROW(sem_clockwait, int(sem_t*, clockid_t, const timespec*))                                     \
    ROW(pthread_cond_timedwait, int(pthread_cond_t*, pthread_mutex_t*, const timespec*))            \
    ROW(pthread_cond_clockwait, int(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*)) \
    ROW(pthread_mutex_timedlock, int(pthread_mutex_t*, const timespec*))                            \
    ROW(pthread_mutex_clocklock, int(pthread_mutex_t*, clockid_t, const timespec*))                 \
    ROW(openlog, void(const char*, int, int))                                                       \
    ROW(closelog, void())                                                                           \
    ROW(setlogmask, int(int))                                                                       \
    ROW(vsyslog, void(int, const char*, va_list))

namespace Real {
#define BENCH_DECLARE(name, ...) extern RealFunction<__VA_ARGS__> name;
BENCH_REAL_FUNCTIONS(BENCH_DECLARE)
#undef BENCH_DECLARE

void FindAll();
}  // namespace Real

}  // namespace Bench
