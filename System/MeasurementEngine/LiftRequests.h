// What the test link may ask of the board's lines: analog inputs, digital pins, PWM channels. Each operation answers
// with a new message of the request's class, and uses its own hardware objects, so it can collide with a cycle on
// the same lines. One thread at a time: the measurement engine's.
#pragma once

class AdcStatusMessage;
class TestDigitalInputPinsMessage;
class TestDigitalOutputPinsMessage;
class TestPWMMessage;

// The requested number of readings, one a sample interval. A reading that fails is 0 in the answer and is reported
// nowhere else. False for null, or for a message that is no request.
bool LIFTAnalogInput(const AdcStatusMessage* request);

// By the register, so the line may be in use: "0", "1", or "3" if it can't be read.
void LIFTDigitalInput(const TestDigitalInputPinsMessage& request);

// The pin is given back at once, so the level stays for as long as the kernel keeps it.
void LIFTDigitalOutput(const TestDigitalOutputPinsMessage& request);

// Takes a second. A channel that was asked for once stays claimed to the end of the process.
void LIFTPWM(const TestPWMMessage& request);
