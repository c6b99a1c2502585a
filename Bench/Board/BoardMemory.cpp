// The processor's IO registers as /dev/mem shows them: one page is filled when it is mapped, and what the program
// stored in the set and clear registers acts when it is unmapped.
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
            SetPinLatch(state, bank, pin, offset == OutputSet);
        }
    }
    TraceAct(state, "mem 0x%08x=0x%08x",
             RegisterPage + FirstBlock + static_cast<std::uint32_t>(bank) * BlockSize + offset, bits);
}

}  // namespace

std::uint32_t OutputStatusOf(const BoardState& state, int bank) {
    std::uint32_t bits = 0;
    for (int pin = 0; pin < PinsPerBank; ++pin) {
        bits |= (state.pins[bank][pin].latch ? 1U : 0U) << pin;
    }
    return bits;
}

std::uint32_t DataStatusOf(const BoardState& state, int bank) {
    std::uint32_t bits = 0;
    for (int pin = 0; pin < PinsPerBank; ++pin) {
        bits |= (PinLevel(state, bank, pin) ? 1U : 0U) << pin;
    }
    return bits;
}

void FillRegisterPage(BoardState& state, std::uint32_t page, std::uint32_t* words) {
    if (page != RegisterPage) {
        return;
    }
    for (int bank = 0; bank < Banks; ++bank) {
        words[Word(bank, OutputStatus)] = OutputStatusOf(state, bank);
        words[Word(bank, DataStatus)] = DataStatusOf(state, bank);
    }
}

void ApplyRegisterPage(BoardState& state, std::uint32_t page, const std::uint32_t* words) {
    if (page != RegisterPage) {
        return;
    }
    for (int bank = 0; bank < Banks; ++bank) {
        ApplyRegister(state, bank, OutputSet, words[Word(bank, OutputSet)]);
        ApplyRegister(state, bank, OutputClear, words[Word(bank, OutputClear)]);
    }
}

}  // namespace Bench
