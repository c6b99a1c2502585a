#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "Bench/Board/Board.h"
#include "Bench/Board/BoardState.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

// In memory if the machine has such a folder, because each test creates a board.
std::string TemporaryFolder() {
    const char* chosen = std::getenv("TMPDIR");
    if (chosen != nullptr && *chosen != '\0') {
        return chosen;
    }
    return Real::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
}

}  // namespace

TemporaryBoard::TemporaryBoard(const BoardSetup& setup) {
    std::string name = TemporaryFolder() + "/vernicor-XXXXXX";
    std::string error = name + ": " + std::strerror(errno);
    if (::mkdtemp(name.data()) != nullptr) {
        m_folder = name;
        m_board = Board::Create(m_folder, setup, error);
    }
    if (m_board == nullptr) {
        std::fprintf(stderr, "board: can't create a temporary board: %s\n", error.c_str());
        std::abort();
    }
    AttachThisProcess(*m_board);
}

TemporaryBoard::~TemporaryBoard() {
    DetachThisProcess();
    m_board->State().run.fetch_add(1);  // forked children then end
    m_board->State().clock.changes.fetch_add(1);
    FutexWakeAll(m_board->State().clock.changes);
    pthread_mutex_destroy(&m_board->State().mutex);
    m_board.reset();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

}  // namespace Bench
