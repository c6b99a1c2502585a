#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Frameworks/Xml/XmlDocument.h"
#include "Tests/Frameworks/Xml/XmlTestFile.h"

namespace {

using namespace std::string_literals;

const std::string Utf8Mark = "\xEF\xBB\xBF";
const std::string LittleMark = "\xFF\xFE";
const std::string BigMark = "\xFE\xFF";

std::string Utf16(std::u16string_view units, bool isBigEndian) {
    std::string bytes;
    for (const char16_t unit : units) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    }
    return bytes;
}

class XmlFile : public testing::Test {
protected:
    bool Load(const std::string& content) {
        m_file.Write(content);
        return m_document.Load(m_file.Path());
    }

    std::string Saved() {
        EXPECT_TRUE(m_document.Save(m_file.Path()));
        return m_file.Read();
    }

    XmlTestFile m_file;
    XmlDocument m_document;
};

TEST_F(XmlFile, a_missing_file_is_reported_and_leaves_an_empty_document) {
    m_document.SetDocumentText("<a/>");
    EXPECT_FALSE(m_document.Load("/nonexistent/file.xml"));
    EXPECT_EQ(m_document.GetResult(), "<file_error msg=\"No such file or directory\"/>");
    EXPECT_EQ(m_document.GetResultText(), "No such file or directory");
    EXPECT_EQ(m_document.GetDocumentText(), "");
    EXPECT_FALSE(m_document.FindElement("a"));
}

TEST_F(XmlFile, a_folder_is_no_document) {
    EXPECT_FALSE(m_document.Load("/"));
    EXPECT_EQ(m_document.GetResultText(), "Is a directory");
}

