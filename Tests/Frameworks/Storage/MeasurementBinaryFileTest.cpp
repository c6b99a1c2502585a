#include "Frameworks/Storage/MeasurementBinaryFile.h"

#include <array>
#include <string>
#include <string_view>

#include "Tests/Frameworks/Storage/HistoryTexts.h"
#include "Tests/Frameworks/Xml/XmlTestFile.h"

namespace {

using std::string_literals::operator""s;
using std::string_view_literals::operator""sv;

// As the instrument writes them: checksum, seconds, value.
constexpr std::string_view FirstRecord = "\xCA\xF2\xEE\x1F\x01\x00\x00\x00\x00\x00\x00\x3F"sv;   // 1 s, 0.5
constexpr std::string_view SecondRecord = "\x67\x22\x9B\x5A\x02\x00\x00\x00\x00\x00\xC0\x3F"sv;  // 2 s, 1.5

std::string Both() { return std::string(FirstRecord) + std::string(SecondRecord); }

constexpr bool ForWriting = true;
constexpr bool ForReading = false;
constexpr std::ios::openmode NoMode = {};

}  // namespace

TEST(MeasurementBinaryFile, without_a_name_is_not_open) {
    MeasurementBinaryFile reader(ForReading);
    EXPECT_FALSE(reader.GetStatus());
    EXPECT_FALSE(reader.Close());
    EXPECT_FALSE(MeasurementBinaryFile(ForWriting).GetStatus());
    EXPECT_FALSE(MeasurementBinaryFile(static_cast<const char*>(nullptr), NoMode, ForReading).GetStatus());
}

TEST(MeasurementBinaryFile, opens_at_construction) {
    const XmlTestFile file(Both());
    EXPECT_TRUE(MeasurementBinaryFile(file.Path(), NoMode, ForReading).GetStatus());
    EXPECT_TRUE(MeasurementBinaryFile(StdString(file.Path()), NoMode, ForReading).GetStatus());
}

TEST(MeasurementBinaryFile, that_is_missing_does_not_open_for_reading) {
    MeasurementBinaryFile file("/nowhere/history.bin", std::ios::in, ForReading);
    EXPECT_FALSE(file.GetStatus());
    EXPECT_EQ(TextOf(file.ReadHistory()), "");
    EXPECT_FALSE(file.GetStatus());
}

TEST(MeasurementBinaryFile, an_open_that_fails_has_closed_what_was_open) {
    const XmlTestFile file(Both());
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    EXPECT_FALSE(reader.Open("/nowhere/history.bin", std::ios::in, ForReading));
    EXPECT_FALSE(reader.GetStatus());
    EXPECT_FALSE(reader.Close());
}

TEST(MeasurementBinaryFile, for_writing_takes_no_input_and_begins_empty) {
    const XmlTestFile file(Both());
    MeasurementBinaryFile writer(file.Path(), std::ios::in, ForWriting);
    EXPECT_TRUE(writer.GetStatus());
    EXPECT_EQ(file.Read(), "");
    std::array<char, 4> buffer = {};
    EXPECT_FALSE(writer.Read(buffer.data(), 4));
}

TEST(MeasurementBinaryFile, for_writing_appends_if_the_mode_says_so) {
    const XmlTestFile file{std::string(FirstRecord)};
    MeasurementBinaryFile(file.Path(), std::ios::app, ForWriting).WriteDataPoint(PointOf(SecondSum, 2, 1.5F));
    EXPECT_EQ(file.Read(), Both());
}

TEST(MeasurementBinaryFile, for_reading_takes_no_output) {
    const XmlTestFile file(Both());
    MeasurementBinaryFile reader(file.Path(), std::ios::out, ForReading);
    EXPECT_EQ(TextOf(reader.ReadHistory()), FirstLine + SecondLine);
    reader.WriteDataPoint(PointOf(1, 2, 3));
    reader.Close();
    EXPECT_EQ(file.Read(), Both());
}

TEST(MeasurementBinaryFile, opens_the_same_file_again_in_the_other_direction) {
    const XmlTestFile file;
    MeasurementBinaryFile both(file.Path(), NoMode, ForWriting);
    both.WriteDataPoint(PointOf(FirstSum, 1, 0.5F));
    EXPECT_TRUE(both.Open(ForReading));
    EXPECT_EQ(TextOf(both.ReadHistory()), FirstLine);
    EXPECT_TRUE(both.Open(ForWriting));
    EXPECT_EQ(file.Read(), "");
}

TEST(MeasurementBinaryFile, closes_once) {
    const XmlTestFile file(Both());
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    EXPECT_TRUE(reader.Close());
    EXPECT_FALSE(reader.Close());
    EXPECT_FALSE(reader.GetStatus());
}

