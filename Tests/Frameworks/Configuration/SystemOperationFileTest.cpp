#include "Frameworks/Configuration/SystemOperationFile.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "Frameworks/Xml/XmlDocument.h"
#include "Tests/Frameworks/Configuration/OperationFixture.h"
#include "Tests/Frameworks/Configuration/SettingsText.h"
#include "Tests/Support/ReportedLines.h"

namespace {

namespace fs = std::filesystem;

// In the order of the file.
constexpr const char* ItemNames[] = {
    "SerialNumber",
    "TubingRunCycles",
    "ColorimeterRunCycles",
    "ElectronicsRunHours",
    "SampleConditioningRunCycles",
    "ReagentDeliveryRunCycles",
    "RemoteIndicatorRunHours",
};

constexpr char DefaultText[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<ROOT_ANALYZER>\n"
    "<SYSTEM_INFO>\n"
    "<INFO_ITEM name=\"SerialNumber\" type=\"string\" value=\"123456789\" description=\"analyzer serial number\""
    " unitOfMeasure=\"N/A\" />\n"
    "<INFO_ITEM name=\"TubingRunCycles\" type=\"uint\" value=\"0\" description=\"tubing operation cycles\""
    " unitOfMeasure=\"cycles\" />\n"
    "<INFO_ITEM name=\"ColorimeterRunCycles\" type=\"uint\" value=\"0\""
    " description=\"measurement chamber operation cycles\" unitOfMeasure=\"cycles\" />\n"
    "<INFO_ITEM name=\"ElectronicsRunHours\" type=\"float\" value=\"0\""
    " description=\"electronic hardware operation hours\" unitOfMeasure=\"hours\" />\n"
    "<INFO_ITEM name=\"SampleConditioningRunCycles\" type=\"uint\" value=\"0\""
    " description=\"sample conditioning subsystem operation cycles\" unitOfMeasure=\"cycles\" />\n"
    "<INFO_ITEM name=\"ReagentDeliveryRunCycles\" type=\"uint\" value=\"0\""
    " description=\"reagent delivery subsystem operation cycles\" unitOfMeasure=\"cycles\" />\n"
    "<INFO_ITEM name=\"RemoteIndicatorRunHours\" type=\"float\" value=\"0\""
    " description=\"remote indicator operation hours\" unitOfMeasure=\"hours\" />\n"
    "</SYSTEM_INFO>\n"
    "</ROOT_ANALYZER>\n";

std::string ItemsOf(const SystemOperationFile& file) {
    std::string text;
    for (const char* name : ItemNames) {
        text += file.ReadItem(name).Text() + " ";
    }
    return text;
}

// The text of a counter before and after an addition.
struct Sum {
    const char* before;
    const char* after;
};

constexpr Sum UnsignedSums[] = {
    {"0", "1"},          {"2147483647", "2147483648"},
    {"0xFFFFFFFF", "0"}, {"0x1F", "32"},
    {" 0X10 ", "17"},    {"010", "11"},
    {"", "1"},           {"text", "1"},
    {"12 cycles", "13"}, {"x", "1"},
    {"-1", "0"},
};
constexpr Sum FloatSums[] = {
    {"12.50", "14.50"},        {"0", "2.00"}, {"", "2.00"}, {"text", "2.00"}, {"1e3", "1002.00"}, {"-3", "-1.00"},
    {"87600.127", "87602.13"},
};

class Operation : public OperationTest {};

}  // namespace

TEST_F(Operation, without_a_file_begins_from_zero_and_writes_nothing) {
    EXPECT_EQ(AfterStart(ItemsOf), "123456789 0 0 0 0 0 0 ");
    EXPECT_TRUE(fs::is_empty(DataFolder()));
}

TEST_F(Operation, of_a_new_unit_is_this_text_in_both_files_at_the_first_save) {
    EXPECT_EQ(AfterStart([](SystemOperationFile& file) { return Text(file.Save()); }), "true");
    EXPECT_EQ(Main(), DefaultText);
    EXPECT_EQ(Backup(), DefaultText);
    EXPECT_EQ(std::distance(fs::directory_iterator(DataFolder()), {}), 2);
}

TEST_F(Operation, counters_continue_from_the_file) {
    LayMain(WithTubingCycles("41"));
    EXPECT_EQ(AfterStart([](SystemOperationFile& file) {
                  const bool isAdded = file.AddToUnsignedCounter("TubingRunCycles", 1) && file.Save();
                  return Text(isAdded) + file.ReadItem("TubingRunCycles").Text();
              }),
              "true42");
    EXPECT_EQ(TubingCyclesAfterStart(), "42");
}

TEST_F(Operation, is_one_object_to_the_end_of_the_process) {
    EXPECT_EQ(AfterStart([](SystemOperationFile& file) {
                  file.WriteItem("TubingRunCycles", "7");
                  return Text(SystemOperationFile::GetInstance() == &file) +
                         SystemOperationFile::GetInstance()->ReadItem("TubingRunCycles").Text();
              }),
              "true7");
}

// A regular exit, so that the leak check runs.
TEST_F(Operation, object_left_at_the_end_of_the_process_is_no_leak) {
    NewProcess process(
        [](const NewProcess::Tell& /*tell*/) { std::exit(SystemOperationFile::GetInstance() == nullptr); });
    EXPECT_EQ(process.Wait(), 0);
}

TEST_F(Operation, the_backup_replaces_a_damaged_main_file) {
    for (const char* damaged : {"", "<", "<ROOT_ANALYZER>", "no document", "<ROOT_ANALYZER/><ROOT_ANALYZER/>"}) {
        LayMain(damaged);
        LayBackup(WithTubingCycles("5"));
        EXPECT_EQ(TubingCyclesAfterStart(), "5") << damaged;
        EXPECT_EQ(Main(), damaged);
        EXPECT_EQ(AfterStart([](SystemOperationFile& file) { return Text(file.Save()); }), "true");
        EXPECT_EQ(Main(), WithTubingCycles("5"));
        EXPECT_EQ(Backup(), WithTubingCycles("5"));
    }
}

TEST_F(Operation, a_sound_main_file_counts_with_any_backup) {
    LayMain(WithTubingCycles("5"));
    for (const std::string& backup : {std::string(), std::string("<"), WithTubingCycles("9")}) {
        LayBackup(backup);
        EXPECT_EQ(TubingCyclesAfterStart(), "5") << backup;
    }
}

TEST_F(Operation, two_damaged_files_start_from_zero) {
    for (const char* damaged : {"", "<ROOT_ANALYZER>"}) {
        LayMain(damaged);
        LayBackup("<SYSTEM_INFO>");
        EXPECT_EQ(AfterStart(ItemsOf), "123456789 0 0 0 0 0 0 ");
        AfterStart([](SystemOperationFile& file) { return Text(file.Save()); });
        EXPECT_EQ(Main(), DefaultText);
        EXPECT_EQ(Backup(), DefaultText);
    }
}

// At any cut of the main file, either no counter is lost or the backup replaces it.
TEST_F(Operation, a_main_file_cut_anywhere_never_counts_wrong) {
    const std::string whole = WithTubingCycles("6");
    const std::size_t rootEnd = whole.rfind('>') + 1;
    LayBackup(WithTubingCycles("5"));
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        XmlDocument document;
        EXPECT_EQ(document.SetDocumentText(whole.substr(0, length).c_str()), length >= rootEnd) << length;
    }
    for (const std::size_t length : {std::size_t{0}, whole.size() / 2, rootEnd - 1}) {
        LayMain(whole.substr(0, length));
        EXPECT_EQ(TubingCyclesAfterStart(), "5") << length;
    }
    for (const std::size_t length : {rootEnd, whole.size()}) {
        LayMain(whole.substr(0, length));
        EXPECT_EQ(TubingCyclesAfterStart(), "6") << length;
    }
}

