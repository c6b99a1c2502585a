#include "Frameworks/Storage/SDCardFile.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include "Tests/Support/BoardFixture.h"

namespace {

class SDCardFileTest : public BoardTest {
protected:
    SDCardFileTest() : BoardTest(AtNoon()) {
        setenv("TZ", "UTC0", 1);
        tzset();
    }

    static Bench::BoardSetup AtNoon() {
        Bench::BoardSetup setup;
        setup.startSeconds = 1356955199;  // 2012-12-31 11:59:59 UTC
        return setup;
    }

    void OpenFile() {
        ASSERT_TRUE(file.SetCard(&card));
        ASSERT_TRUE(file.SetFile("data.csv"));
        ASSERT_TRUE(file.Open());
    }

    std::string OnCard(const std::string& name = "2012-12-31_data.csv") const {
        StdString content;
        content.ReadFile(Folder() + "/card/" + name);
        return content.Text();
    }

    SDCard card;
    SDCardFile file;
};

}  // namespace

TEST_F(SDCardFileTest, is_named_by_mount_path_date_and_name) {
    file.SetCard(&card);
    EXPECT_TRUE(file.SetFile("data.csv"));
    EXPECT_EQ(file.GetPath(), "/mnt/sd-card/2012-12-31_data.csv");
    EXPECT_EQ(file.GetDay(), "31");
}

TEST_F(SDCardFileTest, adds_no_slash_to_a_mount_path_that_ends_in_one) {
    card.SetMountPath("/mnt/sd-card/");
    file.SetCard(&card);
    EXPECT_TRUE(file.SetFile("data.csv"));
    EXPECT_EQ(file.GetPath(), "/mnt/sd-card/2012-12-31_data.csv");
}

TEST_F(SDCardFileTest, is_named_by_the_local_date) {
    setenv("TZ", "EAST-13", 1);
    tzset();
    file.SetCard(&card);
    EXPECT_TRUE(file.SetFile("data.csv"));
    EXPECT_EQ(file.GetPath(), "/mnt/sd-card/2013-01-01_data.csv");
    EXPECT_EQ(file.GetDay(), "01");
}

TEST_F(SDCardFileTest, keeps_its_path_for_an_empty_name) {
    file.SetCard(&card);
    ASSERT_TRUE(file.SetFile("data.csv"));
    EXPECT_FALSE(file.SetFile(""));
    EXPECT_EQ(file.GetPath(), "/mnt/sd-card/2012-12-31_data.csv");
}

TEST_F(SDCardFileTest, is_not_open_without_a_name) {
    OpenFile();
    EXPECT_TRUE(file.IsOpen());
    file.SetFile("");
    EXPECT_FALSE(file.IsOpen());
}

TEST_F(SDCardFileTest, does_nothing_without_a_card_object) {
    EXPECT_FALSE(file.SetCard(nullptr));
    EXPECT_FALSE(file.SetFile("data.csv"));
    EXPECT_FALSE(file.Open());
    EXPECT_FALSE(file.Write("text"));
}

TEST_F(SDCardFileTest, mounts_the_card_to_open) {
    EXPECT_FALSE(card.IsMounted());
    OpenFile();
    EXPECT_TRUE(card.IsMounted());
    EXPECT_TRUE(std::filesystem::exists(Folder() + "/card/2012-12-31_data.csv"));
}

TEST_F(SDCardFileTest, opens_on_a_mounted_card) {
    ASSERT_TRUE(card.Mount());
    Board().ClearTrace();
    OpenFile();
    EXPECT_TRUE(Board().Trace().empty()) << "no second mount";
}

TEST_F(SDCardFileTest, does_not_open_if_the_card_cannot_be_mounted) {
    Board().SetCardWriteProtected(true);
    file.SetCard(&card);
    file.SetFile("data.csv");
    EXPECT_FALSE(file.Open());
    EXPECT_FALSE(file.IsOpen());
}

TEST_F(SDCardFileTest, unmounts_a_removed_card_that_still_shows_as_mounted) {
    ASSERT_TRUE(card.Mount());
    Board().PullCard();
    file.SetCard(&card);
    file.SetFile("data.csv");
    EXPECT_FALSE(file.Open());
    EXPECT_FALSE(card.IsMounted());
}

