// Limits the wait for the remote indicator's acknowledgement: when it expires, SystemMonitor gets an
// AckTimerExpiredMessage. SystemMonitor's thread sets, starts and kills it.
#pragma once

#include "Frameworks/Threading/BaseTimer.h"

class RemoteIndicatorAckTimer final : public BaseTimer {
public:
    RemoteIndicatorAckTimer();
    RemoteIndicatorAckTimer(const RemoteIndicatorAckTimer&) = delete;
    RemoteIndicatorAckTimer& operator=(const RemoteIndicatorAckTimer&) = delete;
    ~RemoteIndicatorAckTimer() override { EndRuns(); }

private:
    bool TimerExpired() override;
};