TEST_F(Operation, the_backup_replaces_a_main_file_of_zero_bytes) {
    LayMain(std::string(1200, '\0'));
    LayBackup(WithTubingCycles("5"));
    EXPECT_EQ(TubingCyclesAfterStart(), "5");
}

TEST_F(Operation, of_another_root_is_not_available_until_it_is_repaired) {
    LayMain(Element("ROOT_USER", Element("SYSTEM_INFO", Item("TubingRunCycles", "3"))));
    LayBackup(WithTubingCycles("5"));
    NewProcess process([this](const NewProcess::Tell& tell) {
        tell(Text(SystemOperationFile::GetInstance() == nullptr));
        tell(Text(SystemOperationFile::GetInstance() == nullptr));
        LayMain(WithTubingCycles("4"));
        tell(SystemOperationFile::GetInstance()->ReadItem("TubingRunCycles").Text());
    });
    EXPECT_EQ(process.Answer(), "truetrue4");
}

TEST_F(Operation, without_its_section_is_not_available) {
    LayMain(Element("ROOT_ANALYZER", Element("OTHER_INFO", Item("TubingRunCycles", "3"))));
    NewProcess process([](const NewProcess::Tell& tell) { tell(Text(SystemOperationFile::GetInstance() == nullptr)); });
    EXPECT_EQ(process.Answer(), "true");
}

