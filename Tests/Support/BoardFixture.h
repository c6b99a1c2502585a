// A test on its own board: fresh state, fresh folder, this process attached from construction to destruction.
// Another speed or start: derive and pass a BoardSetup to the constructor.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Bench/Board/Board.h"

class BoardTest : public ::testing::Test {
protected:
    explicit BoardTest(const Bench::BoardSetup& setup = {}) : m_temporary(setup) {}

    // Simulated seconds per second.
    static Bench::BoardSetup AtSpeed(double speed) {
        Bench::BoardSetup setup;
        setup.speed = speed;
        return setup;
    }

    // Without noise, for an ExactTime member.
    static Bench::BoardSetup QuietInExactTime() {
        Bench::BoardSetup setup;
        setup.noise = false;
        setup.exact.emplace();
        return setup;
    }

    static Bench::BoardSetup QuietAtSpeed(double speed) {
        Bench::BoardSetup setup = AtSpeed(speed);
        setup.noise = false;
        return setup;
    }

    Bench::Board& Board() const { return m_temporary.Get(); }
    // A path of the instrument ("/mnt/sd-card/a") is in this folder; the card's files are in "card".
    const std::string& Folder() const { return m_temporary.Get().Folder(); }

    void SetFault(const std::string& fault) const {
        std::string error;
        EXPECT_TRUE(Board().SetFault(fault, error)) << error;
    }

    // Waits until this is the last call of a sound tool.
    void WaitForSound(const std::string& call) const {
        EXPECT_TRUE(Board().WaitUntil([&] {
            const std::vector<std::string> calls = Board().SoundCalls();
            return !calls.empty() && calls.back() == call;
        })) << call;
    }

    // Simulated seconds.
    void LetPass(double seconds) const {
        const double end = Board().Seconds() + seconds;
        EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() > end; }));
    }

private:
    Bench::TemporaryBoard m_temporary;
};
