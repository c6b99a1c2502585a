#include "Frameworks/Xml/XmlReport.h"

#include <string_view>

#include "Frameworks/Xml/XmlDocument.h"

namespace {

constexpr std::size_t ReportLimit = 999;

struct DisplayText {
    std::string_view key;
    std::string_view text;  // "@name@" is replaced by the value of that attribute
};

constexpr std::string_view EncodingAndLength = "@encoding@ length @length@";

constexpr DisplayText DisplayTexts[] = {
    {"root_has_sibling", "root element has sibling"},
    {"no_root_element", "no root element"},
    {"lone_end_tag", "lone end tag '@tagname@' at offset @offset@"},
    {"unended_start_tag", "start tag '@tagname@' at offset @offset@ expecting end tag at offset @offset2@"},
    {"first_tag_syntax", "tag syntax error at offset @offset@ expecting tag name / ! or ?"},
    {"exclamation_tag_syntax", "tag syntax error at offset @offset@ expecting 'DOCTYPE' [ or -"},
    {"doctype_tag_syntax", "tag syntax error at offset @offset@ expecting markup declaration"},
    {"comment_tag_syntax", "tag syntax error at offset @offset@ expecting - to begin comment"},
    {"cdata_section_syntax", "tag syntax error at offset @offset@ expecting 'CDATA'"},
    {"unterminated_tag_syntax", "unterminated tag at offset @offset@"},
    {"file_error", "@msg@"},
    {"bom", "BOM +"},
    {"read", EncodingAndLength},
    {"write", EncodingAndLength},
    {"converted_to", "to @encoding@ length @length@"},
    {"converted_from", "@encoding@ length @length@ to"},
    {"nulls_removed", "removed @count@ nulls"},
    {"conversion_loss", "(chars lost in conversion!)"},
    {"utf8_detection", "(used UTF-8 detection)"},
    {"endian_swap", "endian swap"},
    {"truncation_error", "encoding @encoding@ adjustment error"},
};

void SetText(XmlDocument& report, const char* name, const char* value) {
    if (value != nullptr) {
        report.SetAttribute(name, value);
    }
}

void SetNumber(XmlDocument& report, const char* name, const std::optional<std::uint64_t>& value) {
    if (value) {
        report.SetAttribute(name, std::to_string(*value).c_str());
    }
}

std::string FillIn(std::string_view text, const XmlDocument& report) {
    std::string filled;
    for (std::size_t at = text.find('@'); at != std::string_view::npos; at = text.find('@')) {
        filled.append(text, 0, at);
        text.remove_prefix(at + 1);
        const std::size_t end = text.find('@');
        filled += report.GetAttribute(std::string(text.substr(0, end)).c_str());
        text.remove_prefix(end + 1);
    }
    return filled.append(text);
}

}  // namespace

void AddXmlReport(std::string& result, const char* key, const XmlReportDetails& details) {
    if (result.size() > ReportLimit) {
        return;
    }
    // The fragment has no single root, which does not matter here.
    XmlDocument fragment;
    fragment.SetDocumentText(result.c_str());
    fragment.AddElement(key, nullptr, XmlDocument::NoLineFeedFlag);
    SetText(fragment, "type", details.type);
    SetText(fragment, "encoding", details.encoding);
    SetText(fragment, "msg", details.msg);
    if (details.tagname) {
        fragment.SetAttribute("tagname", std::string(*details.tagname).c_str());
    }
    SetNumber(fragment, "count", details.count);
    SetNumber(fragment, "length", details.length);
    SetNumber(fragment, "offset", details.offset);
    SetNumber(fragment, "offset2", details.offset2);
    result = fragment.GetDocumentText();
}

std::string XmlReportText(const std::string& result) {
    XmlDocument reports;
    reports.SetDocumentText(result.c_str());
    std::string text;
    while (reports.FindElement()) {
        const std::string key = reports.GetTagName();
        for (const DisplayText& display : DisplayTexts) {
            if (display.key == key) {
                text += text.empty() ? "" : " ";
                text += FillIn(display.text, reports);
            }
        }
    }
    return text;
}