TEST_F(XmlFile, a_file_over_the_reach_of_the_index_is_refused_before_it_is_read) {
    m_file.Write("<a/>");
    ASSERT_EQ(truncate64(m_file.Path(), 4'294'967'296), 0);
    EXPECT_FALSE(m_document.Load(m_file.Path()));
    EXPECT_EQ(m_document.GetResult(), "<file_error msg=\"File too large\"/>");
    EXPECT_EQ(m_document.GetDocumentText(), "");
}

TEST_F(XmlFile, an_empty_file_is_an_empty_document) {
    EXPECT_FALSE(Load(""));
    EXPECT_EQ(m_document.GetDocumentText(), "");
    EXPECT_EQ(m_document.GetResultText(), "UTF-8 length 0 (used UTF-8 detection)");
}

TEST_F(XmlFile, every_byte_of_an_untouched_document_is_kept) {
    const std::string text =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<!-- \xC3\xA4 -->\n<r  a = '1'\tb=\"2\" >\r\n\t<x/ ><?p ?>"
        "<![CDATA[ ]]></r >\n\n";
    Load(text);
    EXPECT_EQ(m_document.GetDocumentText(), text);
    EXPECT_EQ(Saved(), text);
}

TEST_F(XmlFile, a_change_keeps_every_other_byte) {
    ASSERT_TRUE(Load("<?xml version='1.0'?>\r\n<r  a = '1'\tb=\"2\" >\r\n\t<!-- c --></r >\n"));
    m_document.FindElement("r");
    m_document.SetAttribute("a", "x");
    EXPECT_EQ(Saved(), "<?xml version='1.0'?>\r\n<r  a = \"x\"\tb=\"2\" >\r\n\t<!-- c --></r >\n");
}

TEST_F(XmlFile, a_save_leaves_the_cursor) {
    Load("<r><a/></r>");
    m_document.FindElement("r");
    m_document.IntoElement();
    m_document.FindElement("a");
    Saved();
    EXPECT_EQ(m_document.GetTagName(), "a");
}

TEST_F(XmlFile, a_declared_utf_8_file_is_not_converted) {
    EXPECT_TRUE(Load("<?xml version=\"1.0\" encoding=\"utf-8\"?><r/>"));
    EXPECT_EQ(m_document.GetResult(), "<read encoding=\"utf-8\" length=\"42\"/>");
    Saved();
    EXPECT_EQ(m_document.GetResult(), "<write encoding=\"utf-8\" length=\"42\"/>");
    EXPECT_EQ(m_document.GetResultText(), "utf-8 length 42");
}

TEST_F(XmlFile, a_file_without_declaration_that_begins_with_a_tag_is_utf_8) {
    EXPECT_TRUE(Load("<r>\xC3\xA4</r>"));
    EXPECT_EQ(m_document.GetDocumentText(), "<r>\xC3\xA4</r>");
    EXPECT_EQ(m_document.GetResultText(), "UTF-8 length 9");
}

TEST_F(XmlFile, a_file_without_declaration_and_with_valid_utf_8_is_read_as_utf_8) {
    EXPECT_TRUE(Load("\n<r>\xC3\xA4</r>"));
    EXPECT_EQ(m_document.GetDocumentText(), "\n<r>\xC3\xA4</r>");
    EXPECT_EQ(m_document.GetResult(), "<read encoding=\"UTF-8\" length=\"10\"/><utf8_detection/>");
    EXPECT_EQ(m_document.GetResultText(), "UTF-8 length 10 (used UTF-8 detection)");
}

TEST_F(XmlFile, invalid_utf_8_without_declaration_is_converted_from_the_locale) {
    EXPECT_TRUE(Load("\n<r>\xE4</r>"));
    EXPECT_EQ(m_document.GetDocumentText(), "\n<r>?</r>");
    EXPECT_EQ(m_document.GetResult(),
              "<read encoding=\"\" length=\"9\"/><converted_to encoding=\"UTF-8\" length=\"9\"/><conversion_loss/>"
              "<utf8_detection/>");
    EXPECT_EQ(m_document.GetResultText(),
              " length 9 to UTF-8 length 9 (chars lost in conversion!) (used UTF-8 detection)");
}

TEST_F(XmlFile, a_utf_8_mark_is_left_out_of_the_text_and_saved_again) {
    EXPECT_TRUE(Load(Utf8Mark + "<r/>"));
    EXPECT_EQ(m_document.GetDocumentText(), "<r/>");
    EXPECT_EQ(m_document.GetResult(), "<bom/><read encoding=\"UTF-8\" length=\"4\"/>");
    EXPECT_EQ(m_document.GetResultText(), "BOM + UTF-8 length 4");
    EXPECT_EQ(Saved(), Utf8Mark + "<r/>");
}

TEST_F(XmlFile, a_mark_goes_before_a_declaration) {
    EXPECT_TRUE(Load(Utf8Mark + "<?xml encoding=\"iso-8859-1\"?><r>\xC3\xA4</r>"));
    EXPECT_EQ(m_document.GetDocumentText(), "<?xml encoding=\"iso-8859-1\"?><r>\xC3\xA4</r>");
}

TEST_F(XmlFile, a_file_of_only_a_mark_keeps_it) {
    EXPECT_FALSE(Load(Utf8Mark));
    EXPECT_EQ(m_document.GetDocumentText(), "");
    EXPECT_EQ(Saved(), Utf8Mark);
    EXPECT_EQ(m_document.GetResult(), "<write encoding=\"UTF-8\" length=\"0\"/>");
}

TEST_F(XmlFile, little_endian_utf_16_is_converted_and_saved_in_its_form) {
    const std::string bytes = LittleMark + Utf16(u"<r a=\"\u00E4\U0001F600\"/>", false);
    EXPECT_TRUE(Load(bytes));
    EXPECT_EQ(m_document.GetDocumentText(), "<r a=\"\xC3\xA4\xF0\x9F\x98\x80\"/>");
    EXPECT_EQ(m_document.GetResult(),
              "<bom/><read encoding=\"UTF-16LE\" length=\"12\"/><converted_to encoding=\"UTF-8\" length=\"15\"/>");
    EXPECT_EQ(m_document.GetResultText(), "BOM + UTF-16LE length 12 to UTF-8 length 15");
    EXPECT_EQ(Saved(), bytes);
    EXPECT_EQ(m_document.GetResult(),
              "<converted_from encoding=\"UTF-8\" length=\"15\"/><write encoding=\"UTF-16LE\" length=\"12\"/>");
    EXPECT_EQ(m_document.GetResultText(), "UTF-8 length 15 to UTF-16LE length 12");
}

TEST_F(XmlFile, big_endian_utf_16_is_swapped_and_saved_in_its_form) {
    const std::string bytes = BigMark + Utf16(u"<r a=\"\u00E4\U0001F600\"/>", true);
    EXPECT_TRUE(Load(bytes));
    EXPECT_EQ(m_document.GetDocumentText(), "<r a=\"\xC3\xA4\xF0\x9F\x98\x80\"/>");
    EXPECT_EQ(m_document.GetResult(),
              "<bom/><read encoding=\"UTF-16BE\" length=\"12\"/><endian_swap/>"
              "<converted_to encoding=\"UTF-8\" length=\"15\"/>");
    EXPECT_EQ(m_document.GetResultText(), "BOM + UTF-16BE length 12 endian swap to UTF-8 length 15");
    EXPECT_EQ(Saved(), bytes);
}

TEST_F(XmlFile, a_lone_surrogate_is_lost) {
    EXPECT_TRUE(Load(LittleMark + Utf16(u"<r>", false) + "\x01\xDC"s + Utf16(u"</r>", false)));
    EXPECT_EQ(m_document.GetDocumentText(), "<r>?</r>");
    EXPECT_EQ(m_document.GetResultText(), "BOM + UTF-16LE length 8 to UTF-8 length 8 (chars lost in conversion!)");
}

TEST_F(XmlFile, an_odd_last_byte_of_utf_16_is_dropped) {
    EXPECT_TRUE(Load(LittleMark + Utf16(u"<r/>", false) + "x"));
    EXPECT_EQ(m_document.GetDocumentText(), "<r/>");
}

TEST_F(XmlFile, zero_bytes_are_removed) {
    EXPECT_TRUE(Load("<r>\0a\0\0b</r>"s));
    EXPECT_EQ(m_document.GetDocumentText(), "<r>ab</r>");
    EXPECT_EQ(m_document.GetResult(), "<read encoding=\"UTF-8\" length=\"12\"/><nulls_removed count=\"3\"/>");
    EXPECT_EQ(m_document.GetResultText(), "UTF-8 length 12 removed 3 nulls");
}

TEST_F(XmlFile, zero_units_of_utf_16_are_removed) {
    EXPECT_TRUE(Load(BigMark + Utf16(u"<r>\0\u0100</r>"s, true)));
    EXPECT_EQ(m_document.GetDocumentText(), "<r>\xC4\x80</r>");
    EXPECT_EQ(m_document.GetResultText(), "BOM + UTF-16BE length 9 removed 1 nulls endian swap to UTF-8 length 9");
}

TEST_F(XmlFile, a_declared_encoding_is_converted_and_saved_in_its_form) {
    const std::string bytes = "<?xml encoding=\"iso-8859-1\"?><r>\xE4</r>";
    EXPECT_TRUE(Load(bytes));
    EXPECT_EQ(m_document.GetDocumentText(), "<?xml encoding=\"iso-8859-1\"?><r>\xC3\xA4</r>");
    EXPECT_EQ(m_document.GetResultText(), "iso-8859-1 length 37 to UTF-8 length 38");
    EXPECT_EQ(Saved(), bytes);
    EXPECT_EQ(m_document.GetResultText(), "UTF-8 length 38 to iso-8859-1 length 37");
}

TEST_F(XmlFile, characters_that_the_encoding_lacks_are_lost_on_saving) {
    Load("<?xml encoding=\"iso-8859-1\"?><r/>");
    m_document.FindElement("r");
    m_document.SetAttribute("a", "\xE2\x82\xAC");
    EXPECT_EQ(Saved(), "<?xml encoding=\"iso-8859-1\"?><r a=\"???\"/>");
    EXPECT_EQ(m_document.GetResult(),
              "<converted_from encoding=\"UTF-8\" length=\"41\"/><conversion_loss/>"
              "<write encoding=\"iso-8859-1\" length=\"41\"/>");
}

TEST_F(XmlFile, an_unknown_encoding_leaves_the_bytes_unchanged) {
    const std::string bytes = "<?xml encoding=\"x-unheard-of\"?><r>\xE4</r>";
    EXPECT_TRUE(Load(bytes));
    EXPECT_EQ(m_document.GetDocumentText(), bytes);
    EXPECT_EQ(m_document.GetResultText(), "x-unheard-of length 39");
    EXPECT_EQ(Saved(), bytes);
    EXPECT_EQ(m_document.GetResultText(), "x-unheard-of length 39");
}

TEST_F(XmlFile, the_encoding_of_an_html_form_is_used) {
    const std::string head =
        "<html><head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=iso-8859-1\"/></head>";
    EXPECT_TRUE(Load(head + "\xE4</html>"));
    EXPECT_EQ(m_document.GetDocumentText(), head + "\xC3\xA4</html>");
}

TEST_F(XmlFile, a_declaration_after_the_sample_is_not_seen) {
    EXPECT_TRUE(Load("<!--" + std::string(1100, ' ') + "--><?xml encoding=\"iso-8859-1\"?><r>\xC3\xA4</r>"));
    EXPECT_TRUE(m_document.GetResultText().starts_with("UTF-8 length "));
}

TEST_F(XmlFile, a_text_from_memory_is_saved_in_the_encoding_it_declares) {
    m_document.SetDocumentText("<?xml encoding=\"iso-8859-1\"?><r>\xC3\xA4</r>");
    EXPECT_EQ(Saved(), "<?xml encoding=\"iso-8859-1\"?><r>\xE4</r>");
}

TEST_F(XmlFile, a_text_from_memory_without_declaration_is_saved_as_utf_8) {
    m_document.SetDocumentText("<r>\xC3\xA4</r>");
    EXPECT_EQ(Saved(), "<r>\xC3\xA4</r>");
    EXPECT_EQ(m_document.GetResult(), "<write encoding=\"UTF-8\" length=\"9\"/>");
}

TEST_F(XmlFile, a_text_from_memory_is_saved_in_the_form_of_the_last_load) {
    Load(LittleMark + Utf16(u"<r/>", false));
    m_document.SetDocumentText("<s/>");
    EXPECT_EQ(Saved(), LittleMark + Utf16(u"<s/>", false));
    Load("<?xml encoding=\"iso-8859-1\"?><r/>");
    m_document.SetDocumentText("<r>\xC3\xA4</r>");
    EXPECT_EQ(Saved(), "<r>\xE4</r>");
}

TEST_F(XmlFile, an_empty_document_writes_an_empty_file) {
    EXPECT_EQ(Saved(), "");
    EXPECT_EQ(m_document.GetResult(), "<write encoding=\"\" length=\"0\"/>");
}

TEST_F(XmlFile, a_file_that_cannot_be_written_is_reported) {
    m_document.SetDocumentText("<a/>");
    EXPECT_FALSE(m_document.Save("/nonexistent/file.xml"));
    EXPECT_EQ(m_document.GetResultText(), "No such file or directory");
    EXPECT_EQ(m_document.GetDocumentText(), "<a/>");
    EXPECT_FALSE(m_document.Save(nullptr));
}

TEST_F(XmlFile, a_full_device_is_reported) {
    m_document.SetDocumentText("<a/>");
    EXPECT_FALSE(m_document.Save("/dev/full"));
    EXPECT_EQ(m_document.GetResult(), "<file_error msg=\"No space left on device\"/>");
}

TEST_F(XmlFile, an_ill_formed_file_is_indexed_and_false) {
    EXPECT_FALSE(Load("<a><b></a>"));
    EXPECT_TRUE(m_document.FindElement("a"));
    EXPECT_EQ(m_document.GetResultText(), "UTF-8 length 10 start tag 'b' at offset 3 expecting end tag at offset 6");
}

TEST_F(XmlFile, a_file_longer_than_one_piece_is_read_whole) {
    std::string text = "<r>";
    for (int count = 0; count < 20'000; ++count) {
        text += "<a n=\"" + std::to_string(count) + "\"/>\n";
    }
    text += "</r>";
    EXPECT_TRUE(Load(text));
    EXPECT_EQ(m_document.GetDocumentText(), text);
    EXPECT_EQ(Saved(), text);
}

}  // namespace
