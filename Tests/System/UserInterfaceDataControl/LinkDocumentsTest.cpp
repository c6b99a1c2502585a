// Holds the bytes that the documents of the two links show against what the analyzer and the peers make of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "Bench/Peers/FrontEnd.h"
#include "Bench/Peers/TestFrames.h"
#include "Frameworks/IPC/Networking/CommunicationsCommand.h"
#include "Frameworks/IPC/Networking/PayloadContainer.h"
#include "Frameworks/Utilities/Version.h"
#include "System/UserInterfaceDataControl/CommunicationProtocol.h"
#include "Tests/Support/ReadFile.h"
#include "Tests/Support/TimeZone.h"

namespace {

// Of a line "43 4D   CM": the bytes, if the text beside them is theirs.
std::string BytesOf(const std::string& line) {
    constexpr std::size_t TextAt = 50;
    std::string bytes;
    std::istringstream digits(line.substr(0, TextAt));
    for (std::string pair; digits >> pair;) {
        bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
    }
    std::string text = bytes;
    std::replace_if(
        text.begin(), text.end(), [](char byte) { return byte < ' ' || byte > '~'; }, '.');
    EXPECT_EQ(line.substr(std::min(TextAt, line.size())), text);
    return bytes;
}

// The block of that name in the document.
std::string Example(const std::string& document, const std::string& name) {
    const std::string text = ReadFile(SOURCE_FOLDER "/Documentation/" + document);
    const std::string mark = "\n```hex " + name + "\n";
    const std::size_t start = text.find(mark);
    if (start == std::string::npos) {
        ADD_FAILURE() << "no example " << name << " in " << document;
        return {};
    }
    std::istringstream lines(text.substr(start + mark.size()));
    std::string bytes;
    for (std::string line; std::getline(lines, line) && line != "```";) {
        bytes += BytesOf(line);
    }
    return bytes;
}

std::string FrontEndExample(const std::string& name) { return Example("FrontEndLink.md", name); }
std::string TestExample(const std::string& name) { return Example("TestLink.md", name); }

std::string Shown(const std::string& frame) {
    EXPECT_EQ(frame.find('`'), frame.size() - 1);
    std::string text;
    for (const auto& [name, value] : Bench::DecodeFrontEndFrame(frame.substr(0, frame.size() - 1)).values) {
        text += name + "=" + value + "|";
    }
    return text;
}

Bench::TestRequest Request(std::uint16_t command) {
    Bench::TestRequest request;
    request.command = command;
    return request;
}

// What the analyzer takes from a header.
CommunicationsCommand Taken(const std::string& bytes) {
    CommunicationsCommand command;
    command.Clear();
    std::copy_n(bytes.begin(), CommunicationsCommand::Size, command.GetImage().begin());
    return command;
}

std::string Told(const Bench::TestRequest& request, std::string bytes) {
    std::string trouble;
    const auto answer = Bench::TakeTestAnswer(bytes, trouble);
    EXPECT_TRUE(bytes.empty());
    return answer ? Bench::DescribeTestAnswer(request, *answer) : "none: " + trouble;
}

}  // namespace

TEST(LinkDocuments, frames_to_the_front_end_are_those_of_the_analyzer) {
    const TimeZone zone("UTC");
    CommunicationProtocol protocol;
    protocol.Init();
    protocol.SetChlorineValue(0.53F);
    protocol.SetDateValue(1362449647 + 12 * 3600);
    EXPECT_EQ(protocol.Serialize(), FrontEndExample("measurement"));
    protocol.SetInstrumentStatus("Waiting for Next Measurement Initiation");
    protocol.SetSoftwareVersion(GetVersionText());
    EXPECT_EQ(protocol.Serialize(), FrontEndExample("status"));
    protocol.SetCommandValue(-1);
    EXPECT_EQ(protocol.Serialize(), FrontEndExample("idle"));
    protocol.SetCommandValue(-2);
    EXPECT_EQ(protocol.Serialize(), FrontEndExample("running"));
}

TEST(LinkDocuments, frames_to_the_front_end_are_read_by_it) {
    EXPECT_EQ(Shown(FrontEndExample("measurement")), "ChlorineValue=0.53|DateValue=@Tuesday March 05,02:14:07 pm\n|");
    EXPECT_EQ(
        Shown(FrontEndExample("status")),
        "InstrumentStatus=Waiting for Next Measurement Initiation|SoftwareVersion=" + GetVersionText().Text() + "|");
    EXPECT_EQ(Shown(FrontEndExample("idle")), "CMD=-1|");
    EXPECT_EQ(Shown(FrontEndExample("running")), "CMD=-2|");
}

TEST(LinkDocuments, command_of_the_front_end_is_understood) {
    const std::string bytes = FrontEndExample("command 2");
    EXPECT_EQ(CommunicationProtocol::BuildCommand(2, "go"), bytes);
    EXPECT_EQ(CommunicationProtocol::ParseCommand(bytes).code, 2);
}

TEST(LinkDocuments, requests_are_those_of_the_test_station) {
    EXPECT_EQ(Bench::EncodeTestRequest(Request(840)), TestExample("request 840"));
    Bench::TestRequest serial = Request(30200);
    serial.data = "NEWSERIAL";
    EXPECT_EQ(Bench::EncodeTestRequest(serial), TestExample("request 30200 write NEWSERIAL"));
    Bench::TestRequest measure = Request(62100);
    measure.count = 3;
    measure.value = 60.0;
    EXPECT_EQ(Bench::EncodeTestRequest(measure), TestExample("request 62100 count=3 value=60"));
}

TEST(LinkDocuments, requests_are_understood_by_the_analyzer) {
    EXPECT_EQ(Taken(TestExample("request 840")).GetCommand(), 840);
    const CommunicationsCommand serial = Taken(TestExample("request 30200 write NEWSERIAL"));
    EXPECT_EQ(serial.GetCommand(), 30200);
    EXPECT_EQ(serial.GetLength(), 9U);
    const CommunicationsCommand measure = Taken(TestExample("request 62100 count=3 value=60"));
    EXPECT_EQ(measure.GetCommand(), 62100);
    EXPECT_EQ(measure.GetLength(), 3U);
    EXPECT_EQ(measure.GetValue(), 60.0F);
}

TEST(LinkDocuments, answers_are_read_by_the_test_station) {
    EXPECT_EQ(Told(Request(840), TestExample("answer 840")), "text \"TEST_STATE\" at 2012-12-31 12:01:00.000000500");
    EXPECT_EQ(Told(Request(44100), TestExample("answer 44100")),
              "readings 3; 0x12345678 at 2012-12-31 12:01:00.000000500; 0x33445566 at 2012-12-31 12:01:00.000000600; "
              "0x11997788 at 2012-12-31 12:01:00.000000700");
    EXPECT_EQ(Told(Request(62100), TestExample("answer 62100")),
              "measurements 3; 0.598 at 2012-12-31 12:01:00.000000000; 0.601 at 2012-12-31 12:02:00.000000000; "
              "0.6 at 2012-12-31 12:03:00.000000000");
}

TEST(LinkDocuments, hazards_name_the_lines_as_they_are_logged) {
    const std::string text = ReadFile(SOURCE_FOLDER "/Documentation/Hazards.md");
    for (const char* line : {"TCPSocket::ConnectToServer  Unable to connect to server",
                             "UserInterfaceDataControl::SendStringToGUI :: Failed to send message to GUI.",
                             "TCpSocket::ReceiveString Error in receiving String"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line;
    }
}
