// The controller of the front end's link, seen from the front end and from the log.
#include "Frameworks/Utilities/Version.h"
#include "System/UserInterfaceDataControl/UserInterfaceDataControl.h"

#include <csignal>

#include "Bench/Peers/FrontEnd.h"
#include "Tests/Support/ControllerOnBoard.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/Support/TimeZone.h"

namespace {

constexpr double Speed = 200.0;
constexpr double HangTimeout = 60.0 * Speed;  // ends a hang
constexpr int FrontEndPort = 3111;

const std::string NotSent = "UserInterfaceDataControl::SendStringToGUI :: Failed to send message to GUI.";
const std::string NoServer = "TCPSocket::ConnectToServer  Unable to connect to server";
const std::string NoShutdown = "Socket::CloseConnection Failure Shutting down socket";  // it was never connected
const std::string NoString = "TCpSocket::ReceiveString Error in receiving String";

// Ahead of every thread.
class InUtc {
    const TimeZone m_zone{"UTC"};
};

// In real time, since the front end is at the other end of a socket.
class FastBoardTest : public BoardTest {
protected:
    FastBoardTest() : BoardTest(QuietAtSpeed(Speed)) {}
};

class FrontEndLink : private InUtc,
                     public ControllerOnBoard<UserInterfaceDataControl, USER_INTERFACE_DATA_CONTROL, FastBoardTest> {
protected:
    FrontEndLink() {
        std::string error;
        frontEnd = Bench::FrontEnd::Listen(0, error);
        EXPECT_NE(frontEnd, nullptr) << error;
        EXPECT_TRUE(Board().MapPort(FrontEndPort, frontEnd->Port()));
    }

    ~FrontEndLink() override { Stop(); }

    // Until the receiver waits for commands.
    void Connect() {
        LoadSettings();
        m_readsBefore = Board().CallCount("read");
        Launch();
        Barrier();
        ASSERT_TRUE(frontEnd->WaitForConnection(HangTimeout));
        WaitForReads(1);
    }

    // From the front end, and served.
    void Hear(const std::string& bytes, std::size_t messages = 1) {
        m_heard += messages;
        EXPECT_TRUE(frontEnd->Send(bytes));
        WaitForReads(m_heard + 1);
        Barrier();
    }

    // The receiver has posted what the reads before that one gave.
    void WaitForReads(std::size_t count) {
        EXPECT_TRUE(Board().WaitUntil([this, count] { return Board().CallCount("read") >= m_readsBefore + count; }));
    }

    // Barriers count how often the test state was entered.
    void Enter(CommandType state) {
        if (state == MOVE_TO_TEST) {
            Barrier();
        } else {
            Tell(state);
        }
    }

    // The same in that state.
    void HearIn(CommandType state, const std::string& bytes) {
        Enter(state);
        Hear(bytes);
    }

    // What came on the standard output meanwhile.
    std::string PrintedFor(const std::string& bytes, std::size_t messages = 1) {
        testing::internal::CaptureStdout();
        Hear(bytes, messages);
        return testing::internal::GetCapturedStdout();
    }

    static std::unique_ptr<MeasurementMessage> Measurement(double chlorine, std::int32_t seconds) {
        MeasurementResults results;
        results.SetChlorine(chlorine);
        TimeInfo time;
        time = timespec{seconds, 0};
        results.SetTime(time);
        auto message = std::make_unique<MeasurementMessage>();
        message->SetMeasurementResults(results);
        return message;
    }

    static std::unique_ptr<MeasurementStatusMessage> Status(const char* text) {
        MeasurementStatusInfo status;
        status.SetText(text);
        auto message = std::make_unique<MeasurementStatusMessage>();
        message->SetStatusInfo(status);
        return message;
    }

    static std::unique_ptr<GUIResponseMessage> Response(std::int32_t number) {
        auto message = std::make_unique<GUIResponseMessage>();
        message->SetStatus(number);
        message->SetText("Entered SOME STATE");
        return message;
    }

    static std::unique_ptr<UserInterfaceDataMessage> Command(const char* text) {
        return ReceiverThreadForGUI::MakeMessage(text);
    }

    Texts SentCommands() {
        const std::string start = "Sending Command - ";
        Texts commands;
        for (const std::string& line : LinesOf(DEBUG_LOG_LEVEL)) {
            if (line.rfind(start, 0) == 0) {
                commands.push_back(line.substr(start.size()));
            }
        }
        return commands;
    }

    // All frames, and nothing after them.
    void ExpectFrames(const Texts& frames) {
        EXPECT_TRUE(frontEnd->WaitForFrames(frames.size(), HangTimeout));
        Barrier();
        EXPECT_EQ(frontEnd->Texts(), frames);
        EXPECT_EQ(frontEnd->Rest(), "");
    }

    std::unique_ptr<Bench::FrontEnd> frontEnd;

private:
    CapturingController m_testInterface{ControllerNames[TEST_INTERFACE]};  // sockets log in its name
    std::uint64_t m_readsBefore = 0;
    std::size_t m_heard = 0;
};

constexpr std::int32_t SomeMarchDay = 1362449647;  // 2013-03-05 02:14:07 UTC

}  // namespace

