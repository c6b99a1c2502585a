// The processor's IO registers in /dev/mem. A page is filled when the program maps it; what the program stored in its
// set and clear registers takes effect when it unmaps the page.
#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

constexpr std::uint32_t RegisterPage = 0xFFFFF000;
constexpr std::uint32_t FirstBlock = 0x400;
constexpr std::uint32_t BlockSize = 0x200;

enum RegisterOffset : std::uint32_t { OutputStatus = 0x18, OutputSet = 0x30, OutputClear = 0x34, DataStatus = 0x3C };

std::size_t Word(int bank, RegisterOffset offset) {
    return (FirstBlock + static_cast<std::uint32_t>(bank) * BlockSize + offset) / sizeof(std::uint32_t);
}

void ApplyRegister(BoardState& state, int bank, RegisterOffset offset, std::uint32_t bits) {
    if (bits == 0) {
        return;
    }
    for (int pin = 0; pin < PinsPerBank; ++pin) {
        if ((bits >> pin & 1U) != 0) {
            SetPinLatch(state, {bank, pin}, offset == OutputSet);
        }
    }
    const std::uint32_t address = RegisterPage + FirstBlock + static_cast<std::uint32_t>(bank) * BlockSize + offset;
    Trace(state, 0, "mem 0x%08x=0x%08x", address, bits);
}

// One bit for each pin of the bank; 0 for a bank that does not exist.
template <typename Level>
std::uint32_t BitsOf(int bank, Level level) {
    std::uint32_t bits = 0;
    for (int pin = 0; pin < PinsPerBank && bank >= 0 && bank < Banks; ++pin) {
        bits |= (level(Line{bank, pin}) ? 1U : 0U) << pin;
    }
    return bits;
}

std::uint32_t OutputStatusOf(const BoardState& state, int bank) {
    return BitsOf(bank, [&state](Line line) { return state.PinAt(line).latch; });
}

std::uint32_t DataStatusOf(const BoardState& state, int bank) {
    return BitsOf(bank, [&state](Line line) { return PinLevel(state, line); });
}

}  // namespace

void FillRegisterPage(BoardState& state, std::uint32_t page, std::uint32_t* words) {
    for (int bank = 0; bank < Banks && page == RegisterPage; ++bank) {
        words[Word(bank, OutputStatus)] = OutputStatusOf(state, bank);
        words[Word(bank, DataStatus)] = DataStatusOf(state, bank);
    }
}

void ApplyRegisterPage(BoardState& state, std::uint32_t page, const std::uint32_t* words) {
    for (int bank = 0; bank < Banks && page == RegisterPage; ++bank) {
        ApplyRegister(state, bank, OutputSet, words[Word(bank, OutputSet)]);
        ApplyRegister(state, bank, OutputClear, words[Word(bank, OutputClear)]);
    }
}

std::uint32_t Board::OutputStatus(int bank) const { return OutputStatusOf(*BoardLock(*m_state), bank); }
std::uint32_t Board::DataStatus(int bank) const { return DataStatusOf(*BoardLock(*m_state), bank); }

}  // namespace Bench