TEST_F(Operation, failures_are_not_logged) {
    LayMain(Element("ROOT_USER", ""));
    const NewProcess process([this](const NewProcess::Tell& tell) {
        const ReportedLines lines;
        tell(Text(SystemOperationFile::GetInstance() == nullptr));
        fs::remove_all(DataFolder());
        tell(Text(SystemOperationFile::GetInstance()->Save()));
        tell(testing::PrintToString(lines.Texts()));
    });
    EXPECT_EQ(process.Answer(), "truefalse{}");
}

TEST_F(Operation, a_missing_folder_is_not_made_and_no_save_succeeds) {
    fs::remove_all(DataFolder());
    EXPECT_EQ(AfterStart([](SystemOperationFile& file) { return ItemsOf(file) + Text(file.Save()); }),
              "123456789 0 0 0 0 0 0 false");
    EXPECT_FALSE(fs::exists(DataFolder()));
}

// A folder in place of the file, since for root no folder is read-only.
TEST_F(Operation, a_save_returns_the_result_of_the_backup) {
    fs::create_directory(MainPath());
    EXPECT_EQ(AfterStart([](SystemOperationFile& file) { return Text(file.Save()); }), "true");
    EXPECT_EQ(Backup(), DefaultText);
    fs::remove(MainPath());
    fs::remove(BackupPath());
    fs::create_directory(BackupPath());
    EXPECT_EQ(AfterStart([](SystemOperationFile& file) { return Text(file.Save()); }), "false");
    EXPECT_EQ(Main(), DefaultText);
}

TEST_F(Operation, a_folder_that_cannot_be_written_fails_the_save) {
    ASSERT_TRUE(Board().FailCall("fopen", 4, EACCES));  // loading opens both files first
    EXPECT_EQ(AfterStart([](SystemOperationFile& file) { return Text(file.Save()); }), "false");
}

TEST_F(Operation, an_unknown_item_reads_as_empty_and_is_not_written) {
    EXPECT_EQ(AfterStart([](SystemOperationFile& file) {
                  std::string answer = "[" + file.ReadItem("Absent").Text() + "]";
                  answer += Text(file.WriteItem("Absent", "1"));
                  answer += Text(file.AddToUnsignedCounter("Absent", 1));
                  answer += Text(file.AddToFloatCounter("Absent", 1.0));
                  return answer + file.GetDocument()->GetDocumentText();
              }),
              std::string("[]falsefalsefalse") + DefaultText);
}

TEST_F(Operation, a_written_item_follows_in_the_document_and_nothing_else_changes) {
    std::string expected = DefaultText;
    const std::string before = R"(value="0" description="tubing operation cycles" unitOfMeasure="cycles" />)";
    const std::string after = R"(value="12" description="tubing operation cycles" unitOfMeasure="cycles"/>)";
    expected.replace(expected.find(before), before.size(), after);
    EXPECT_EQ(AfterStart([](SystemOperationFile& file) {
                  const bool isWritten = file.WriteItem("TubingRunCycles", "12");
                  return Text(isWritten) + file.GetDocument()->GetDocumentText();
              }),
              "true" + expected);
}

TEST_F(Operation, counting_on_does_not_make_the_file_grow) {
    const auto count = [](SystemOperationFile& file, int times) {
        for (int time = 0; time < times; ++time) {
            for (const char* name : ItemNames) {
                file.AddToUnsignedCounter(name, 1);
            }
        }
        return file.GetDocument()->GetDocumentText().size();
    };
    EXPECT_EQ(AfterStart([&](SystemOperationFile& file) {
                  const std::size_t size = count(file, 1);
                  const bool isSame = count(file, 8) == size;
                  return Text(isSame) + ItemsOf(file);
              }),
              "true123456798 9 9 9 9 9 9 ");
}

TEST_F(Operation, adding_to_an_unsigned_counter_writes_decimal) {
    for (const Sum& sum : UnsignedSums) {
        LayMain(WithTubingCycles(sum.before));
        EXPECT_EQ(AfterStart([](SystemOperationFile& file) {
                      const bool isAdded = file.AddToUnsignedCounter("TubingRunCycles", 1);
                      return Text(isAdded) + file.ReadItem("TubingRunCycles").Text();
                  }),
                  std::string("true") + sum.after)
            << sum.before;
    }
}

TEST_F(Operation, adding_to_a_float_counter_writes_two_digits) {
    for (const Sum& sum : FloatSums) {
        LayMain(Element("ROOT_ANALYZER", Element("SYSTEM_INFO", Item("ElectronicsRunHours", sum.before))));
        EXPECT_EQ(AfterStart([](SystemOperationFile& file) {
                      const bool isAdded = file.AddToFloatCounter("ElectronicsRunHours", 2.0);
                      return Text(isAdded) + file.ReadItem("ElectronicsRunHours").Text();
                  }),
                  std::string("true") + sum.after)
            << sum.before;
    }
}