TEST_F(FrontEndLink, connects_ten_seconds_after_its_start) {
    Board().SetSpeed(10.0);
    const double start = Board().Seconds();
    Connect();
    const auto trace = Board().TraceWithTimes();
    ASSERT_EQ(trace.size(), 1U);
    EXPECT_EQ(trace[0].text, "connect 127.0.0.1:3111");
    EXPECT_GE(trace[0].seconds - start, 10.0);
    EXPECT_LT(trace[0].seconds - start, 60.0);
}

TEST_F(FrontEndLink, sends_a_measurement_as_value_and_local_date_while_running) {
    Connect();
    Tell(MOVE_TO_RUNNING);
    Post(Measurement(0.53, SomeMarchDay));
    Post(Measurement(0.0, SomeMarchDay + 12 * 3600));
    ExpectFrames({"ChlorineValue~0.53;DateValue~@Tuesday March 05,02:14:07 am\n",
                  "ChlorineValue~-.--;DateValue~@Tuesday March 05,02:14:07 pm\n"});
}

TEST_F(FrontEndLink, narrows_the_measurement_to_single_precision) {
    Connect();
    Tell(MOVE_TO_RUNNING);
    Post(Measurement(0.99999999999, SomeMarchDay));  // 1 as a float
    ASSERT_TRUE(frontEnd->WaitForFrames(1, HangTimeout));
    EXPECT_EQ(frontEnd->Screen().chlorine, "+.++");
}

TEST_F(FrontEndLink, measurement_in_any_other_state_makes_no_traffic) {
    Connect();
    for (const CommandType state : {MOVE_TO_IDLE, MOVE_TO_SHUTDOWN, MOVE_TO_TEST}) {
        Enter(state);
        Post(Measurement(0.53, SomeMarchDay));
    }
    Barrier();
    EXPECT_FALSE(Get().ProcessDataMessage(Measurement(0.53, SomeMarchDay).get()));
    Post(Status("after them"));
    ExpectFrames({"InstrumentStatus~after them;SoftwareVersion~" + GetVersionText().Text()});
}

TEST_F(FrontEndLink, status_goes_out_with_the_version_in_every_state) {
    Connect();
    Texts frames;
    for (const CommandType state : {MOVE_TO_IDLE, MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST}) {
        Enter(state);
        Post(Status(CommandNames[state].CString()));
        frames.push_back("InstrumentStatus~" + CommandNames[state].Text() + ";SoftwareVersion~" +
                         GetVersionText().Text());
    }
    ExpectFrames(frames);
}

TEST_F(FrontEndLink, response_of_the_engine_goes_out_as_its_number_alone) {
    Connect();
    Post(Response(-1));
    Post(Response(-2));
    ExpectFrames({"CMD~-1", "CMD~-2"});
}

TEST_F(FrontEndLink, what_it_sends_has_these_results) {
    Connect();
    EXPECT_TRUE(Get().ProcessDataMessage(Status("x").get()));
    EXPECT_TRUE(Get().ProcessDataMessage(Response(-1).get()));
    EXPECT_TRUE(Get().ProcessDataMessage(std::make_unique<LogInfoMessage>().get()));
    Get().SetState(RUNNING_STATE);
    EXPECT_TRUE(Get().ProcessDataMessage(Measurement(0.53, SomeMarchDay).get()));
}

TEST_F(FrontEndLink, without_memory_nothing_is_sent) {
    Connect();
    Get().SetState(RUNNING_STATE);
    const auto measurement = Measurement(0.53, SomeMarchDay);
    const auto status = Status("x");
    const auto response = Response(-1);
    const auto command = Command("3~");
    const auto resultWithoutMemory = [this](DataMessage* message) {
        const FailingAllocation noMemory(1);
        return Get().ProcessDataMessage(message);
    };
    EXPECT_FALSE(resultWithoutMemory(measurement.get()));
    EXPECT_TRUE(resultWithoutMemory(status.get()));
    EXPECT_TRUE(resultWithoutMemory(response.get()));
    EXPECT_FALSE(resultWithoutMemory(command.get()));
    EXPECT_EQ(SentCommands(), Texts{});
    Post(Status("after them"));
    ExpectFrames({"InstrumentStatus~after them;SoftwareVersion~" + GetVersionText().Text()});
}

