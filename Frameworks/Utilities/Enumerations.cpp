#include "Frameworks/Utilities/Enumerations.h"

const StdString ControllerNames[ControllerCount] = {
    "DeviceMonitor", "LoggingControl", "MeasurementEngine", "MessagingControl",        "RemoteIndicatorControl",
    "SystemControl", "SystemMonitor",  "TestInterface",     "UserInterfaceDataControl"};

const StdString LogLevelNames[LogLevelCount] = {"EMERGENCY_LOG_LEVEL",     "ALERT_LOG_LEVEL",   "CRITICAL_LOG_LEVEL",
                                                "ERROR_LOG_LEVEL",         "WARNING_LOG_LEVEL", "NOTICE_LOG_LEVEL",
                                                "INFORMATIONAL_LOG_LEVEL", "DEBUG_LOG_LEVEL",   "RUMOR_LOG_LEVEL"};

const StdString ThreadStateNames[ThreadStateCount] = {"INITIALIZING_STATE", "IDLE_STATE", "RUNNING_STATE",
                                                      "SHUTDOWN_STATE",     "TEST_STATE", "RESETTING_SYSTEM_STATE",
                                                      "POST_EXITING_STATE"};

const StdString CommandNames[CommandCount] = {"MOVE_TO_IDLE", "MOVE_TO_RUNNING",    "MOVE_TO_SHUTDOWN",
                                              "MOVE_TO_TEST", "RESET_SYSTEM",       "KILLING_SYSTEM",
                                              "PRIME_SYSTEM", "COLLECT_MEASUREMENT"};

const StdString DataMessageNames[DataMessageCount] = {"ADC_STATUS_MESSAGE",
                                                      "DEVICE_ERROR_DATA_MESSAGE",
                                                      "LOGGING_DATA_MESSAGE",
                                                      "MEASUREMENT_DATA_MESSAGE",
                                                      "MEASUREMENT_STEP_DATA_MESSAGE",
                                                      "MEASUREMENT_STATUS_MESSAGE",
                                                      "TIMER_COMPLETION_DATA_MESSAGE",
                                                      "REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE",
                                                      "REMOTE_INDICATOR_CALCULATE_CABLE_LENGTH_DATA_MESSAGE",
                                                      "SYSTEM_ERROR_DATA_MESSAGE",
                                                      "TEST_COMMAND_DATA_MESSAGE",
                                                      "WATCHDOG_ERROR_DATA_MESSAGE",
                                                      "ACK_TIMER_EXPIRED_DATA_MESSAGE",
                                                      "TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE",
                                                      "TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE",
                                                      "TEST_PWM_DATA_MESSAGE",
                                                      "REMOTE_INDICATOR_TEST_MESSAGE",
                                                      "PERIODIC_HARDWARE_TEST_DATA_MESSAGE",
                                                      "REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE",
                                                      "TRANSFER_DATA_TO_SD_CARD_MESSAGE",
                                                      "USER_INTERFACE_DATA_MESSAGE",
                                                      "GUI_RESPONSE_DATA_MESSAGE"};
