// The commands of the two peers.
#include <gtest/gtest.h>

#include <sstream>

#include "Bench/Peers/FrontEndPanel.h"
#include "Bench/Peers/FrontEndProgram.h"
#include "Bench/Peers/TestServerProgram.h"
#include "Tests/Bench/Peers/ConnectedPeer.h"

namespace Bench {
namespace {

template <typename Program>
Reply RunLine(Program& program, const std::string& line) {
    return program.Run(WordsOf(line), line);
}

class TestCommands : public ConnectedPeer<TestServer> {
protected:
    void ExpectWrong(const std::string& line, const std::string& sentence) {
        const Reply reply = RunLine(program, line);
        EXPECT_EQ(reply.kind, Reply::Wrong) << line;
        EXPECT_EQ(reply.text, sentence);
    }

    // The reply to a request that the analyzer answers with no data and this CRC.
    Reply ReplyToCrc(char crc) {
        std::thread analyzer([this, crc] {
            EXPECT_EQ(client->Read(TestHeaderSize).size(), TestHeaderSize);
            std::string answer(TestHeaderSize + TestCrcSize, '\0');
            answer[14] = 4;
            answer[TestHeaderSize] = crc;
            client->Write(answer);
        });
        TestServerProgram slow(*peer, Deadline);
        Reply reply = RunLine(slow, "800");
        analyzer.join();
        return reply;
    }

