#include "Bench/Peers/FrontEnd.h"

#include <algorithm>

namespace Bench {

namespace {

constexpr char FrameEnd = '`';
constexpr char PairEnd = ';';
constexpr char NameEnd = '~';

constexpr struct {
    const char* name;
    std::string Screen::*field;
} Fields[] = {
    {"ChlorineValue", &Screen::chlorine},   //
    {"DateValue", &Screen::date},           //
    {"InstrumentStatus", &Screen::status},  //
    {"SoftwareVersion", &Screen::version},  //
    {"CMD", &Screen::command},
};

}  // namespace

std::optional<std::string> FrontEndFrame::Find(const std::string& name) const {
    for (const auto& [known, value] : values) {
        if (known == name) {
            return value;
        }
    }
    return std::nullopt;
}

FrontEndFrame DecodeFrontEndFrame(const std::string& text) {
    FrontEndFrame frame;
    frame.text = text;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(PairEnd, start), text.size());
        const std::string piece = text.substr(start, end - start);
        const std::size_t mark = piece.find(NameEnd);
        const std::string value = mark == std::string::npos ? "" : piece.substr(mark + 1);
        frame.values.emplace_back(piece.substr(0, mark), value);
        start = end + 1;
    }
    return frame;
}

std::unique_ptr<FrontEnd> FrontEnd::Listen(std::uint16_t port, std::string& error) {
    std::unique_ptr<FrontEnd> frontEnd(new FrontEnd);
    if (!frontEnd->LinkServer::Listen(port, error)) {
        return nullptr;
    }
    frontEnd->Start();
    return frontEnd;
}

std::unique_ptr<FrontEnd> FrontEnd::On(std::unique_ptr<PeerWire> wire) {
    std::unique_ptr<FrontEnd> frontEnd(new FrontEnd);
    frontEnd->Use(std::move(wire));
    return frontEnd;
}

bool FrontEnd::SendCode(int code, const std::string& text) { return Send(std::to_string(code) + NameEnd + text); }

std::size_t FrontEnd::FrameCount() const {
    const std::lock_guard lock(m_mutex);
    return m_count;
}

std::vector<FrontEndFrame> FrontEnd::Frames() const {
    const std::lock_guard lock(m_mutex);
    return {m_frames.begin(), m_frames.end()};
}

std::vector<std::string> FrontEnd::Texts() const {
    std::vector<std::string> texts;
    for (const FrontEndFrame& frame : Frames()) {
        texts.push_back(frame.text);
    }
    return texts;
}

std::string FrontEnd::Rest() const {
    const std::lock_guard lock(m_mutex);
    return m_rest;
}

Bench::Screen FrontEnd::Screen() const {
    const std::lock_guard lock(m_mutex);
    return m_screen;
}

std::optional<FrontEndFrame> FrontEnd::WaitForValue(const std::string& name, const std::optional<std::string>& value,
                                                    std::size_t& seen, double seconds) const {
    std::optional<FrontEndFrame> found;
    WaitFor(seconds, [&] {
        seen = std::max(seen, m_count - m_frames.size());
        while (!found && seen < m_count) {
            const FrontEndFrame& frame = m_frames[m_frames.size() - (m_count - seen)];
            const std::optional<std::string> current = frame.Find(name);
            found = current && (!value || current == value) ? std::optional(frame) : std::nullopt;
            ++seen;
        }
        return found.has_value();
    });
    return found;
}

bool FrontEnd::WaitForFrames(std::size_t count, double seconds) const {
    return WaitFor(seconds, [this, count] { return m_count >= count; });
}

void FrontEnd::Begin() {
    m_rest.clear();
    m_screen = {};
}

bool FrontEnd::Receive(std::string_view bytes, std::string& reason) {
    m_rest += bytes;
    std::size_t start = 0;
    for (std::size_t end = m_rest.find(FrameEnd); end != std::string::npos; end = m_rest.find(FrameEnd, start)) {
        Take(m_rest.substr(start, end - start));
        start = end + 1;
    }
    m_rest.erase(0, start);
    if (m_rest.size() > MaxFrame) {
        reason = "a frame of more than " + std::to_string(MaxFrame) + " bytes";
        m_rest.clear();
        return false;
    }
    return true;
}

void FrontEnd::Take(const std::string& text) {
    m_frames.push_back(DecodeFrontEndFrame(text));
    ++m_count;
    if (m_frames.size() > FramesKept) {
        m_frames.pop_front();
    }
    for (const auto& [name, value] : m_frames.back().values) {
        for (const auto& field : Fields) {
            if (name == field.name) {
                m_screen.*field.field = value;
            }
        }
    }
}

}  // namespace Bench
