#include <expat.h>

#include <algorithm>
#include <cstdio>

#include "Benchmarks/Readers.h"

namespace {

constexpr std::size_t PieceSize = 65536;

XML_Parser ParserOf(void* parser) { return static_cast<XML_Parser>(parser); }

}  // namespace

bool ExpatReader::Load(const std::string& path) {
    if (!Read(path)) {
        return false;
    }
    const XML_Parser parser = XML_ParserCreate(nullptr);
    m_parser = parser;
    m_records.assign(1, XmlRecord{});
    m_open.assign(1, 0);
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, OnStart, OnEnd);
    const bool isParsed = ParsePieces();
    XML_ParserFree(parser);
    m_parser = nullptr;
    return isParsed;
}

// The parser copies what it is given at once.
bool ExpatReader::ParsePieces() {
    std::size_t done = 0;
    while (done < m_text.size()) {
        const std::size_t piece = std::min(PieceSize, m_text.size() - done);
        const bool isLast = done + piece == m_text.size();
        if (XML_Parse(ParserOf(m_parser), m_text.data() + done, static_cast<int>(piece), isLast ? 1 : 0) !=
            XML_STATUS_OK) {
            return false;
        }
        done += piece;
    }
    return true;
}

bool ExpatReader::Read(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (file == nullptr || std::fseek(file.get(), 0, SEEK_END) != 0) {
        return false;
    }
    m_text.resize(static_cast<std::size_t>(std::ftell(file.get())));
    std::rewind(file.get());
    return std::fread(m_text.data(), 1, m_text.size(), file.get()) == m_text.size();
}

std::uint32_t ExpatReader::Offset() const {
    return static_cast<std::uint32_t>(XML_GetCurrentByteIndex(ParserOf(m_parser)));
}

void ExpatReader::OnStart(void* reader, const char* /*name*/, const char** /*attributes*/) {
    ExpatReader& self = *static_cast<ExpatReader*>(reader);
    const auto index = static_cast<std::uint32_t>(self.m_records.size());
    const std::uint32_t parent = self.m_open.back();
    XmlRecord record{};
    record.start = self.Offset();
    record.tagLengths = static_cast<std::uint32_t>(XML_GetCurrentByteCount(ParserOf(self.m_parser)));
    record.flags = static_cast<std::uint32_t>(self.m_open.size());
    record.parent = parent;
    record.previousSibling = index;
    if (const std::uint32_t first = self.m_records[parent].firstChild; first == 0) {
        self.m_records[parent].firstChild = index;
    } else {
        record.previousSibling = self.m_records[first].previousSibling;
        self.m_records[record.previousSibling].nextSibling = index;
        self.m_records[first].previousSibling = index;
    }
    self.m_records.push_back(record);
    self.m_open.push_back(index);
}

void ExpatReader::OnEnd(void* reader, const char* /*name*/) {
    ExpatReader& self = *static_cast<ExpatReader*>(reader);
    XmlRecord& record = self.m_records[self.m_open.back()];
    const auto endTag = static_cast<std::uint32_t>(XML_GetCurrentByteCount(ParserOf(self.m_parser)));
    record.length = self.Offset() + endTag - record.start;
    self.m_open.pop_back();
}
