// A front end that replaces the real one: it listens, parses the analyzer's frames and sends codes. It depends on the
// protocol alone and on no code of the analyzer. Operations from any thread.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Bench/Peers/LinkServer.h"

namespace Bench {

// The text between two "`" on the wire.
struct FrontEndFrame {
    std::string text;  // without the "`"
    std::vector<std::pair<std::string, std::string>> values;

    std::optional<std::string> Find(const std::string& name) const;
};

// "Name~Value" pairs separated by ";". Nothing is escaped on this link: everything after the first "~" of a pair is its
// value, and a piece without "~" is a name with an empty value.
FrontEndFrame DecodeFrontEndFrame(const std::string& text);

// What the front end shows: the latest value of each name.
struct Screen {
    std::string chlorine;
    std::string date;
    std::string status;
    std::string version;
    std::string command;  // "-1" the analyzer entered idle, "-2" running
};

class FrontEnd final : public LinkServer {
public:
    static constexpr std::uint16_t DefaultPort = 3111;
    static constexpr std::size_t MaxFrame = 65536;
    static constexpr std::size_t FramesKept = 4096;  // the last ones

    enum Code { Idle = 1, Running = 2, Reset = 3, Prime = 4, Question = 8 };

    // Returns null with the reason in `error` if the port is not available. Port 0: any free port.
    static std::unique_ptr<FrontEnd> Listen(std::uint16_t port, std::string& error);
    static std::unique_ptr<FrontEnd> On(std::unique_ptr<PeerWire> wire);
    ~FrontEnd() override { Stop(); }

    bool SendCode(int code, const std::string& text = "");

    std::size_t FrameCount() const;             // includes those no longer kept
    std::vector<FrontEndFrame> Frames() const;  // oldest first
    std::vector<std::string> Texts() const;     // of the frames
    std::string Rest() const;                   // the bytes received after the last frame
    Bench::Screen Screen() const;               // empty again with each connection

    // The first frame after the first `seen` of all connections that has the name and, if given, the value; `seen` then
    // includes it. Nothing on timeout.
    std::optional<FrontEndFrame> WaitForValue(const std::string& name, const std::optional<std::string>& value,
                                              std::size_t& seen, double seconds) const;
    bool WaitForFrames(std::size_t count, double seconds) const;

private:
    FrontEnd() = default;

    void Begin() override;
    bool Receive(std::string_view bytes, std::string& reason) override;
    void Take(const std::string& text);

    // With the lock held.
    std::deque<FrontEndFrame> m_frames;
    std::size_t m_count = 0;
    std::string m_rest;
    Bench::Screen m_screen;
};

}  // namespace Bench
