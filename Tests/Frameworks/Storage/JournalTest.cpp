#include <gtest/gtest.h>

#include "Frameworks/Storage/Journal/JournalSystemController.h"

namespace {

TimeInfo At(std::time_t seconds) {
    TimeInfo time;
    time = timespec{seconds, 0};
    return time;
}

}  // namespace

TEST(JournalEntry, gives_back_what_was_set) {
    JournalEntry entry;
    entry.SetFirstText("first");
    entry.SetSecondText("second");
    entry.SetFirstWord(0xFFFFFFFF);
    entry.SetFirstByte(254);
    entry.SetSecondByte(255);
    entry.SetSecondWord(2);
    entry.SetThirdWord(3);
    entry.SetThirdText("third");
    entry.SetFirstTime(At(11));
    entry.SetSecondTime(At(12));
    EXPECT_EQ(entry.GetFirstText(), "first");
    EXPECT_EQ(entry.GetSecondText(), "second");
    EXPECT_EQ(entry.GetFirstWord(), 0xFFFFFFFFU);
    EXPECT_EQ(entry.GetFirstByte(), 254);
    EXPECT_EQ(entry.GetSecondByte(), 255);
    EXPECT_EQ(entry.GetSecondWord(), 2U);
    EXPECT_EQ(entry.GetThirdWord(), 3U);
    EXPECT_EQ(entry.GetThirdText(), "third");
    EXPECT_EQ(entry.GetFirstTime(), At(11));
    EXPECT_EQ(entry.GetSecondTime(), At(12));
}

TEST(JournalExportFile, gives_back_what_was_set) {
    JournalExportFile file;
    file.SetMappedFile(MemoryMappedFile("journal"));
    file.SetFirstTime(At(11));
    file.SetFirstText("first");
    file.SetSecondText("second");
    file.SetThirdText("third");
    file.SetWord(0xFFFFFFFF);
    file.SetFourthText("fourth");
    file.SetSecondTime(At(12));
    EXPECT_EQ(file.GetMappedFile().GetName(), "journal");
    EXPECT_EQ(file.GetFirstTime(), At(11));
    EXPECT_EQ(file.GetFirstText(), "first");
    EXPECT_EQ(file.GetSecondText(), "second");
    EXPECT_EQ(file.GetThirdText(), "third");
    EXPECT_EQ(file.GetWord(), 0xFFFFFFFFU);
    EXPECT_EQ(file.GetFourthText(), "fourth");
    EXPECT_EQ(file.GetSecondTime(), At(12));
}

TEST(JournalExportFile, neither_reads_nor_writes_a_document) {
    JournalExportFile file;
    EXPECT_FALSE(file.GetXML());
    EXPECT_FALSE(file.SetXML());
}

TEST(JournalSystemController, gives_the_two_times_of_the_entry_in_its_buffer) {
    JournalEntry entry;
    entry.SetFirstTime(At(11));
    entry.SetSecondTime(At(12));
    const JournalSystemController controller{CircularBuffer(entry)};
    EXPECT_EQ(controller.GetFirstTime(), At(11));
    EXPECT_EQ(controller.GetSecondTime(), At(12));
}

TEST(CircularBuffer, has_a_file_that_is_not_mapped) {
    EXPECT_FALSE(CircularBuffer().GetMappedFile().IsMapped());
    EXPECT_EQ(CircularBuffer().GetMappedFile().GetName(), "");
}