TEST(MeasurementBinaryFile, reads_the_bytes_that_are_asked_for_or_fails) {
    const XmlTestFile file("abcdef");
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    std::array<char, 4> buffer = {};
    EXPECT_TRUE(reader.Read(buffer.data(), 4));
    EXPECT_TRUE(reader.GetStatus());
    EXPECT_EQ(std::string(buffer.data(), 4), "abcd");
    EXPECT_FALSE(reader.Read(buffer.data(), 4));
    EXPECT_FALSE(reader.GetStatus());
}

TEST(MeasurementBinaryFile, refuses_to_read_nothing_or_to_null) {
    const XmlTestFile file("abcdef");
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    char byte = 0;
    EXPECT_FALSE(reader.Read(nullptr, 4));
    EXPECT_FALSE(reader.Read(&byte, 0));
    EXPECT_FALSE(reader.GetStatus());
    EXPECT_TRUE(reader.Read(&byte, 1));
}

TEST(MeasurementBinaryFile, refuses_to_write_nothing_or_from_null) {
    const XmlTestFile file;
    MeasurementBinaryFile writer(file.Path(), NoMode, ForWriting);
    EXPECT_FALSE(writer.Write("a", 0));
    EXPECT_FALSE(writer.GetStatus());
    EXPECT_FALSE(writer.Write("a", -1));
    EXPECT_FALSE(writer.Write(nullptr, 4));
    EXPECT_TRUE(writer.Write("a", 1));
    EXPECT_TRUE(writer.GetStatus());
    writer.Close();
    EXPECT_EQ(file.Read(), "a");
}

// Does not check whether the stream took the bytes.
TEST(MeasurementBinaryFile, returns_true_for_a_write_that_is_lost) {
    const XmlTestFile file(Both());
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    EXPECT_TRUE(reader.Write("abcd", 4));
    reader.Close();
    EXPECT_EQ(file.Read(), Both());
    EXPECT_TRUE(reader.Write("abcd", 4));
    MeasurementBinaryFile full("/dev/full", NoMode, ForWriting);
    EXPECT_TRUE(full.WriteDataPoint(PointOf(1, 2, 3)));
    EXPECT_TRUE(full.WriteDataPoint(PointOf(1, 2, 3)));
}

TEST(MeasurementBinaryFile, a_point_reaches_the_file_at_once) {
    const XmlTestFile file;
    MeasurementBinaryFile writer(file.Path(), NoMode, ForWriting);
    EXPECT_TRUE(writer.WriteDataPoint(PointOf(FirstSum, 1, 0.5F)));
    EXPECT_EQ(file.Read(), FirstRecord);
    EXPECT_TRUE(writer.WriteDataPoint(PointOf(SecondSum, 2, 1.5F)));
    EXPECT_EQ(file.Read(), Both());
    EXPECT_TRUE(writer.GetStatus());
}

TEST(MeasurementBinaryFile, a_point_has_its_checksum_in_the_file_and_a_computed_one_in_the_history) {
    const XmlTestFile file;
    MeasurementBinaryFile writer(file.Path(), NoMode, ForWriting);
    writer.WriteDataPoint(PointOf(0x44332211, 1, 0.5F));
    EXPECT_EQ(file.Read(), "\x11\x22\x33\x44\x01\x00\x00\x00\x00\x00\x00\x3F"sv);
    writer.Close();
    EXPECT_EQ(TextOf(writer.ReadHistory()), FirstLine);
}

TEST(MeasurementBinaryFile, that_is_closed_takes_no_point) {
    const XmlTestFile file;
    MeasurementBinaryFile writer(file.Path(), NoMode, ForWriting);
    writer.Close();
    EXPECT_FALSE(writer.WriteDataPoint(PointOf(FirstSum, 1, 0.5F)));
    EXPECT_FALSE(writer.GetStatus());
    EXPECT_EQ(TextOf(writer.ReadHistory()), "");
    EXPECT_EQ(file.Read(), "");
}

TEST(MeasurementBinaryFile, a_history_is_written_with_the_computed_checksums) {
    MeasurementHistory history;
    history.Add(PointOf(4711, 1, 0.5F));
    history.Add(PointOf(4712, 2, 1.5F));
    const XmlTestFile file;
    MeasurementBinaryFile writer(file.Path(), NoMode, ForWriting);
    EXPECT_TRUE(writer.WriteHistory(history));
    EXPECT_TRUE(writer.GetStatus());
    EXPECT_EQ(file.Read(), "");
    writer.Close();
    EXPECT_EQ(file.Read(), Both());
}

TEST(MeasurementBinaryFile, no_history_is_written_without_points_or_without_a_file) {
    const XmlTestFile file;
    MeasurementBinaryFile writer(file.Path(), NoMode, ForWriting);
    MeasurementHistory history;
    EXPECT_FALSE(writer.WriteHistory(history));
    history.Add(1, 0.5F);
    writer.Close();
    EXPECT_FALSE(writer.WriteHistory(history));
    EXPECT_FALSE(writer.GetStatus());
    EXPECT_EQ(file.Read(), "");
}

