// Every frame to the front end byte for byte, and what its commands are taken for.
#include "System/UserInterfaceDataControl/CommunicationProtocol.h"

#include <gtest/gtest.h>
#include <syslog.h>

#include <cmath>
#include <limits>

#include "Frameworks/Utilities/Version.h"
#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/Support/TimeZone.h"

namespace {

class FrontEndProtocol : public BoardTest {
protected:
    FrontEndProtocol() { protocol.Init(); }

    std::string ChlorineFrame(float value) {
        protocol.SetChlorineValue(value);
        return protocol.Serialize().Text();
    }

    std::string DateFrame(std::int32_t seconds) {
        protocol.SetDateValue(seconds);
        return protocol.Serialize().Text();
    }

    std::vector<std::string> LogTexts() const {
        std::vector<std::string> texts;
        for (const Bench::LogLine& line : Board().Log()) {
            EXPECT_EQ(line.options, LOG_PID | LOG_CONS | LOG_NDELAY);
            EXPECT_EQ(line.facility, LOG_LOCAL1);
            EXPECT_EQ(line.priority, LOG_NOTICE);
            texts.push_back(line.ident + ": " + line.text);
        }
        return texts;
    }

    const TimeZone zone{"UTC"};
    CommunicationProtocol protocol;
};

// Lists that don't fit each other can't come from Init.
class MismatchedProtocol : public CommunicationProtocol {
public:
    void DropAFunction() { m_listOfFunctions.pop_back(); }
};

constexpr std::int32_t SomeMarchDay = 1362449647;  // 2013-03-05 02:14:07 UTC

}  // namespace

TEST_F(FrontEndProtocol, measurement_is_value_and_date_with_a_line_feed) {
    protocol.SetChlorineValue(0.53F);
    protocol.SetDateValue(SomeMarchDay + 12 * 3600);
    EXPECT_EQ(protocol.Serialize(), "ChlorineValue~0.53;DateValue~@Tuesday March 05,02:14:07 pm\n`");
}

TEST_F(FrontEndProtocol, status_is_text_and_version) {
    protocol.SetInstrumentStatus("Executing LED Adjustment Step");
    protocol.SetSoftwareVersion(GetVersionText());
    EXPECT_EQ(protocol.Serialize(),
              "InstrumentStatus~Executing LED Adjustment Step;SoftwareVersion~" + GetVersionText().Text() + "`");
}

TEST_F(FrontEndProtocol, entering_idle_is_the_command_alone) {
    protocol.SetCommandValue(-1);
    EXPECT_EQ(protocol.Serialize(), "CMD~-1`");
}

TEST_F(FrontEndProtocol, entering_running_is_the_command_alone) {
    protocol.SetCommandValue(-2);
    EXPECT_EQ(protocol.Serialize(), "CMD~-2`");
}

TEST_F(FrontEndProtocol, order_does_not_depend_on_the_setters) {
    protocol.SetCommandValue(7);
    protocol.SetSoftwareVersion("9.8.7.6");
    protocol.SetInstrumentStatus("status");
    protocol.SetDateValue(SomeMarchDay);
    protocol.SetChlorineValue(0.5F);
    EXPECT_EQ(protocol.Serialize(),
              "ChlorineValue~0.50;DateValue~@Tuesday March 05,02:14:07 am\n;InstrumentStatus~status;"
              "SoftwareVersion~9.8.7.6;CMD~7`");
}

TEST_F(FrontEndProtocol, nothing_set_gives_an_empty_text) { EXPECT_EQ(protocol.Serialize(), ""); }

TEST_F(FrontEndProtocol, a_frame_leaves_nothing_for_the_next) {
    protocol.SetCommandValue(-1);
    protocol.SetInstrumentStatus("once");
    protocol.Serialize();
    EXPECT_EQ(protocol.Serialize(), "");
    protocol.SetCommandValue(-2);
    EXPECT_EQ(protocol.Serialize(), "CMD~-2`");
}

TEST_F(FrontEndProtocol, the_last_setter_counts) {
    protocol.SetInstrumentStatus("first");
    protocol.SetInstrumentStatus("second");
    EXPECT_EQ(protocol.Serialize(), "InstrumentStatus~second`");
}

TEST_F(FrontEndProtocol, no_chlorine_reads_as_dashes) {
    EXPECT_EQ(ChlorineFrame(0.0F), "ChlorineValue~-.--`");
    EXPECT_EQ(ChlorineFrame(-0.0F), "ChlorineValue~-.--`");
    EXPECT_EQ(ChlorineFrame(-0.5F), "ChlorineValue~-.--`");
    EXPECT_EQ(ChlorineFrame(-std::numeric_limits<float>::infinity()), "ChlorineValue~-.--`");
}

TEST_F(FrontEndProtocol, chlorine_beyond_the_display_reads_as_pluses) {
    EXPECT_EQ(ChlorineFrame(1.0F), "ChlorineValue~+.++`");
    EXPECT_EQ(ChlorineFrame(5.0F), "ChlorineValue~+.++`");
    EXPECT_EQ(ChlorineFrame(std::numeric_limits<float>::infinity()), "ChlorineValue~+.++`");
}

