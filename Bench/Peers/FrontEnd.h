// A front end in the place of the real one: listens, takes the analyzer's frames apart and sends codes. It knows the
// text on the wire and nothing of the analyzer. Operations from any thread.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Bench/Peers/LinkServer.h"

namespace Bench {

// What stands between two "`" on the wire.
struct FrontEndFrame {
    std::string text;  // without the "`"
    std::vector<std::pair<std::string, std::string>> values;

    std::optional<std::string> Find(const std::string& name) const;
};

// "Name~Value" pairs with ";" between them. Nothing is escaped on this link, so what stands behind the first "~" of a
// pair is its value, and a piece without one is a name with an empty value.
FrontEndFrame DecodeFrontEndFrame(const std::string& text);

// What the front end shows: the last value of each name.
struct Screen {
    std::string chlorine;
    std::string date;
    std::string status;
    std::string version;
    std::string command;  // "-1" the analyzer entered idle, "-2" running
};

class FrontEnd final : public LinkServer {
public:
    static constexpr std::uint16_t UsualPort = 3111;
    static constexpr std::size_t LongestFrame = 65536;
    static constexpr std::size_t FramesKept = 4096;  // the last ones

    enum Code { Idle = 1, Running = 2, Reset = 3, Prime = 4, Question = 8 };

    // Null with a sentence in `error` where the port can't be had. Port 0: any that is free.
    static std::unique_ptr<FrontEnd> Listen(std::uint16_t port, std::string& error);
    ~FrontEnd() override { Stop(); }

    bool SendCode(int code, const std::string& text = "");

    std::size_t FrameCount() const;             // all of them, the forgotten ones too
    std::vector<FrontEndFrame> Frames() const;  // oldest first
    std::vector<std::string> Texts() const;     // of the frames
    std::string Rest() const;                   // what came behind the last frame
    Bench::Screen Screen() const;               // empty again with each connection

    // The first frame behind so many, from whichever connection, that has the name and, where one is given, the value;
    // `behind` then counts it too. Nothing after that time.
    std::optional<FrontEndFrame> WaitForValue(const std::string& name, const std::optional<std::string>& value,
                                              std::size_t& behind, double seconds) const;
    bool WaitForFrames(std::size_t count, double seconds) const;

private:
    FrontEnd() = default;

    void Begin() override;
    bool Receive(std::string_view bytes, std::string& trouble) override;
    void Take(const std::string& text);

    // With the lock held.
    std::deque<FrontEndFrame> m_frames;
    std::size_t m_count = 0;
    std::string m_rest;
    Bench::Screen m_screen;
};

}  // namespace Bench