TEST(MeasurementBinaryFile, a_history_is_read_whole_and_the_read_position_stays) {
    const XmlTestFile file(Both());
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    std::array<char, 4> buffer = {};
    reader.Read(buffer.data(), 4);
    EXPECT_EQ(TextOf(reader.ReadHistory()), FirstLine + SecondLine);
    EXPECT_TRUE(reader.GetStatus());
    EXPECT_TRUE(reader.Read(buffer.data(), 4));
    EXPECT_EQ(std::string(buffer.data(), 4), "\x01\x00\x00\x00"sv);
    EXPECT_EQ(TextOf(reader.ReadHistory()), FirstLine + SecondLine);
}

TEST(MeasurementBinaryFile, a_damaged_record_is_read_with_a_computed_checksum) {
    const XmlTestFile file("\xFF\xFF\xFF\xFF" + Both().substr(4));
    EXPECT_EQ(TextOf(MeasurementBinaryFile(file.Path(), NoMode, ForReading).ReadHistory()), FirstLine + SecondLine);
}

TEST(MeasurementBinaryFile, an_empty_file_gives_an_empty_history_and_a_false_status) {
    const XmlTestFile file("");
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    EXPECT_EQ(reader.ReadHistory().Size(), 0U);
    EXPECT_FALSE(reader.GetStatus());
}

TEST(MeasurementBinaryFile, of_thirteen_bytes_gives_one_entry) {
    const XmlTestFile file(std::string(FirstRecord) + "x");
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    EXPECT_EQ(TextOf(reader.ReadHistory()), FirstLine);
}

TEST(MeasurementBinaryFile, a_record_cut_anywhere_ends_the_reading) {
    for (std::size_t size = 1; size < SecondRecord.size(); ++size) {
        const XmlTestFile file(std::string(FirstRecord) + std::string(SecondRecord.substr(0, size)));
        MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
        EXPECT_EQ(TextOf(reader.ReadHistory()), FirstLine) << size;
        EXPECT_FALSE(reader.GetStatus());
    }
}

// Reading reached the end of the file, and only opening resets that.
TEST(MeasurementBinaryFile, reads_nothing_after_a_cut_record_until_it_is_opened_again) {
    const XmlTestFile file(std::string(FirstRecord) + "x");
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    reader.ReadHistory();
    EXPECT_EQ(reader.EndPosition(), std::streampos(-1));
    EXPECT_EQ(TextOf(reader.ReadHistory()), "");
    reader.Open(ForReading);
    EXPECT_EQ(TextOf(reader.ReadHistory()), FirstLine);
}

TEST(MeasurementBinaryFile, of_more_than_3000_records_gives_the_last_3000) {
    std::string content;
    for (int record = 0; record < 5; ++record) {
        content += FirstRecord;
    }
    for (int record = 0; record < 3000; ++record) {
        content += SecondRecord;
    }
    const XmlTestFile file(content);
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    const MeasurementHistory& history = reader.ReadHistory();
    EXPECT_EQ(history.Size(), 3000U);
    EXPECT_TRUE(reader.GetStatus());
    MeasurementDataPoint oldest;
    history.Get(0, oldest);
    EXPECT_EQ(oldest.GetSeconds(), 2U);
}

TEST(MeasurementBinaryFile, values_that_are_no_numbers_pass_unchanged) {
    const std::string bytes = "\0\0\0\0\0\0\0\0\x01\x00\xA0\x7F\0\0\0\0\0\0\0\0\x00\x00\x80\xFF"s;
    const XmlTestFile file(bytes);
    MeasurementHistory history;
    history = MeasurementBinaryFile(file.Path(), NoMode, ForReading).ReadHistory();
    MeasurementBinaryFile(file.Path(), NoMode, ForWriting).WriteHistory(history);
    const std::string written = file.Read();
    ASSERT_EQ(written.size(), bytes.size());
    EXPECT_EQ(written.substr(4, 8), bytes.substr(4, 8));
    EXPECT_EQ(written.substr(16), bytes.substr(16));
}

TEST(MeasurementBinaryFile, a_folder_gives_no_history) {
    MeasurementBinaryFile folder("/tmp", NoMode, ForReading);
    EXPECT_EQ(folder.ReadHistory().Size(), 0U);
    EXPECT_FALSE(folder.GetStatus());
}

TEST(MeasurementBinaryFile, end_position_is_the_size_and_moves_nothing) {
    const XmlTestFile file("abcdef");
    MeasurementBinaryFile reader(file.Path(), NoMode, ForReading);
    char byte = 0;
    reader.Read(&byte, 1);
    EXPECT_EQ(reader.EndPosition(), std::streampos(6));
    reader.Read(&byte, 1);
    EXPECT_EQ(byte, 'b');
    reader.Close();
    EXPECT_EQ(reader.EndPosition(), std::streampos(0));
}
