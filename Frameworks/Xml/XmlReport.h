// The result report of a document: one empty element for each report of a load, save or parse, named by its key. Any
// thread, one text at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The attributes of a report; unset ones are left out.
struct XmlReportDetails {
    const char* type = nullptr;
    const char* encoding = nullptr;
    const char* msg = nullptr;
    std::optional<std::string_view> tagname = {};
    std::optional<std::uint64_t> count = {};
    std::optional<std::uint64_t> length = {};
    std::optional<std::uint64_t> offset = {};
    std::optional<std::uint64_t> offset2 = {};
};

// Appends one report, unless the text is over 999 characters.
void AddXmlReport(std::string& result, const char* key, const XmlReportDetails& details = {});

// The reports as text for display, joined by a blank.
std::string XmlReportText(const std::string& result);
