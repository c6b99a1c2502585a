// What the remote indicator's sound is to do while the device monitor tests the audio amplifier and the motors.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class RemoteIndicatorAudioControlMessage
    : public DataMessageOf<RemoteIndicatorAudioControlMessage, REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE> {
public:
    // 0 stop, 1 play the named file, 2 restart what was playing.
    std::int32_t GetAction() const { return m_action; }
    void SetAction(std::int32_t action) { m_action = action; }

    StdString GetFileName() const { return m_fileName; }
    void SetFileName(const StdString& fileName) { m_fileName = fileName; }

private:
    std::int32_t m_action = 0;
    StdString m_fileName;
};
