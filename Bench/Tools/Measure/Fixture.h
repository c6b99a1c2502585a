// The analyzer with a front end on its own board, to be measured in real time. One thread.
#pragma once

#include <memory>
#include <string>

#include "Bench/Common/BenchedAnalyzer.h"

namespace Bench {

class Fixture : public BenchedAnalyzer {
public:
    // Starts the program with these settings, at high speed until the front end is connected, then in real time. Null
    // with the reason in `error`.
    static std::unique_ptr<Fixture> Start(const Places& places, const SettingsFile& settings, std::string& error);
    // Starts the program and waits for nothing but its process.
    static std::unique_ptr<Fixture> StartBare(const Places& places, const SettingsFile& settings, std::string& error);

    void SetFast(bool isFast);  // fifty times as fast, or in real time

    bool Send(FrontEnd::Code code) { return AtFrontEnd().SendCode(code); }
    // Seconds of the board at which all controllers had come to IDLE_STATE since the last call; below 0 after a
    // timeout. The settings have to log at DEBUG_LOG_LEVEL.
    double WaitForIdle();
    // Waits until the front end has been connected more often than that.
    bool WaitForConnection(std::size_t connections) const;
    std::size_t Connections() const { return AtFrontEnd().Connections(); }

private:
    Fixture() = default;

    bool AreAllIdle() const;
};

}  // namespace Bench
