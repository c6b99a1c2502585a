// The result report of a document: a run of empty elements, one for each thing that a load, save or parse had to say,
// with the key as its name. Any thread, one text at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The attributes of a report; what isn't set is left out.
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

// Appends one report, unless the text is over 999 characters already.
void AddXmlReport(std::string& result, const char* key, const XmlReportDetails& details = {});

// The reports as text for display, joined by a blank.
std::string XmlReportText(const std::string& result);
