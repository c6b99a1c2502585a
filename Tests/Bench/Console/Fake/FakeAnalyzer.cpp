// Stands on the bench in the analyzer's place and does what FAKE_ANALYZER says, so that the bench's own conduct shows.
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

std::string BenchPath(const std::string& name) {
    const char* bench = std::getenv("VERNICOR_BENCH");
    return std::string(bench != nullptr ? bench : "") + "/" + name;
}

void Say(const char* text) { syslog(LOG_DEBUG, "UTC 2026-12-31 23:57:05.000000001 :: %s", text); }

void OneCycle() {
    openlog("Vernicor", LOG_PID, LOG_USER);
    Say("Executing Mixing Step");
    Say("SystemControl is not a status");
    Say("Waiting for Next Measurement Initiation");
    Say("End of Measurement Cycle: LED DutyCycle = 28.571429%% and LED Adjust Time = 2500ms");
    std::ofstream file(BenchPath("card/2026-12-31_Measurement.csv"));
    file << "Text Date / Time,Xcel Time,Absorbance,Chlorine,Dark Count,Reference Count,Sample Count,Measurement "
            "Index,Seconds,Nano Seconds,Version (1.2.3.45)\r\n"
         << "UTC 2026-12-31 23:57:05,    46387.9979745370,0.249877,0.599705,1499.500000,2001234.250000,1126543.750000,"
            "1,1798761425,1\r\n";
}

void NotePid(pid_t pid) { std::ofstream(BenchPath("pids"), std::ios::app) << pid << std::endl; }

// A child in the own process group, and one that has left it and lost its parent.
void HaveChildren() {
    NotePid(getpid());
    const pid_t child = fork();
    if (child == 0) {
        for (;;) {
            pause();
        }
    }
    NotePid(child);
    const pid_t between = fork();
    if (between == 0) {
        setsid();
        const pid_t orphan = fork();
        if (orphan == 0) {
            for (;;) {
                pause();
            }
        }
        NotePid(orphan);
        _exit(0);
    }
    waitpid(between, nullptr, 0);
    std::ofstream(BenchPath("ready")) << "yes";
}

void Write(const std::string& path, const std::string& text) { std::ofstream("/sys/class/gpio/" + path) << text; }

// Blue for itself, amber for the water, and a sound again and again.
void Indicate() {
    for (const char* pin : {"17", "19"}) {
        Write("export", std::to_string(96 + std::atoi(pin)));
        Write(std::string("pioD") + pin + "/direction", "high");
    }
    if (fork() == 0) {
        for (;;) {
            if (system("aplay -q /usr/share/vorn/bin/alert.wav") < 0) {
                _exit(1);
            }
        }
    }
}

// To the front end and the test station, at the analyzer's ports.
void Connect() {
    for (const std::uint16_t port : {std::uint16_t{3111}, std::uint16_t{1234}}) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        const int link = socket(AF_INET, SOCK_STREAM, 0);
        const bool done = connect(link, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        const std::string word = "port " + std::to_string(port);
        if (!done || write(link, word.data(), word.size()) < 0) {
            _exit(1);
        }
    }
}

}  // namespace

int main() {
    const char* order = std::getenv("FAKE_ANALYZER");
    const std::string what = order != nullptr ? order : "";
    if (what == "end") {
        std::puts("the fake ends");
        std::fflush(stdout);
        _exit(3);  // with a sanitizer's run-time ahead of the board, a return would have it look for leaks
    }
    if (what == "fault") {
        std::abort();
    }
    if (what == "cycle") {
        OneCycle();
    }
    if (what == "connect") {
        Connect();
    }
    if (what == "indicate") {
        Indicate();
    }
    if (what == "children") {
        HaveChildren();
    }
    for (;;) {
        pause();
    }
}
