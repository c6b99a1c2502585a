#include <dirent.h>
#include <mntent.h>
#include <netdb.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>

#include "Bench/Board/Attachment.h"
#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/NewProcess.h"
#include "Tests/Support/RawPeer.h"

namespace {

constexpr const char* SomeFile = "/var/log/vorn/data/file";

// Each kind with a call of it that succeeds on a fresh board; true: it did.
struct KindOfCall {
    const char* kind;
    std::function<bool()> call;
};

int OpenSomeFile() { return open(SomeFile, O_RDWR | O_CREAT, 0600); }

template <typename Act>
bool WithFile(Act act) {
    const int file = OpenSomeFile();
    const bool done = act(file);
    const int savedErrno = errno;
    close(file);
    errno = savedErrno;
    return done;
}

bool TryPoll() {
    WriteDevice("/sys/class/gpio/export", "2");
    const int file = open("/sys/class/gpio/pioA2/value", O_RDONLY);
    pollfd files{file, POLLPRI, 0};
    const bool done = poll(&files, 1, 0) >= 0;
    const int savedErrno = errno;
    close(file);
    errno = savedErrno;
    return done;
}

bool TryStream() {
    FILE* file = fopen(SomeFile, "a");
    if (file == nullptr) {
        return false;
    }
    return fclose(file) == 0;
}

bool TryDirectory() {
    DIR* folder = opendir("/sys/class/gpio");
    return folder != nullptr && closedir(folder) == 0;
}

bool TryMountTable() {
    FILE* table = setmntent("/etc/mtab", "r");
    return table != nullptr && endmntent(table) == 1;
}

bool TryMount() { return mount("/dev/mmcblk0p1", "/mnt/sd-card", "vfat", 16, "") == 0; }

template <typename Act>
bool WithSocket(Act act) {
    const int file = socket(AF_INET, SOCK_STREAM, 0);
    const bool done = act(file);
    const int savedErrno = errno;
    close(file);
    errno = savedErrno;
    return done;
}

// A connected socket of the program, and its peer's, which is none of the board's.
template <typename Act>
bool WithPeer(Act act) {
    const RawListener listener;
    {
        const Bench::BoardLock lock(*Bench::AttachedState());
        Bench::AttachedState()->network.open = true;
    }
    return WithSocket([&](int file) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(listener.Port());
        if (connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
            return false;
        }
        const RawConnection peer = listener.Accept();
        peer.Send({'x'});
        return act(file);
    });
}

bool TryFork() {
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    return child > 0 && waitpid(child, nullptr, 0) == child;
}

const std::vector<KindOfCall>& Calls() {
    static const std::vector<KindOfCall> calls{
        {"open", [] { return WithFile([](int file) { return file >= 0; }); }},
        {"close", [] { return close(OpenSomeFile()) == 0; }},
        {"read", [] { return WithFile([](int file) { return read(file, std::string(8, ' ').data(), 8) >= 0; }); }},
        {"write", [] { return WithFile([](int file) { return write(file, "x", 1) == 1; }); }},
        {"seek", [] { return WithFile([](int file) { return lseek(file, 0, SEEK_SET) == 0; }); }},
        {"sync", [] { return WithFile([](int file) { return fsync(file) == 0; }); }},
        {"ioctl",
         [] {
             std::uint8_t mode = 0;
             const int file = open("/dev/spidev32765.1", O_RDWR);
             const bool done = ioctl(file, 0x40016B01, &mode) == 0;
             const int savedErrno = errno;
             close(file);
             errno = savedErrno;
             return done;
         }},
        {"poll", TryPoll},
        {"mmap", [] { return WriteRegister(0xFFFFF430, 0); }},
        {"fopen", TryStream},
        {"fclose", TryStream},
        {"opendir", TryDirectory},
        {"stat",
         [] {
             struct stat status {};
             return stat("/dev/mem", &status) == 0;
         }},
        {"statfs",
         [] {
             struct statfs64 space {};
             return statfs64("/mnt/sd-card", &space) == 0;
         }},
        {"mount", [] { return TryMount(); }},
        {"umount", [] { return TryMount() && umount("/mnt/sd-card") == 0; }},
        {"setmntent", TryMountTable},
        {"access", [] { return access("/dev/mem", F_OK) == 0; }},
        {"mkdir", [] { return mkdir("/mnt/new", 0700) == 0; }},
        {"remove",
         [] {
             close(OpenSomeFile());
             return remove(SomeFile) == 0;
         }},
        {"rename",
         [] {
             close(OpenSomeFile());
             return rename(SomeFile, "/var/log/vorn/data/other") == 0;
         }},
        {"truncate", [] { return WithFile([](int file) { return ftruncate(file, 0) == 0; }); }},
        {"chmod", [] { return chmod("/usr/share/vorn", 0700) == 0; }},
        {"clock_gettime",
         [] {
             timespec now{};
             return clock_gettime(CLOCK_REALTIME, &now) == 0;
         }},
        {"fork", TryFork},
        {"system", [] { return system("true") == 0; }},
        {"socket", [] { return WithSocket([](int file) { return file >= 0; }); }},
        {"connect", [] { return WithPeer([](int /*file*/) { return true; }); }},
        {"send", [] { return WithPeer([](int file) { return send(file, "x", 1, 0) == 1; }); }},
        {"recv",
         [] {
             return WithPeer([](int file) {
                 char got = 0;
                 return recv(file, &got, 1, 0) == 1;
             });
         }},
        {"setsockopt",
         [] {
             return WithSocket([](int file) {
                 const int on = 1;
                 return setsockopt(file, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof(on)) == 0;
             });
         }},
        {"getsockopt",
         [] {
             return WithSocket([](int file) {
                 int value = 0;
                 socklen_t size = sizeof(value);
                 return getsockopt(file, SOL_SOCKET, SO_KEEPALIVE, &value, &size) == 0;
             });
         }},
        {"shutdown", [] { return WithPeer([](int file) { return shutdown(file, SHUT_RDWR) == 0; }); }},
        {"gethostbyname", [] { return gethostbyname("localhost") != nullptr; }},
        {"gethostbyaddr",
         [] {
             const in_addr_t address = htonl(INADDR_LOOPBACK);
             return gethostbyaddr(&address, sizeof(address), AF_INET) != nullptr;
         }},
        {"pthread_create",
         [] {
             pthread_t thread{};
             const int error = pthread_create(
                 &thread, nullptr, [](void* /*nothing*/) -> void* { return nullptr; }, nullptr);
             errno = error;
             return error == 0 && pthread_join(thread, nullptr) == 0;
         }},
    };
    return calls;
}

