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
    constexpr explicit RealAddress(const char* name, void* (*find)(const char*) = FindNext)
        : m_name(name), m_find(find) {}

    void* Find() {
        void* address = m_address.load(std::memory_order_relaxed);
        if (address == nullptr) {
            address = m_find(m_name);
            m_address.store(address, std::memory_order_relaxed);
        }
        return address;
    }

private:
    const char* m_name;
    void* (*m_find)(const char*);
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

// The RealFunction for a function as libc declares it.
template <typename Result, typename... Parameters>
RealFunction<Result(Parameters...)> RealOf(Result (*)(Parameters...));
template <typename Result, typename... Parameters>
RealFunction<Result(Parameters..., ...)> RealOf(Result (*)(Parameters..., ...));

// The functions, by family.
// clang-format off
#define BENCH_REAL_FUNCTIONS(ROW)                                                                                  \
    ROW(open) ROW(open64) ROW(openat) ROW(openat64)                                                                \
    ROW(creat) ROW(close) ROW(dup) ROW(dup2) ROW(dup3) ROW(fcntl) ROW(fcntl64)                                     \
    ROW(read) ROW(write) ROW(readv) ROW(writev) ROW(pread64) ROW(pwrite64) ROW(lseek) ROW(lseek64)                 \
    ROW(fsync) ROW(fdatasync) ROW(ftruncate) ROW(ftruncate64) ROW(truncate) ROW(truncate64) ROW(ioctl)             \
    ROW(poll) ROW(ppoll) ROW(select) ROW(mmap) ROW(mmap64) ROW(munmap)                                             \
    ROW(fopen) ROW(fopen64) ROW(fdopen) ROW(fopencookie) ROW(fclose) ROW(setvbuf) ROW(fileno) ROW(fileno_unlocked) \
    ROW(opendir)                                                                                                   \
    ROW(stat) ROW(stat64) ROW(lstat) ROW(lstat64) ROW(fstat) ROW(fstat64) ROW(fstatat) ROW(fstatat64)              \
    ROW(statfs) ROW(statfs64) ROW(fstatfs) ROW(fstatfs64) ROW(statvfs) ROW(statvfs64) ROW(mount) ROW(umount)       \
    ROW(umount2) ROW(setmntent)                                                                                    \
    ROW(access) ROW(mkdir) ROW(rmdir) ROW(remove) ROW(unlink) ROW(rename) ROW(chmod)                               \
    ROW(clock_gettime) ROW(clock_nanosleep) ROW(gettimeofday) ROW(time) ROW(clock) ROW(nanosleep) ROW(usleep)      \
    ROW(sleep)                                                                                                     \
    ROW(socket) ROW(bind) ROW(connect) ROW(send) ROW(recv) ROW(shutdown) ROW(setsockopt) ROW(getsockopt)           \
    ROW(gethostname) ROW(gethostbyname) ROW(gethostbyaddr) ROW(sethostent) ROW(gethostent) ROW(endhostent)         \
    ROW(fork) ROW(system) ROW(pthread_create) ROW(sem_timedwait) ROW(sem_clockwait)                                \
    ROW(pthread_cond_timedwait) ROW(pthread_cond_clockwait) ROW(pthread_mutex_timedlock)                           \
    ROW(pthread_mutex_clocklock)                                                                                   \
    ROW(openlog) ROW(closelog) ROW(setlogmask) ROW(vsyslog)
// clang-format on

namespace Real {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name that is declared takes none
#define BENCH_DECLARE(name) extern decltype(RealOf(&::name)) name;
BENCH_REAL_FUNCTIONS(BENCH_DECLARE)
#undef BENCH_DECLARE

void FindAll();
}  // namespace Real

}  // namespace Bench
