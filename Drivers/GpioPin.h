// One digital line, claimed from the kernel by construction and released by destruction. Claiming is exclusive, within
// this process too. Each operation opens, uses and closes its file; nothing stays open. Failure texts go to the error
// stream. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "Drivers/PinAddress.h"

// What a line is for.
enum GpioMode : std::int32_t {
    INPUT_GPIO_MODE = 0,
    OUTPUT_GPIO_MODE = 1,
    EDGE_GPIO_MODE = 2,  // input with edge detection
};

// Which changes end a wait.
enum GpioEdge : std::int32_t {
    NO_GPIO_EDGE = 0,
    RISING_GPIO_EDGE = 1,
    FALLING_GPIO_EDGE = 2,
    BOTH_GPIO_EDGE = 3,
};

// The result of a read or a wait.
enum GpioLevel : std::int32_t {
    LOW_GPIO_LEVEL = 0,
    HIGH_GPIO_LEVEL = 1,
    TIME_OUT_GPIO_LEVEL = 2,
    ERROR_GPIO_LEVEL = 3,
};

class GpioPin {
public:
    // An input without edge detection. Bank 0 to 3, pin 0 to 31.
    explicit GpioPin(PinAddress address);
    GpioPin(PinAddress address, GpioMode mode, GpioEdge edge);
    GpioPin(const GpioPin&) = delete;
    GpioPin& operator=(const GpioPin&) = delete;
    ~GpioPin();

    // Whether the last construction or release step succeeded.
    bool IsValid() const { return m_valid; }
    GpioMode GetMode() const { return m_mode; }
    GpioEdge GetEdge() const { return m_edge; }

    // Claim and release. False if the line is claimed already, or is not claimed.
    bool Export();
    bool Unexport();

    // False if the line is not claimed or the kernel refuses the value. Mode and edge keep the last value accepted.
    bool SetDirection(GpioMode mode);
    bool SetEdge(GpioEdge edge);
    // The edge counts in EDGE_GPIO_MODE only; the other modes detect none.
    bool SetModeAndEdge(GpioMode mode, GpioEdge edge);

    // Low also if the value cannot be read; an error only for a line that is not claimed.
    GpioLevel Read() const;
    // 1 is high, anything else low. False, without a text, unless the line is an output.
    bool Write(std::int32_t level);
    // The level after the next edge. Milliseconds; -1 waits without limit. A plain read unless in EDGE_GPIO_MODE.
    GpioLevel WaitForEdge(std::int32_t milliseconds) const;

private:
    void Claim(GpioMode mode, GpioEdge edge);
    std::string Directory() const;
    std::string ExportNumber() const;
    bool IsLocked() const;

    PinAddress m_address;
    GpioMode m_mode = INPUT_GPIO_MODE;
    GpioEdge m_edge = NO_GPIO_EDGE;
    bool m_valid = false;
};

// Both give back first what the pointers hold. Claims one line as an output; false if that fails.
bool ClaimOutput(PinAddress address, std::unique_ptr<GpioPin>& line);
// Claims all lines, then makes each an output and drives it low, in this order; false at the first that fails. A line
// that is claimed already counts: it is shared with the object that claimed it.
bool ClaimLowOutputs(std::span<const PinAddress> addresses, std::span<std::unique_ptr<GpioPin>> lines);