TEST_F(FrontEndLink, code_1_moves_to_idle_where_it_is_not) {
    Connect();
    HearIn(MOVE_TO_IDLE, "1~");
    EXPECT_EQ(SentCommands(), Texts{});
    HearIn(MOVE_TO_RUNNING, "1~");
    HearIn(MOVE_TO_SHUTDOWN, "1~");
    HearIn(MOVE_TO_TEST, "1~");
    EXPECT_EQ(SentCommands(), (Texts{"MOVE_TO_IDLE", "MOVE_TO_IDLE", "MOVE_TO_IDLE"}));
}

TEST_F(FrontEndLink, code_2_moves_to_running_where_it_is_not) {
    Connect();
    HearIn(MOVE_TO_RUNNING, "2~");
    EXPECT_EQ(SentCommands(), Texts{});
    HearIn(MOVE_TO_IDLE, "2~");
    HearIn(MOVE_TO_SHUTDOWN, "2~");
    HearIn(MOVE_TO_TEST, "2~");
    EXPECT_EQ(SentCommands(), (Texts{"MOVE_TO_RUNNING", "MOVE_TO_RUNNING", "MOVE_TO_RUNNING"}));
}

TEST_F(FrontEndLink, code_3_resets_in_every_state) {
    Connect();
    for (const CommandType state : {MOVE_TO_IDLE, MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST}) {
        HearIn(state, "3~");
    }
    EXPECT_EQ(SentCommands(), (Texts{"RESET_SYSTEM", "RESET_SYSTEM", "RESET_SYSTEM", "RESET_SYSTEM"}));
}

TEST_F(FrontEndLink, code_4_primes_in_idle_alone) {
    Connect();
    for (const CommandType state : {MOVE_TO_RUNNING, MOVE_TO_SHUTDOWN, MOVE_TO_TEST}) {
        HearIn(state, "4~");
    }
    EXPECT_EQ(SentCommands(), Texts{});
    HearIn(MOVE_TO_IDLE, "4~");
    EXPECT_EQ(SentCommands(), (Texts{"PRIME_SYSTEM"}));
}

TEST_F(FrontEndLink, code_8_is_a_line_on_the_standard_output) {
    Connect();
    EXPECT_EQ(PrintedFor("8~are you there"), "We should check to see if the application is OKAY\n");
    EXPECT_EQ(SentCommands(), Texts{});
}

TEST_F(FrontEndLink, other_codes_print_two_lines) {
    Connect();
    EXPECT_EQ(PrintedFor("5~text"), "First Part 5\nSecond Part text\n");
    EXPECT_EQ(PrintedFor("6~"), "First Part 6\nSecond Part \n");
    EXPECT_EQ(PrintedFor("7"), "First Part 7\nSecond Part \n");
    EXPECT_EQ(PrintedFor("0~a\n"), "First Part 0\nSecond Part a\n\n");
    EXPECT_EQ(PrintedFor("-1~%s%n"), "First Part 4294967295\nSecond Part %s%n\n");
    EXPECT_EQ(PrintedFor("hello"), "First Part 0\nSecond Part \n");
    EXPECT_EQ(SentCommands(), Texts{});
}

TEST_F(FrontEndLink, codes_have_these_results) {
    Connect();
    Get().SetState(IDLE_STATE);
    testing::internal::CaptureStdout();
    EXPECT_TRUE(Get().ProcessDataMessage(Command("1~").get()));
    EXPECT_TRUE(Get().ProcessDataMessage(Command("2~").get()));
    EXPECT_FALSE(Get().ProcessDataMessage(Command("3~").get()));
    EXPECT_TRUE(Get().ProcessDataMessage(Command("4~").get()));
    EXPECT_FALSE(Get().ProcessDataMessage(Command("8~").get()));
    EXPECT_FALSE(Get().ProcessDataMessage(Command("5~").get()));
    Get().SetState(RUNNING_STATE);
    EXPECT_TRUE(Get().ProcessDataMessage(Command("2~").get()));
    EXPECT_TRUE(Get().ProcessDataMessage(Command("4~").get()));
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(SentCommands(), (Texts{"MOVE_TO_RUNNING", "RESET_SYSTEM", "PRIME_SYSTEM"}));
}

