// Writes the sounds of the remote indicator into a folder: "make-clips FOLDER". Whole numbers alone, so that the bytes
// are the same on every machine.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

namespace {

constexpr std::int64_t Rate = 16000;         // samples a second
constexpr std::int64_t Loudness = 24000;     // of 32767
constexpr std::int64_t FadeSamples = 320;    // 20 ms at each end of a tone, so that nothing clicks
constexpr std::int64_t TurnSteps = 1 << 16;  // a whole oscillation

struct Tone {
    int hertz;  // 0: a pause
    int milliseconds;
};

// Three seconds, so that a sound that has just been asked for still plays when it is looked for two seconds later.
constexpr std::array<Tone, 6> Alert = {{{660, 400}, {0, 600}, {660, 400}, {0, 600}, {660, 400}, {0, 600}}};
constexpr std::array<Tone, 8> Alarm = {
    {{960, 250}, {720, 250}, {960, 250}, {720, 250}, {960, 250}, {720, 250}, {960, 250}, {720, 250}}};

// The sine of a step, as a parabola for each half of the oscillation: -Loudness to Loudness.
std::int64_t Oscillation(std::int64_t step) {
    constexpr std::int64_t Half = TurnSteps / 2;
    const std::int64_t inHalf = step % Half;
    const std::int64_t height = 4 * Loudness * inHalf / Half * (Half - inHalf) / Half;
    return step % TurnSteps < Half ? height : -height;
}

void AppendNumber(std::string& bytes, std::uint32_t number, int count) {
    for (int i = 0; i < count; ++i) {
        bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
    }
}

void AppendTone(std::string& samples, const Tone& tone) {
    const std::int64_t count = Rate * tone.milliseconds / 1000;
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t fade = std::min({FadeSamples, i, count - i});
        const std::int64_t step = i * tone.hertz * TurnSteps / Rate;
        const std::int64_t sample = tone.hertz == 0 ? 0 : Oscillation(step) * fade / FadeSamples;
        AppendNumber(samples, static_cast<std::uint32_t>(sample), 2);
    }
}

// A RIFF file of 16-bit samples, one channel.
template <typename Tones>
std::string Clip(const Tones& tones) {
    std::string samples;
    for (const Tone& tone : tones) {
        AppendTone(samples, tone);
    }
    const auto size = static_cast<std::uint32_t>(samples.size());
    constexpr auto rate = static_cast<std::uint32_t>(Rate);
    std::string clip = "RIFF";
    AppendNumber(clip, 36 + size, 4);
    clip += "WAVEfmt ";
    AppendNumber(clip, 16, 4);
    AppendNumber(clip, 1, 2);  // PCM
    AppendNumber(clip, 1, 2);
    AppendNumber(clip, rate, 4);
    AppendNumber(clip, rate * 2, 4);
    AppendNumber(clip, 2, 2);
    AppendNumber(clip, 16, 2);
    clip += "data";
    AppendNumber(clip, size, 4);
    return clip + samples;
}

bool Write(const std::string& path, const std::string& clip) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << clip << std::flush)) {
        std::fprintf(stderr, "make-clips: can't write %s\n", path.c_str());
        return false;
    }
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: make-clips FOLDER\n", stderr);
        return 2;
    }
    const std::string folder = arguments[1];
    return Write(folder + "/alert.wav", Clip(Alert)) && Write(folder + "/alarm.wav", Clip(Alarm)) ? 0 : 1;
}
