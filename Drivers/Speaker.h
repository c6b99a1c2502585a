// Plays a sound file over and over in a child process, and sets the mixer, both by the system's sound tools. The
// tools' exit status is ignored: an instrument without sound still measures. Texts go to the standard streams. One
// thread at a time.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

class Speaker {
public:
    Speaker() = default;
    Speaker(const Speaker&) = delete;
    Speaker& operator=(const Speaker&) = delete;
    virtual ~Speaker();  // stops the player

    // False only if no shell could be started.
    bool SetUnmuted(bool unmuted);
    // Percent, 0 to 100 each; anything else is refused and nothing is run.
    bool SetVolume(std::int32_t left, std::int32_t right);

    // Starts the player: the file, the gap in microseconds, the file again, until Stop. False while a player runs, or
    // if no process can be created.
    bool Play(const std::string& path, std::int32_t gap);
    // Takes up to five seconds. A clip that sounds at that moment plays to its end. Always true.
    bool Stop();

private:
    bool EndPlayer() const;

    pid_t m_player = -1;
};