TEST_F(FrontEndLink, false_results_do_not_end_it) {
    Connect();
    testing::internal::CaptureStdout();
    HearIn(MOVE_TO_IDLE, "5~");
    Post(Measurement(0.53, SomeMarchDay));
    HearIn(MOVE_TO_IDLE, "3~");
    testing::internal::GetCapturedStdout();
    Post(Status("still here"));
    ExpectFrames({"InstrumentStatus~still here;SoftwareVersion~" + GetVersionText().Text()});
}

TEST_F(FrontEndLink, code_may_be_hexadecimal_and_end_at_a_zero_byte) {
    Connect();
    HearIn(MOVE_TO_IDLE, "0x2~x");
    HearIn(MOVE_TO_IDLE, std::string("2\0~9", 4));
    EXPECT_EQ(SentCommands(), (Texts{"MOVE_TO_RUNNING", "MOVE_TO_RUNNING"}));
}

TEST_F(FrontEndLink, two_commands_in_one_read_are_the_first_alone) {
    Connect();
    HearIn(MOVE_TO_IDLE, "2~go\n3~reset\n");
    EXPECT_EQ(SentCommands(), (Texts{"MOVE_TO_RUNNING"}));
}

TEST_F(FrontEndLink, a_read_takes_1024_bytes_and_not_one_more) {
    Connect();
    const std::string text(1022, 'a');
    EXPECT_EQ(PrintedFor("9~" + text), "First Part 9\nSecond Part " + text + "\n");
    EXPECT_EQ(PrintedFor("9~" + text + "7~b", 2),
              "First Part 9\nSecond Part " + text + "\nFirst Part 7\nSecond Part b\n");
}

TEST_F(FrontEndLink, a_zero_byte_alone_is_an_empty_command) {
    Connect();
    EXPECT_EQ(PrintedFor(std::string(1, '\0')), "First Part 0\nSecond Part \n");
}

namespace {

std::size_t ThreadCount() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

// For what would end the process.
class WithoutSigpipe {
public:
    WithoutSigpipe() : m_former(std::signal(SIGPIPE, SIG_IGN)) {}
    ~WithoutSigpipe() { std::signal(SIGPIPE, m_former); }
    WithoutSigpipe(const WithoutSigpipe&) = delete;
    WithoutSigpipe& operator=(const WithoutSigpipe&) = delete;

private:
    void (*m_former)(int);
};

}  // namespace

