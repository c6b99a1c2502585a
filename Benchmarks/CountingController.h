// A controller that only counts its messages. WaitUntilReady returns once the thread has registered.
#pragma once

#include <pthread.h>

#include "Benchmarks/Countdown.h"
#include "Frameworks/Messaging/ThreadControl.h"

class CountingController : public ThreadControl {
public:
    CountingController(const char* name, Countdown& countdown, DataMessageType type = NO_DATA_MESSAGE)
        : m_countdown(countdown), m_type(type) {
        SetThreadName(name);
        CreateThread();
    }

    ~CountingController() override {
        Kill();
        pthread_join(GetThreadId(), nullptr);
    }

    bool DoRegistration() override { return m_type == NO_DATA_MESSAGE || RegisterForDataMessage(m_type); }

    bool Init() override {
        const bool result = ThreadControl::Init() && DoRegistration();
        m_ready.release();
        return result;
    }

    bool ProcessCommandMessage(CommandMessage* /*message*/) override { return Count(); }
    bool ProcessDataMessage(DataMessage* /*message*/) override { return Count(); }
    bool ProcessTimeOut() override { return true; }

    void WaitUntilReady() { m_ready.acquire(); }

private:
    bool Count() {
        m_countdown.Done();
        return true;
    }

    Countdown& m_countdown;
    const DataMessageType m_type;
    std::binary_semaphore m_ready{0};
};