class CallsTest : public BoardTest, public testing::WithParamInterface<KindOfCall> {};

TEST_P(CallsTest, a_call_can_be_made_to_fail) {
    // The thread sanitizer starts its own thread together with the first one.
    ASSERT_TRUE(GetParam().call());
    Board().Reset({});
    ASSERT_TRUE(Board().FailCall(GetParam().kind, 1, EMFILE));
    EXPECT_FALSE(GetParam().call());
    EXPECT_TRUE(GetParam().kind == std::string("mmap") || errno == EMFILE) << errno;
}

TEST_P(CallsTest, only_the_chosen_call_fails) {
    ASSERT_TRUE(GetParam().call());
    Board().Reset({});
    EXPECT_TRUE(GetParam().call());
    EXPECT_GE(Board().CallCount(GetParam().kind), 1U);
}

INSTANTIATE_TEST_SUITE_P(EachKind, CallsTest, testing::ValuesIn(Calls()),
                         [](const auto& each) { return std::string(each.param.kind); });

using CallTest = BoardTest;

// All kinds but allocations, which have their own test program.
TEST_F(CallTest, every_kind_is_tried_here) {
    std::vector<std::string> kinds = Bench::Board::CallKinds();
    std::erase(kinds, "allocation");
    ASSERT_EQ(Calls().size(), kinds.size());
    for (std::size_t i = 0; i < Calls().size(); ++i) {
        EXPECT_EQ(Calls()[i].kind, kinds[i]);
    }
}

TEST_F(CallTest, the_third_call_fails_and_no_other) {
    ASSERT_TRUE(Board().FailCall("access", 3, EACCES));
    EXPECT_EQ(access("/dev/mem", F_OK), 0);
    EXPECT_EQ(access("/dev/mem", F_OK), 0);
    EXPECT_EQ(access("/dev/mem", F_OK), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(access("/dev/mem", F_OK), 0);
}

TEST_F(CallTest, the_third_call_kills_the_process_that_makes_it) {
    ASSERT_TRUE(Board().KillAtCall("access", 3));
    NewProcess process([](const NewProcess::Tell& tell) {
        for (const char* text : {"1", "2", "3"}) {
            static_cast<void>(access("/dev/mem", F_OK));
            tell(text);
        }
    });
    EXPECT_EQ(process.Answer(), "12");
    const int status = process.Wait();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
    EXPECT_EQ(access("/dev/mem", F_OK), 0);
    EXPECT_FALSE(Board().KillAtCall("knock", 1));
}

TEST_F(CallTest, calls_on_files_of_the_machine_do_not_count) {
    EXPECT_EQ(access("/tmp", F_OK), 0);
    EXPECT_EQ(Board().CallCount("access"), 0U);
}

TEST_F(CallTest, an_unknown_kind_is_refused) {
    EXPECT_FALSE(Board().FailCall("knock", 1, EIO));
    EXPECT_FALSE(Board().FailCall("open", 0, EIO));
}

}  // namespace

TEST_F(CallTest, a_stream_without_a_buffer_reads_large_pieces) {
    const std::string text(10000, 'x');
    ASSERT_TRUE(WithFile([&text](int file) { return write(file, text.data(), text.size()) == 10000; }));
    FILE* file = fopen(SomeFile, "r");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(setvbuf(file, nullptr, _IONBF, 0), 0);
    const std::uint64_t before = Board().CallCount("read");
    std::string got(text.size(), '\0');
    EXPECT_EQ(fread(got.data(), 1, got.size(), file), got.size());
    EXPECT_EQ(fclose(file), 0);
    EXPECT_EQ(got, text);
    EXPECT_LE(Board().CallCount("read") - before, 4U);
}