TEST_F(FrontEndProtocol, limits_apply_to_the_value_and_not_to_its_text) {
    EXPECT_EQ(ChlorineFrame(0.004F), "ChlorineValue~0.00`");
    EXPECT_EQ(ChlorineFrame(0.999F), "ChlorineValue~1.00`");
}

TEST_F(FrontEndProtocol, chlorine_that_is_no_number_is_printed) {
    EXPECT_EQ(ChlorineFrame(std::copysign(std::nanf(""), 1.0F)), "ChlorineValue~nan`");
}

TEST_F(FrontEndProtocol, time_has_twelve_hours_and_lower_case_am_and_pm) {
    const std::int32_t midnight = SomeMarchDay - (2 * 3600 + 14 * 60 + 7);
    EXPECT_EQ(DateFrame(midnight), "DateValue~@Tuesday March 05,12:00:00 am\n`");
    EXPECT_EQ(DateFrame(midnight + 12 * 3600), "DateValue~@Tuesday March 05,12:00:00 pm\n`");
    EXPECT_EQ(DateFrame(midnight + 24 * 3600 - 1), "DateValue~@Tuesday March 05,11:59:59 pm\n`");
}

TEST_F(FrontEndProtocol, date_takes_every_second_of_its_32_bits) {
    EXPECT_EQ(DateFrame(0), "DateValue~@Thursday January 01,12:00:00 am\n`");
    EXPECT_EQ(DateFrame(-1), "DateValue~@Wednesday December 31,11:59:59 pm\n`");
    EXPECT_EQ(DateFrame(std::numeric_limits<std::int32_t>::max()), "DateValue~@Tuesday January 19,03:14:07 am\n`");
    EXPECT_EQ(DateFrame(std::numeric_limits<std::int32_t>::min()), "DateValue~@Friday December 13,08:45:52 pm\n`");
}

TEST_F(FrontEndProtocol, date_is_local) {
    const TimeZone east("EAST-3");
    EXPECT_EQ(DateFrame(SomeMarchDay), "DateValue~@Tuesday March 05,05:14:07 am\n`");
}

TEST_F(FrontEndProtocol, date_follows_a_change_of_the_time_zone) {
    const TimeZone utc("UTC0");
    setenv("TZ", "EAST-3", 1);
    EXPECT_EQ(DateFrame(SomeMarchDay), "DateValue~@Tuesday March 05,05:14:07 am\n`");
}

TEST_F(FrontEndProtocol, marks_within_a_status_go_out_as_they_are) {
    protocol.SetInstrumentStatus("a~b;c`d%se");
    EXPECT_EQ(protocol.Serialize(), "InstrumentStatus~a~b;c`d%se`");
}

TEST_F(FrontEndProtocol, text_ends_at_its_first_zero_byte) {
    protocol.SetInstrumentStatus(std::string("seen\0hidden", 11));
    EXPECT_EQ(protocol.Serialize(), "InstrumentStatus~seen`");
}

TEST_F(FrontEndProtocol, empty_text_is_a_name_without_a_value) {
    protocol.SetSoftwareVersion("");
    EXPECT_EQ(protocol.Serialize(), "SoftwareVersion~`");
}

TEST_F(FrontEndProtocol, text_without_memory_is_a_name_without_a_value) {
    {
        const FailingAllocation noMemory(1);
        protocol.SetInstrumentStatus("status");
    }
    protocol.SetSoftwareVersion("1.2");
    EXPECT_EQ(protocol.Serialize(), "InstrumentStatus~;SoftwareVersion~1.2`");
}

TEST_F(FrontEndProtocol, setter_without_init_writes_to_the_system_log) {
    CommunicationProtocol bare;
    bare.SetInstrumentStatus("status");
    EXPECT_EQ(bare.Serialize(), "");
    const std::vector<std::string> log = LogTexts();
    ASSERT_EQ(log.size(), 1U);
    const std::string file = log[0].substr(0, log[0].find(": "));
    EXPECT_TRUE(file.ends_with("System/UserInterfaceDataControl/StatusString.cpp")) << file;
    const std::string line = log[0].substr(file.size() + 2, log[0].find(' ', file.size() + 2) - file.size() - 2);
    EXPECT_EQ(log[0], file + ": " + line + " had a null pointer sent to it  in file " + file);
    EXPECT_GT(std::stoi(line), 0);
}

TEST_F(FrontEndProtocol, each_setter_names_its_own_file) {
    CommunicationProtocol bare;
    bare.SetChlorineValue(0.5F);
    bare.SetDateValue(1);
    bare.SetInstrumentStatus("status");
    bare.SetSoftwareVersion("1.2");
    bare.SetCommandValue(1);
    ChlorineMeasurement().SetValue(0.5F);
    CommandFromApplication().SetValue(1);
    std::vector<std::string> files;
    for (const Bench::LogLine& line : Board().Log()) {
        files.push_back(line.ident.substr(line.ident.rfind('/') + 1));
    }
    EXPECT_EQ(files, (std::vector<std::string>{"CommunicationProtocol.cpp", "DateTime.cpp", "StatusString.cpp",
                                               "VersionToGUI.cpp", "CommunicationProtocol.cpp",
                                               "ChlorineMeasurement.cpp", "CommandFromApplication.cpp"}));
}

