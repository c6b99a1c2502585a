// What the sound of the remote indicator must do while the device monitor tests the audio amplifier and the motors.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

enum AudioAction : std::int32_t {
    STOP_AUDIO = 0,
    PLAY_AUDIO = 1,     // the named file
    RESTART_AUDIO = 2,  // the sound of the current colors
};

class RemoteIndicatorAudioControlMessage
    : public DataMessageOf<RemoteIndicatorAudioControlMessage, REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE> {
public:
    // An AudioAction.
    std::int32_t GetAction() const { return m_action; }
    void SetAction(std::int32_t action) { m_action = action; }

    StdString GetFileName() const { return m_fileName; }
    void SetFileName(const StdString& fileName) { m_fileName = fileName; }

private:
    std::int32_t m_action = 0;
    StdString m_fileName;
};