    TestServerProgram program{*peer, 0.05};
};

class FrontEndCommands : public ConnectedPeer<FrontEnd> {
protected:
    FrontEndProgram program{*peer, Deadline};
    FrontEndProgram hasty{*peer, 0.05};
};

}  // namespace

TEST_F(TestCommands, number_alone_is_a_question) {
    EXPECT_EQ(RunLine(program, "840").text, "840: no answer in 0.05 s");
    TestRequest request;
    request.command = 840;
    EXPECT_EQ(client->Read(TestHeaderSize), EncodeTestRequest(request));
}

TEST_F(TestCommands, words_fill_the_request) {
    RunLine(program, "62100 count=3 value=60 raw source=7 destination=9");
    TestRequest request;
    request.command = 62100;
    request.count = 3;
    request.value = 60.0;
    request.raw = true;
    request.source = 7;
    request.destination = 9;
    EXPECT_EQ(client->Read(TestHeaderSize), EncodeTestRequest(request));
}

TEST_F(TestCommands, write_takes_the_rest_of_the_line) {
    RunLine(program, "30200 wait=0 write  NEW  SERIAL count=3 ");
    TestRequest request;
    request.command = 30200;
    request.data = "NEW  SERIAL count=3";
    EXPECT_EQ(client->Read(TestHeaderSize + 23), EncodeTestRequest(request));
}

TEST_F(TestCommands, answer_is_shown_after_the_number) {
    const Reply reply = ReplyToCrc(0);
    EXPECT_EQ(reply.kind, Reply::Answered);
    EXPECT_EQ(reply.text, "800: nothing");
}

TEST_F(TestCommands, answer_with_a_wrong_crc_is_a_failure) {
    const Reply reply = ReplyToCrc(1);
    EXPECT_EQ(reply.kind, Reply::Failed);
    EXPECT_EQ(reply.text, "800: wrong CRC 0x00000001 after 0 bytes");
}

TEST_F(TestCommands, wrong_words_are_named) {
    ExpectWrong("eight", "\"eight\": unknown command (expected a number, help or quit)");
    ExpectWrong("65536", "\"65536\": unknown command (expected a number, help or quit)");
    ExpectWrong("-1", "\"-1\": unknown command (expected a number, help or quit)");
    ExpectWrong("840 fast", "\"fast\": unknown word (help lists all)");
    ExpectWrong("840 speed=1", "\"speed=1\": unknown word (help lists all)");
    ExpectWrong("62100 count=16777216",
                "count: invalid value \"16777216\" (expected a whole number from 0 to 16777215)");
    ExpectWrong("62100 value=65536", "value: invalid value \"65536\" (expected a number from 0 to 65535.9999)");
    ExpectWrong("62100 value=-1", "value: invalid value \"-1\" (expected a number from 0 to 65535.9999)");
    ExpectWrong("840 source=4294967296",
                "source: invalid value \"4294967296\" (expected a whole number from 0 to 4294967295)");
    ExpectWrong("840 destination=x", "destination: invalid value \"x\" (expected a whole number from 0 to 4294967295)");
    ExpectWrong("840 wait=soon", "wait: invalid value \"soon\" (expected seconds from 0 to 1000000)");
    ExpectWrong("30200 write", "write: no text");
}

TEST_F(TestCommands, without_an_analyzer_fails) {
    client.reset();
    ASSERT_TRUE(peer->WaitForEnd(Deadline));
    const Reply reply = RunLine(program, "840");
    EXPECT_EQ(reply.kind, Reply::Failed);
    EXPECT_EQ(reply.text, "840: no analyzer connected in 0.05 s");
}

TEST_F(TestCommands, help_names_every_word) {
    const std::string help = RunLine(program, "help").text;
    for (const char* word :
         {"raw", "count=N", "value=X", "source=N", "destination=N", "wait=SECONDS", "write TEXT", "help", "quit"}) {
        EXPECT_NE(help.find(word), std::string::npos) << word;
    }
    EXPECT_EQ(RunLine(program, "quit").kind, Reply::Quit);
}

TEST_F(FrontEndCommands, entering_a_state_waits_for_the_analyzer) {
    std::thread analyzer([this] {
        EXPECT_EQ(client->Read(2), "2~");
        client->Write("InstrumentStatus~x;SoftwareVersion~1`CMD~-2`");
    });
    const Reply reply = RunLine(program, "running");
    analyzer.join();
    EXPECT_EQ(reply.kind, Reply::Answered);
    EXPECT_EQ(reply.text, "running: entered");
    EXPECT_EQ(RunLine(program, "running").text, "running: already");
}

TEST_F(FrontEndCommands, entering_a_state_without_an_answer_fails) {
    const Reply reply = RunLine(hasty, "idle");
    EXPECT_EQ(reply.kind, Reply::Failed);
    EXPECT_EQ(reply.text, "idle: no answer in 0.05 s");
    EXPECT_EQ(client->Read(2), "1~");
}

TEST_F(FrontEndCommands, reset_waits_for_the_next_connection) {
    std::thread analyzer([this] {
        EXPECT_EQ(client->Read(2), "3~");
        client.emplace(peer->Port());
    });
    EXPECT_EQ(RunLine(program, "reset").text, "reset: connected again");
    analyzer.join();
}

TEST_F(FrontEndCommands, prime_code_and_text_are_sent_without_an_answer) {
    EXPECT_EQ(RunLine(program, "prime").text, "prime: sent");
    EXPECT_EQ(RunLine(program, "code 8").text, "code 8: sent");
    EXPECT_EQ(RunLine(program, "text 0x2~a  b ").text, "text: sent");
    EXPECT_EQ(client->Read(12), "4~8~0x2~a  b");
}

TEST_F(FrontEndCommands, wait_shows_the_next_frame_of_that_name) {
    client->Write("InstrumentStatus~one;SoftwareVersion~1`InstrumentStatus~two words;SoftwareVersion~1`CMD~-1`");
    EXPECT_EQ(RunLine(program, "wait InstrumentStatus").text, "wait: InstrumentStatus \"one\" SoftwareVersion \"1\"");
    EXPECT_EQ(RunLine(program, "wait InstrumentStatus two words").text,
              "wait: InstrumentStatus \"two words\" SoftwareVersion \"1\"");
    EXPECT_EQ(RunLine(program, "wait CMD").text, "wait: CMD \"-1\"");
    EXPECT_EQ(RunLine(hasty, "wait DateValue").text, "wait: no answer in 0.05 s");
}

TEST_F(FrontEndCommands, show_prints_the_screen_in_one_line) {
    EXPECT_EQ(RunLine(program, "show").text, "show: value \"\" date \"\" status \"\" version \"\" state unknown");
    client->Write(
        "ChlorineValue~0.60;DateValue~@Friday May 01,01:02:03 am\n;InstrumentStatus~a\x1B"
        "b;"
        "SoftwareVersion~1.2.3.45;CMD~-2`");
    ASSERT_TRUE(peer->WaitForFrames(1, Deadline));
    EXPECT_EQ(RunLine(program, "show").text,
              "show: value \"0.60\" date \"Friday May 01,01:02:03 am\" status \"a\\x1Bb\" version \"1.2.3.45\" "
              "state running");
}

TEST_F(FrontEndCommands, wrong_ones_are_named) {
    for (const char* line : {"jump", "code", "code x", "code 1 2", "text", "wait"}) {
        const Reply reply = RunLine(program, line);
        EXPECT_EQ(reply.kind, Reply::Wrong) << line;
        EXPECT_EQ(reply.text, "\"" + std::string(line) + "\": unknown command (help lists all)");
    }
}

TEST_F(FrontEndCommands, without_an_analyzer_fail) {
    client.reset();
    ASSERT_TRUE(peer->WaitForEnd(Deadline));
    for (const char* line : {"idle", "running", "reset", "prime", "code 8", "text x", "wait CMD"}) {
        const Reply reply = RunLine(hasty, line);
        EXPECT_EQ(reply.kind, Reply::Failed) << line;
        EXPECT_NE(reply.text.find(": no analyzer connected in 0.05 s"), std::string::npos) << reply.text;
    }
}

TEST_F(FrontEndCommands, a_cut_connection_is_reported) {
    client->Write(std::string(FrontEnd::MaxFrame + 1, 'x'));
    ASSERT_TRUE(peer->WaitForEnd(Deadline));
    EXPECT_EQ(RunLine(hasty, "idle").text, "idle: cut off: a frame of more than 65536 bytes");
}

TEST_F(FrontEndCommands, help_names_every_command) {
    const std::string help = RunLine(program, "help").text;
    for (const char* word :
         {"idle", "running", "reset", "prime", "code N", "text TEXT", "wait NAME [VALUE]", "show", "help", "quit"}) {
        EXPECT_NE(("\n" + help).find("\n" + std::string(word)), std::string::npos) << word;
    }
    EXPECT_EQ(RunLine(program, "quit").kind, Reply::Quit);
}

namespace {

// What a script gives, with a command for each kind of reply.
int Script(const std::string& text, std::string& out, std::string& err, bool isPerson = false) {
    std::istringstream lines(text);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = RunScript(lines, isPerson, "> ", [](const std::vector<std::string>& words, const std::string&) {
        static const std::vector<std::string> Names = {"good", "bad", "wrong", "quit"};
        const auto kind = std::find(Names.begin(), Names.end(), words[0]) - Names.begin();
        return Reply{static_cast<Reply::Kind>(kind), words[0] + "!"};
    });
    out = testing::internal::GetCapturedStdout();
    err = testing::internal::GetCapturedStderr();
    return status;
}

}  // namespace

TEST(PeerScript, status_is_0_if_all_was_answered) {
    std::string out;
    std::string err;
    EXPECT_EQ(Script("", out, err), 0);
    EXPECT_EQ(Script("good\n\n# good\ngood\n", out, err), 0);
    EXPECT_EQ(out, "good!\ngood!\n");
    EXPECT_EQ(Script("bad\ngood\n", out, err), 1);
    EXPECT_EQ(out, "bad!\ngood!\n");
    EXPECT_EQ(Script("good\nwrong\ngood\n", out, err), 2);
    EXPECT_EQ(out, "good!\n");
    EXPECT_EQ(err, "run: line 2: wrong!\n");
    EXPECT_EQ(Script("good\nquit\nbad\n", out, err), 0);
    EXPECT_EQ(out, "good!\n");
}

TEST(PeerScript, a_person_may_try_again) {
    std::string out;
    std::string err;
    EXPECT_EQ(Script("wrong\ngood\n", out, err, true), 0);
    EXPECT_EQ(out, "> wrong!\n> good!\n> ");
    EXPECT_EQ(err, "");
}

TEST(PeerScript, words_and_the_rest_of_a_line) {
    EXPECT_EQ(WordsOf(" a\tb  c \r"), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_TRUE(WordsOf("  ").empty());
    EXPECT_EQ(RestAfter(" a  b  c d \r", 2), "c d");
    EXPECT_EQ(RestAfter("a b", 2), "");
    EXPECT_EQ(RestAfter("", 1), "");
}

TEST(FrontEndPanel, shows_every_value_and_every_button) {
    Screen screen;
    screen.chlorine = "0.60";
    screen.date = "@Friday May 01,01:02:03 am\n";
    screen.status = "Executing \x1B[2J" + std::string(100, 'x');
    screen.version = "1.2.3.45";
    screen.command = "-1";
    EXPECT_EQ(PanelLines(screen, true, "idle sent"),
              (std::vector<std::string>{
                  "+--------------------------------------------------------------+",
                  "| Chlorine  0.60                                               |",
                  "|           Friday May 01,01:02:03 am                          |",
                  "| Status    Executing \\x1B[2Jxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx |",
                  "| State     idle                                               |",
                  "| Version   1.2.3.45                                           |",
                  "| connected                                                    |",
                  "+--------------------------------------------------------------+",
                  "[i] idle  [r] running  [x] reset  [p] prime  [q] quit   idle sent",
              }));
    EXPECT_EQ(PanelLines(Screen(), false, "")[6], "| waiting for the analyzer                                     |");
}

}  // namespace Bench