TEST_F(FrontEndProtocol, formatting_an_element_that_is_not_there_gives_an_empty_pair) {
    EXPECT_EQ(ChlorineMeasurement().Format(), GuiPair());
    EXPECT_EQ(CommandFromApplication().Format(), GuiPair());
    EXPECT_EQ(Board().Log().size(), 2U);
}

TEST_F(FrontEndProtocol, element_without_memory_is_missing_from_the_frame) {
    const int chlorineObject = 1;
    const int chlorineElement = 2;
    const int commandObject = 3;
    const int dateElement = 5;
    for (const int missing : {chlorineObject, chlorineElement, commandObject, dateElement}) {
        const FailingAllocation noMemory(missing);
        protocol.Init();
        protocol.SetChlorineValue(0.5F);
        protocol.SetDateValue(0);
        protocol.SetInstrumentStatus("status");
        protocol.SetCommandValue(3);
        const std::string frame = protocol.Serialize().Text();
        EXPECT_EQ(frame.find("ChlorineValue~") == std::string::npos, missing <= chlorineElement) << frame;
        EXPECT_EQ(frame.find("DateValue~") == std::string::npos, missing == dateElement) << frame;
        EXPECT_NE(frame.find("InstrumentStatus~status"), std::string::npos) << frame;
        EXPECT_EQ(frame.find("CMD~3") == std::string::npos, missing == commandObject) << frame;
        EXPECT_EQ(Board().Log().size(), 2U) << "once for the setter and once for the frame";
        Board().ClearLog();
    }
}

TEST_F(FrontEndProtocol, lists_of_different_length_give_a_line_and_no_frame) {
    MismatchedProtocol mismatched;
    mismatched.Init();
    mismatched.SetChlorineValue(0.5F);
    mismatched.DropAFunction();
    EXPECT_EQ(mismatched.Serialize(), "");
    EXPECT_EQ(
        LogTexts(),
        (std::vector<std::string>{"CommunicationProtocol: m_listOfFunctions and m_listOfElements are mismatched"}));
    mismatched.SetChlorineValue(0.5F);
    EXPECT_EQ(mismatched.Serialize(), "ChlorineValue~0.50`") << "clean again";
}

namespace {

struct CommandCase {
    const char* text;
    std::int32_t code;
    const char* rest;
};

void ExpectCommand(const StdString& text, std::int32_t code, const StdString& rest) {
    const GuiCommand command = CommunicationProtocol::ParseCommand(text);
    EXPECT_EQ(command.code, code) << text.Text();
    EXPECT_EQ(command.text, rest) << text.Text();
}

}  // namespace

TEST(FrontEndCommand, is_the_code_and_a_text) {
    constexpr CommandCase cases[] = {
        {"2", 2, ""},               // no "~"
        {"2~", 2, ""},              //
        {"1~go", 1, "go"},          //
        {"1~go\n", 1, "go\n"},      // the line feed belongs to the text
        {"0x2~x", 2, "x"},          //
        {"0X1F~", 31, ""},          //
        {"x", 0, ""},               // no hexadecimal number
        {"", 0, ""},                // an empty read
        {"~", 0, ""},               //
        {"~1", 0, "1"},             //
        {"-1~", -1, ""},            //
        {" 4 ~ text", 4, " text"},  //
        {"12abc~t", 12, "t"},       //
        {"reset", 0, ""},           //
        {"3~a~b~c", 3, "a"},        // further fields don't count
        {"2~x1~y", 2, "x1"},        // two commands in one read are one
        {"1~a\n3~b\n", 1, "a\n3"},  //
    };
    for (const CommandCase& row : cases) {
        ExpectCommand(row.text, row.code, row.rest);
    }
}

TEST(FrontEndCommand, built_one_is_understood) {
    EXPECT_EQ(CommunicationProtocol::BuildCommand(1, "text"), "1~text\n");
    EXPECT_EQ(CommunicationProtocol::BuildCommand(-7, ""), "-7~\n");
    ExpectCommand(CommunicationProtocol::BuildCommand(1, "text"), 1, "text\n");
}

TEST(FrontEndFrame, is_taken_apart_into_its_pairs_and_an_empty_one) {
    EXPECT_EQ(CommunicationProtocol::ParseFrame("InstrumentStatus~a;SoftwareVersion~1.2.3.45`"),
              (std::vector<GuiPair>{{"InstrumentStatus", "a"}, {"SoftwareVersion", "1.2.3.45"}, {"", ""}}));
}

TEST(FrontEndFrame, field_without_a_value_has_an_empty_one) {
    EXPECT_EQ(CommunicationProtocol::ParseFrame("a;b~1;;c~2~3"),
              (std::vector<GuiPair>{{"a", ""}, {"b", "1"}, {"", ""}, {"c", "2"}}));
}

TEST(FrontEndFrame, empty_frame_has_no_pairs) { EXPECT_TRUE(CommunicationProtocol::ParseFrame("").empty()); }