TEST_F(SDCardFileTest, does_not_open_without_a_card_in_the_slot) {
    Board().PullCard();
    file.SetCard(&card);
    file.SetFile("data.csv");
    EXPECT_FALSE(file.Open());
}

TEST_F(SDCardFileTest, has_each_text_on_the_card_when_the_write_ends) {
    OpenFile();
    EXPECT_TRUE(file.Write("one\r\n"));
    EXPECT_EQ(OnCard(), "one\r\n");
    EXPECT_TRUE(file.Write("two\r\n"));
    EXPECT_EQ(OnCard(), "one\r\ntwo\r\n");
}

TEST_F(SDCardFileTest, writes_an_empty_text_with_success) {
    OpenFile();
    EXPECT_TRUE(file.Write(""));
    EXPECT_EQ(OnCard(), "");
}

TEST_F(SDCardFileTest, appends_to_what_is_there) {
    {
        SDCardFile earlier;
        earlier.SetCard(&card);
        earlier.SetFile("data.csv");
        ASSERT_TRUE(earlier.Open());
        ASSERT_TRUE(earlier.Write("earlier\r\n"));
    }
    OpenFile();
    EXPECT_FALSE(file.IsEmpty());
    EXPECT_TRUE(file.Write("later\r\n"));
    EXPECT_EQ(OnCard(), "earlier\r\nlater\r\n");
}

TEST_F(SDCardFileTest, is_empty_until_something_is_written) {
    EXPECT_FALSE(file.IsEmpty()) << "it isn't open";
    OpenFile();
    EXPECT_TRUE(file.IsEmpty());
    ASSERT_TRUE(file.Write("x"));
    EXPECT_FALSE(file.IsEmpty());
}

TEST_F(SDCardFileTest, refuses_a_text_while_it_is_closed) {
    OpenFile();
    file.Close();
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.Write("x"));
    EXPECT_FALSE(file.Flush());
    EXPECT_EQ(OnCard(), "");
}

TEST_F(SDCardFileTest, flushes_while_it_is_open) {
    OpenFile();
    EXPECT_TRUE(file.Flush());
}

TEST_F(SDCardFileTest, fails_the_very_text_that_a_full_card_has_no_room_for) {
    OpenFile();
    ASSERT_TRUE(file.Write("one\r\n"));
    Board().SetCardFull(true);
    EXPECT_FALSE(file.Write("two\r\n"));
    Board().SetCardFull(false);
    EXPECT_TRUE(file.Write("three\r\n"));
    EXPECT_EQ(OnCard(), "one\r\nthree\r\n");
}

TEST_F(SDCardFileTest, drops_the_text_with_success_when_the_card_is_pulled) {
    OpenFile();
    ASSERT_TRUE(file.Write("one\r\n"));
    Board().PullCard();
    EXPECT_TRUE(file.Write("two\r\n"));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(card.IsMounted());
}

TEST_F(SDCardFileTest, fails_without_a_card_and_without_a_mount) {
    OpenFile();
    Board().PullCard();
    ASSERT_TRUE(file.Write("one\r\n"));
    EXPECT_FALSE(file.Write("two\r\n"));
}

TEST_F(SDCardFileTest, mounts_a_card_that_came_back_and_appends_to_the_same_path) {
    OpenFile();
    ASSERT_TRUE(file.Write("one\r\n"));
    Board().PullCard();
    ASSERT_TRUE(file.Write("two\r\n"));
    Board().InsertCard();
    EXPECT_TRUE(file.Write("three\r\n"));
    EXPECT_TRUE(file.IsOpen());
    EXPECT_EQ(OnCard(), "one\r\nthree\r\n");
}

TEST_F(SDCardFileTest, opens_again_when_the_card_was_unmounted_under_it) {
    OpenFile();
    ASSERT_TRUE(file.Write("one\r\n"));
    file.Close();
    ASSERT_TRUE(card.Unmount());
    EXPECT_TRUE(file.Write("two\r\n"));
    EXPECT_EQ(OnCard(), "one\r\ntwo\r\n");
}

TEST_F(SDCardFileTest, closes_the_file_when_it_is_destroyed) {
    {
        SDCardFile other;
        other.SetCard(&card);
        other.SetFile("other.csv");
        ASSERT_TRUE(other.Open());
    }
    EXPECT_TRUE(card.Unmount()) << "no file on the card is open";
}
