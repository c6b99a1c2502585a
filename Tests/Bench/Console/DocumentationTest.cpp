// Compares Configuration.md and Bench.md with the settings, options, faults and instrument fields that exist.
#include <gtest/gtest.h>

#include <set>

#include "Bench/Board/Board.h"
#include "Bench/Console/Options.h"
#include "Tests/Support/BenchRun.h"

namespace Bench {
namespace {

// The values of an attribute of all elements of that name, in the sample configuration.
std::set<std::string> SampleValues(const std::string& attribute) {
    const std::string text = ReadFile(SOURCE_FOLDER "/configuration/analyzer.conf.xml");
    const std::string start = " " + attribute + "=\"";
    std::set<std::string> values;
    for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start, at)) {
        at += start.size();
        values.insert(text.substr(at, text.find('"', at) - at));
    }
    return values;
}

bool HasRow(const std::string& document, const std::string& name) {
    return document.find("\n| `" + name + "` |") != std::string::npos;
}

TEST(Documentation, every_key_of_the_sample_configuration_has_its_row) {
    const std::string document = ReadFile(SOURCE_FOLDER "/Documentation/Configuration.md");
    const std::set<std::string> keys = SampleValues("name");
    ASSERT_GT(keys.size(), 60U);
    for (const std::string& key : keys) {
        if (key.rfind("Step ", 0) != 0) {  // the items of the order list, which are names of steps
            EXPECT_TRUE(HasRow(document, key)) << key;
        }
    }
}

TEST(Documentation, sample_values_of_the_rows_are_those_of_the_file) {
    const std::string document = ReadFile(SOURCE_FOLDER "/Documentation/Configuration.md");
    const std::string text = ReadFile(SOURCE_FOLDER "/configuration/analyzer.conf.xml");
    for (const std::string& key : SampleValues("name")) {
        const std::size_t item = text.find("<INFO_ITEM name=\"" + key + "\"");
        if (item > text.find("<MEASUREMENT_STEP_LIST>") && item < text.find("</MEASUREMENT_STEP_LIST>")) {
            continue;
        }
        const std::size_t start = text.find(" value=\"", item) + 8;
        const std::string value = text.substr(start, text.find('"', start) - start);
        const std::size_t row = document.find("\n| `" + key + "` |");
        const std::string line = document.substr(row, document.find('\n', row + 1) - row);
        EXPECT_NE(line.find("| " + value + " |"), std::string::npos) << key << ": " << value << line;
    }
}

TEST(Documentation, every_section_is_described) {
    const std::string document = ReadFile(SOURCE_FOLDER "/Documentation/Configuration.md");
    for (const char* section : {"GENERAL_INFO", "DEVICE_MONITOR_INFO", "LOGGING_INFO", "MEASUREMENT_ENGINE_INFO",
                                "MESSAGING_ENGINE_INFO", "REMOTE_INDICATOR_INFO", "SYSTEM_CONTROL_INFO",
                                "SYSTEM_MONITOR_INFO", "TEST_INTERFACE_INFO", "WEB_INTERFACE_INFO"}) {
        EXPECT_NE(document.find(section), std::string::npos) << section;
    }
}

TEST(Documentation, every_fault_has_its_row) {
    const std::string document = ReadFile(SOURCE_FOLDER "/Documentation/Bench.md");
    for (const FaultInfo& fault : Board::KnownFaults()) {
        EXPECT_TRUE(HasRow(document, fault.value.empty() ? fault.name : fault.name + "=" + fault.value)) << fault.name;
    }
}

TEST(Documentation, every_option_has_its_row) {
    const std::string document = ReadFile(SOURCE_FOLDER "/Documentation/Bench.md");
    Options defaults;
    std::istringstream help(RunCommandLine(defaults).Help());
    int options = 0;
    for (std::string line; std::getline(help, line);) {
        if (line.rfind("  --", 0) == 0) {
            const std::string form = line.substr(2, line.find("  ", 2) - 2);
            EXPECT_TRUE(HasRow(document, form)) << form;
            ++options;
        }
    }
    EXPECT_EQ(options, 20);
}

TEST(Documentation, every_field_of_the_instrument_is_described) {
    const std::string document = ReadFile(SOURCE_FOLDER "/Documentation/Bench.md");
    std::istringstream header(ReadFile(SOURCE_FOLDER "/Bench/Instrument/Instrument.h"));
    int fields = 0;
    bool inSettings = false;
    for (std::string line; std::getline(header, line);) {
        inSettings = line.rfind("struct ", 0) == 0 ? line == "struct InstrumentSettings {" : inSettings;
        const std::size_t equals = line.find(" = ");
        if (inSettings && equals != std::string::npos && line.rfind("    ", 0) == 0) {
            const std::size_t start = line.rfind(' ', equals - 1) + 1;
            EXPECT_NE(document.find("`" + line.substr(start, equals - start) + "`"), std::string::npos) << line;
            ++fields;
        }
    }
    EXPECT_GT(fields, 35);
}

}  // namespace
}  // namespace Bench