TEST_F(FrontEndLink, the_word_NULL_ends_the_receiver_and_not_the_sender) {
    Connect();
    const std::size_t threads = ThreadCount();
    EXPECT_TRUE(frontEnd->Send("NULL"));
    EXPECT_TRUE(Board().WaitUntil([threads] { return ThreadCount() == threads - 1; }));
    EXPECT_TRUE(frontEnd->Send("3~"));
    Post(Status("still here"));
    ExpectFrames({"InstrumentStatus~still here;SoftwareVersion~" + GetVersionText().Text()});
    EXPECT_EQ(SentCommands(), Texts{});
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(FrontEndLink, null_in_small_letters_is_a_command) {
    Connect();
    EXPECT_EQ(PrintedFor("null"), "First Part 0\nSecond Part \n");
}

TEST_F(FrontEndLink, a_failed_read_ends_only_the_receiver) {
    const WithoutSigpipe ignored;
    Connect();
    frontEnd->Abort();
    WaitForLine(NoString);
    Get().SetState(RUNNING_STATE);
    EXPECT_FALSE(Get().ProcessDataMessage(Measurement(0.53, SomeMarchDay).get()));
    EXPECT_TRUE(Get().ProcessDataMessage(Status("x").get()));
    const std::string notWritten = "TCPSocket::SendCommand Error in sending header information";
    EXPECT_EQ(Errors(), (Texts{NoString, notWritten, notWritten}));
}

namespace {

// Of ten attempts, each on a fresh socket.
std::vector<std::string> TenAttempts() {
    std::vector<std::string> lines;
    for (int attempt = 0; attempt < 10; ++attempt) {
        lines.push_back(NoServer);
        lines.push_back(NoShutdown);
    }
    lines.pop_back();  // the last one stays open
    return lines;
}

}  // namespace

TEST_F(FrontEndLink, tries_ten_times_to_connect) {
    Board().UnmapPort(FrontEndPort);
    Start();
    WaitForLine(NoServer, 10);
    EXPECT_EQ(Errors(), TenAttempts());
    Get().SetState(RUNNING_STATE);
    EXPECT_FALSE(Get().ProcessDataMessage(Measurement(0.53, SomeMarchDay).get()));
    EXPECT_TRUE(Get().ProcessDataMessage(Status("x").get()));
    EXPECT_TRUE(Get().ProcessDataMessage(Response(-1).get()));
    Texts expected = TenAttempts();
    expected.insert(expected.end(), 3, NotSent);
    EXPECT_EQ(Errors(), expected);
}

TEST_F(FrontEndLink, the_attempts_follow_each_other_at_once) {
    Board().UnmapPort(FrontEndPort);
    Start();
    WaitForLine(NoServer, 10);
    const auto trace = Board().TraceWithTimes();
    ASSERT_EQ(trace.size(), 10U);
    for (const auto& entry : trace) {
        EXPECT_EQ(entry.text, "connect 127.0.0.1:3111 !ECONNREFUSED");
    }
    EXPECT_FALSE(frontEnd->IsConnected());
}

TEST_F(FrontEndLink, an_attempt_that_fails_is_followed_by_the_next) {
    EXPECT_TRUE(Board().FailCall("connect", 1, ECONNREFUSED));
    Connect();
    EXPECT_EQ(Errors(), (Texts{NoServer, NoShutdown}));
    EXPECT_EQ(frontEnd->Connections(), 1U);
}

TEST_F(FrontEndLink, connects_without_an_answer_of_the_host_database) {
    EXPECT_TRUE(Board().FailCall("gethostbyname", 1, ENOENT));
    EXPECT_TRUE(Board().FailCall("gethostbyaddr", 1, ENOENT));
    Start();
    EXPECT_TRUE(frontEnd->WaitForConnection(HangTimeout));
}

TEST_F(FrontEndLink, stops_at_the_first_refused_registration) {
    constexpr struct {
        DataMessageType type;
        const char* failure;
    } Rows[] = {
        {MEASUREMENT_DATA_MESSAGE,
         "UserInterfaceDataControl::DoRegistration :: Unable to register reception of MEASUREMENT_DATA_MESSAGE "
         "message"},
        {MEASUREMENT_STATUS_MESSAGE,
         "UserInterfaceDataControl::DoRegistration :: Unable to register reception of MEASUREMENT_STATUS_MESSAGE "
         "message"},
        {USER_INTERFACE_DATA_MESSAGE,
         "UserInterfaceDataControl::DoRegistration :: Unable to register reception of USER_INTERFACE_DATA_MESSAGE"},
        {GUI_RESPONSE_DATA_MESSAGE,
         "UserInterfaceDataControl::DoRegistration :: Unable to register reception of GUI_RESPONSE_DATA_MESSAGE"},
    };
    for (const auto& row : Rows) {
        LoadSettings();
        Launch();
        // A second time it is refused; the controller sleeps meanwhile.
        EXPECT_TRUE(MessageBase::GetMessagingControl()->RegisterDataMessage(&Get(), row.type));
        WaitForLine("Changing to POST_EXITING_STATE State for - UserInterfaceDataControl");
        EXPECT_EQ(Errors().at(0), row.failure);
        Join();
        Renew();
    }
}

TEST_F(FrontEndLink, ends_its_receiver_and_the_connection) {
    Connect();
    Stop();
    EXPECT_TRUE(frontEnd->WaitForEnd(HangTimeout));
    WaitForLine("Killing Thread for - UserInterfaceDataControlReceiverThreadForGUI");
}

TEST_F(FrontEndLink, ended_while_it_still_sleeps_leaves_nothing_behind) {
    const std::size_t threads = ThreadCount();
    LoadSettings();
    Launch();
    Stop();
    // A thread that was joined may be listed a moment longer.
    EXPECT_TRUE(Board().WaitUntil([threads] { return ThreadCount() <= threads; }));
    EXPECT_TRUE(frontEnd->WaitForEnd(HangTimeout));
}

TEST_F(FrontEndLink, receiver_can_post_and_exit_by_hand) {
    Connect();
    ReceiverThreadForGUI::PostMessage(nullptr);
    Board().UnmapPort(FrontEndPort);
    ReceiverThreadForGUI receiver;
    receiver.Kill();
    pthread_join(receiver.GetThreadId(), nullptr);
    testing::internal::CaptureStdout();
    EXPECT_EQ(receiver.Exit(), 0);
    Barrier();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "First Part 0\nSecond Part \n");
    EXPECT_EQ(LinesOf(INFORMATIONAL_LOG_LEVEL),
              (Texts{"ReceiverThread::Exit() User Interface Receiver Thread Exiting"}));
}
