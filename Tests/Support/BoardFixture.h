// A test on a board of its own: fresh state, fresh folder, this process attached from construction to destruction.
// Another speed or start: derive and hand a BoardSetup to the constructor.
#pragma once

#include <gtest/gtest.h>

#include "Bench/Board/Board.h"

class BoardTest : public ::testing::Test {
protected:
    explicit BoardTest(const Bench::BoardSetup& setup = {}) : m_temporary(setup) {}

    Bench::Board& Board() const { return m_temporary.Get(); }
    // A path of the instrument ("/mnt/sd-card/a") stands in this folder; what is on the card stands in "card".
    const std::string& Folder() const { return m_temporary.Get().Folder(); }

private:
    Bench::TemporaryBoard m_temporary;
};
