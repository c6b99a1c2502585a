// The enumerations of the whole system, and their names in logs and settings. Any thread.
#pragma once

#include <cstdint>

#include "Frameworks/Utilities/StdString.h"

// The nine controllers; a value is an index of ControllerNames. A controller's name is also its thread name and its key
// in the router's name table.
enum ControllerType : std::int32_t {
    NO_CONTROLLER = -1,
    DEVICE_MONITOR = 0,
    LOGGING_CONTROL = 1,
    MEASUREMENT_ENGINE = 2,
    MESSAGING_CONTROL = 3,
    REMOTE_INDICATOR_CONTROL = 4,
    SYSTEM_CONTROL = 5,
    SYSTEM_MONITOR = 6,
    TEST_INTERFACE = 7,
    USER_INTERFACE_DATA_CONTROL = 8,
};

// Lower values are more severe; 0 to 7 are also the priorities of syslog.
enum LogLevel : std::int32_t {
    NO_LOG_LEVEL = -1,
    EMERGENCY_LOG_LEVEL = 0,
    ALERT_LOG_LEVEL = 1,
    CRITICAL_LOG_LEVEL = 2,
    ERROR_LOG_LEVEL = 3,
    WARNING_LOG_LEVEL = 4,
    NOTICE_LOG_LEVEL = 5,
    INFORMATIONAL_LOG_LEVEL = 6,
    DEBUG_LOG_LEVEL = 7,
    RUMOR_LOG_LEVEL = 8,
};

// A mode of the whole system, not of one thread; any command leaves any of them.
enum ThreadState : std::int32_t {
    INITIALIZING_STATE = 0,
    IDLE_STATE = 1,
    RUNNING_STATE = 2,
    SHUTDOWN_STATE = 3,
    TEST_STATE = 4,
    RESETTING_SYSTEM_STATE = 5,
    POST_EXITING_STATE = 6,
};

// Sent to all controllers, except KILLING_SYSTEM, which a thread sends to itself.
enum CommandType : std::int32_t {
    NO_COMMAND = -1,
    MOVE_TO_IDLE = 0,
    MOVE_TO_RUNNING = 1,
    MOVE_TO_SHUTDOWN = 2,
    MOVE_TO_TEST = 3,
    RESET_SYSTEM = 4,
    KILLING_SYSTEM = 5,
    PRIME_SYSTEM = 6,
    COLLECT_MEASUREMENT = 7,
};

// 1, 9 and 11 are reserved: LoggingControl counts them, no class has them.
enum DataMessageType : std::int32_t {
    NO_DATA_MESSAGE = -1,
    ADC_STATUS_MESSAGE = 0,
    DEVICE_ERROR_DATA_MESSAGE = 1,
    LOGGING_DATA_MESSAGE = 2,
    MEASUREMENT_DATA_MESSAGE = 3,
    MEASUREMENT_STEP_DATA_MESSAGE = 4,
    MEASUREMENT_STATUS_MESSAGE = 5,
    TIMER_COMPLETION_DATA_MESSAGE = 6,
    REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE = 7,
    REMOTE_INDICATOR_CALCULATE_CABLE_LENGTH_DATA_MESSAGE = 8,
    SYSTEM_ERROR_DATA_MESSAGE = 9,
    TEST_COMMAND_DATA_MESSAGE = 10,
    WATCHDOG_ERROR_DATA_MESSAGE = 11,
    ACK_TIMER_EXPIRED_DATA_MESSAGE = 12,
    TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE = 13,
    TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE = 14,
    TEST_PWM_DATA_MESSAGE = 15,
    REMOTE_INDICATOR_TEST_MESSAGE = 16,
    PERIODIC_HARDWARE_TEST_DATA_MESSAGE = 17,
    REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE = 18,
    TRANSFER_DATA_TO_SD_CARD_MESSAGE = 19,
    USER_INTERFACE_DATA_MESSAGE = 20,
    GUI_RESPONSE_DATA_MESSAGE = 21,
};

// Sizes of the enumerations and of the tables below.
inline constexpr int ControllerCount = 9;
inline constexpr int LogLevelCount = 9;
inline constexpr int ThreadStateCount = 7;
inline constexpr int CommandCount = 8;
inline constexpr int DataMessageCount = 22;

// Indexed by the enumerations above; initialized before main.
extern const StdString ControllerNames[ControllerCount];
extern const StdString LogLevelNames[LogLevelCount];
extern const StdString ThreadStateNames[ThreadStateCount];
extern const StdString CommandNames[CommandCount];
extern const StdString DataMessageNames[DataMessageCount];
