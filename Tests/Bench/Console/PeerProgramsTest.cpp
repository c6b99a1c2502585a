// The front end and the test station from outside.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>

#include <optional>
#include <thread>

#include "Bench/Peers/FrontEnd.h"
#include "Tests/Bench/Peers/RawClient.h"
#include "Tests/Support/BenchRun.h"

namespace Bench {
namespace {

// A port that was free a moment ago.
std::string FreePort() {
    std::string error;
    const auto probe = FrontEnd::Listen(0, error);
    EXPECT_NE(probe, nullptr) << error;
    return std::to_string(probe->Port());
}

// Connected, once the program listens.
std::unique_ptr<RawClient> Connect(const std::string& port) {
    for (int tries = 0; tries < 6000; ++tries) {
        auto client = std::make_unique<RawClient>(static_cast<std::uint16_t>(std::stoi(port)), RawClient::MayFail);
        if (client->IsConnected()) {
            return client;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ADD_FAILURE() << "no server on port " << port;
    return nullptr;
}

class PeerPrograms : public testing::Test {
protected:
    std::string Script(const std::string& text) {
        WriteFile(m_folder / "script", text);
        return m_folder / "script";
    }

    TemporaryFolder m_folder;
    BenchRun run;
};

}  // namespace

TEST_F(PeerPrograms, test_station_shows_each_answer_and_succeeds) {
    const std::string port = FreePort();
    run.Start({"--test-server", "--test-server-port", port, "--script", Script("840\n")});
    const auto client = Connect(port);
    EXPECT_EQ(client->Read(32)[12], 0x48);
    // The state, 19 bytes with time and zero byte, and their CRC.
    std::string answer(32, '\0');
    answer[14] = 23;
    answer += std::string("\x05\0\0\0\x06\0\0\0IDLE_STATE\0\x75\xA4\xF0\xF2", 23);
    client->Write(answer);
    EXPECT_EQ(run.Wait(), 0);
    EXPECT_EQ(run.Out(), "840: text \"IDLE_STATE\" at 1970-01-01 00:00:05.000000006\n");
    EXPECT_EQ(run.Err(), "");
}

TEST_F(PeerPrograms, unanswered_command_gives_1) {
    const std::string port = FreePort();
    EXPECT_EQ(run.Run({"--test-server", "--test-server-port", port, "--wait", "0", "--script", Script("840\n")}), 1);
    EXPECT_EQ(run.Out(), "840: no analyzer connected in 0 s\n");
}

TEST_F(PeerPrograms, wrong_command_gives_2_with_its_line) {
    EXPECT_EQ(run.Run({"--test-server", "--test-server-port", FreePort(), "--script", Script("\nmeasure\n")}), 2);
    EXPECT_EQ(run.Err(), "run: line 2: \"measure\": unknown command (expected a number, help or quit)\n");
}

TEST_F(PeerPrograms, missing_script_is_named) {
    for (const char* peer : {"--frontend", "--test-server"}) {
        EXPECT_EQ(run.Run({peer, std::string(peer) + "-port", FreePort(), "--script", "/nowhere/s"}), 2);
        EXPECT_EQ(run.Err(), "run: can't read the script /nowhere/s\n");
    }
}

TEST_F(PeerPrograms, busy_port_is_reported) {
    std::string error;
    const auto other = FrontEnd::Listen(0, error);
    const std::string port = std::to_string(other->Port());
    for (const std::string peer : {"--frontend", "--test-server"}) {
        EXPECT_EQ(run.Run({peer, peer + "-port", port}), 2);
        EXPECT_EQ(run.Err(), "run: " + peer + ": can't listen on port " + port + ": another program listens there\n");
        EXPECT_EQ(run.Out(), "");
    }
}

TEST_F(PeerPrograms, test_station_takes_its_port_from_the_configuration) {
    std::string error;
    const auto other = FrontEnd::Listen(0, error);
    const std::string port = std::to_string(other->Port());
    WriteFile(m_folder / "c.xml",
              "<INFO_ITEM name=\"ColorimeterCellConstant\" value=\"2.4\"/>"
              "<INFO_ITEM name=\"LogMeasurementDataFileName\" value=\"M.csv\"/>"
              "<INFO_ITEM name=\"TestServerPortNumber\" value=\"" +
                  port + "\"/>");
    EXPECT_EQ(run.Run({"--test-server", "--config", m_folder / "c.xml"}), 2);
    EXPECT_EQ(run.Err(), "run: --test-server: can't listen on port " + port + ": another program listens there\n");
}

TEST_F(PeerPrograms, front_end_runs_its_script) {
    const std::string port = FreePort();
    run.Start({"--frontend", "--frontend-port", port, "--script", Script("running\nwait ChlorineValue\nshow\n")});
    const auto client = Connect(port);
    EXPECT_EQ(client->Read(2), "2~");
    client->Write("CMD~-2`ChlorineValue~0.60;DateValue~@Friday May 01,01:02:03 am\n`");
    EXPECT_EQ(run.Wait(), 0);
    EXPECT_EQ(run.Out(),
              "running: entered\n"
              "wait: ChlorineValue \"0.60\" DateValue \"@Friday May 01,01:02:03 am\\x0A\"\n"
              "show: value \"0.60\" date \"Friday May 01,01:02:03 am\" status \"\" version \"\" state running\n");
}

namespace {

// The program at its own terminal.
class AtTerminal {
public:
    explicit AtTerminal(const std::string& port) {
        m_pid = forkpty(&m_terminal, nullptr, nullptr, nullptr);
        if (m_pid == 0) {
            execl(BINARY_FOLDER "/bench-run", "bench-run", "--frontend", "--frontend-port", port.c_str(), nullptr);
            _exit(99);
        }
    }
    AtTerminal(const AtTerminal&) = delete;
    AtTerminal& operator=(const AtTerminal&) = delete;
    ~AtTerminal() {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        close(m_terminal);
    }

    void Press(char key) const { EXPECT_EQ(write(m_terminal, &key, 1), 1); }

    bool Shows(const std::string& text) {
        while (m_seen.find(text) == std::string::npos) {
            pollfd file{m_terminal, POLLIN, 0};
            char piece[4096];
            const ssize_t length = poll(&file, 1, 60000) == 1 ? read(m_terminal, piece, sizeof piece) : 0;
            if (length <= 0) {
                ADD_FAILURE() << "not shown: " << text << "\n" << m_seen;
                return false;
            }
            m_seen.append(piece, static_cast<std::size_t>(length));
        }
        return true;
    }

    int Wait() {
        int status = 0;
        waitpid(m_pid, &status, 0);
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    int m_terminal = -1;
    pid_t m_pid = -1;
    std::string m_seen;
};

}  // namespace

TEST_F(PeerPrograms, front_end_at_a_terminal_shows_a_panel_and_takes_keys) {
    const std::string port = FreePort();
    AtTerminal terminal(port);
    ASSERT_TRUE(terminal.Shows("waiting for the analyzer"));
    terminal.Press('p');
    ASSERT_TRUE(terminal.Shows("prime: no analyzer is connected"));
    const auto client = Connect(port);
    ASSERT_TRUE(terminal.Shows("| connected "));
    client->Write("InstrumentStatus~Executing Sanity Check Step;SoftwareVersion~1.2.3.45`CMD~-2`");
    EXPECT_TRUE(terminal.Shows("| Status    Executing Sanity Check Step"));
    EXPECT_TRUE(terminal.Shows("| State     running"));
    constexpr struct {
        char key;
        const char* code;
    } Buttons[] = {{'i', "1~"}, {'r', "2~"}, {'x', "3~"}, {'p', "4~"}};
    for (const auto& button : Buttons) {
        terminal.Press(button.key);
        EXPECT_EQ(client->Read(2), button.code);
    }
    terminal.Press('q');
    EXPECT_EQ(terminal.Wait(), 0);
}

}  // namespace Bench
