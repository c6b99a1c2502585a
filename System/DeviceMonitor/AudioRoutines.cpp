#include "System/DeviceMonitor/AudioRoutines.h"

#include <unistd.h>

#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/Messages/RemoteIndicatorAudioControlMessage.h"

namespace {

struct AudioRoutine {
    AudioAction action;
    unsigned seconds;  // to sleep after sending
    const char* failure;
};

constexpr AudioRoutine TurnOff{STOP_AUDIO, 3, "DeviceMonitor::TurnOffAudio - Turning off audio failed"};
constexpr AudioRoutine Play{PLAY_AUDIO, 1, "DeviceMonitor::PlayAudio - Audio could not be started"};
constexpr AudioRoutine Restart{RESTART_AUDIO, 3, "DeviceMonitor::RestartAudio - Audio could not be restarted"};

bool Request(const AudioRoutine& routine, const StdString& fileName = StdString()) {
    auto message = TryMake<RemoteIndicatorAudioControlMessage>();
    if (message != nullptr) {
        message->SetAction(routine.action);
        message->SetFileName(fileName);
    }
    if (!MessageController::SendMessage(std::move(message), DEVICE_MONITOR)) {
        return ReportError(routine.failure, DEVICE_MONITOR);
    }
    sleep(routine.seconds);
    return true;
}

}  // namespace

bool TurnOffAudio() { return Request(TurnOff); }

bool PlayAudio(const StdString& fileName) { return Request(Play, fileName); }

bool RestartAudio() { return Request(Restart); }
