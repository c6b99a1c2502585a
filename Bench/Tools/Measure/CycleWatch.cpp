#include "Bench/Tools/Measure/CycleWatch.h"

#include <cmath>

#include "Bench/Common/Text.h"
#include "Bench/Tools/Measure/ProcessView.h"

namespace Bench {

namespace {

// A reading comes every 250 ms. The load is measured in this part of it, which starts after the end of the reading.
constexpr int WindowMilliseconds = 200;
constexpr int EndOfActionMilliseconds = 20;
constexpr double MaxSilence = 0.3;        // seconds; after so long the step has no readings
constexpr double TracePollSeconds = 5.0;  // reading the trace delays the board
constexpr double CycleTimeout = 400.0;
// Once per cycle, before any other action: the converter's device is opened.
constexpr const char* FirstAction = "ioctl /dev/spidev32765.1 0x40016b01=";
constexpr int ValveChannel = 3;

// The valve opens at full power for a moment, which is a required busy wait.
bool IsBusyByDesign(const Board& board) {
    const PwmView valve = board.Pwm(ValveChannel);
    return valve.enabled && valve.duty == valve.period;
}

class Watch {
public:
    Watch(Fixture& fixture, const CycleSettings& settings, CyclesSeen& seen)
        : m_fixture(fixture), m_board(fixture.OnBoard()), m_settings(settings), m_seen(seen) {}

    bool Run(int cycles, std::string& error) {
        m_pumpAngle = m_board.Instrument().pumpAngle;
        m_board.ClearTrace();
        if (!m_fixture.Send(FrontEnd::Running)) {
            error = "the front end's link is cut";
            return false;
        }
        m_lastProgress = m_board.Seconds();
        while (m_seen.lengths.size() < static_cast<std::size_t>(cycles)) {
            if (m_board.Seconds() - m_lastProgress > CycleTimeout) {
                error = "no cycle comes to its end";
                return false;
            }
            MeasureWindow();
            ReadTrace();
        }
        return true;
    }

private:
    // One window after the next action, or now if none comes; it counts if nothing happened in it.
    void MeasureWindow() {
        const std::uint64_t actions = m_board.TraceCount();
        const std::size_t readings = m_board.CommandCount();
        m_board.WaitUntil([&] { return m_board.TraceCount() != actions; }, MaxSilence);
        SleepMilliseconds(EndOfActionMilliseconds);
        const bool sampled = m_board.CommandCount() != readings;
        const std::uint64_t before = m_board.TraceCount();
        const double start = m_board.Seconds();
        const Activity first = ActivityOf(m_fixture.Process());
        SleepMilliseconds(WindowMilliseconds);
        const Activity last = ActivityOf(m_fixture.Process());
        const double end = m_board.Seconds();
        if (m_board.TraceCount() != before || last.threads != first.threads || IsBusyByDesign(m_board)) {
            return;
        }
        IdleLoad& load = sampled ? m_seen.sampling : m_seen.waiting;
        load.seconds += end - start;
        load.switches += last.switches - first.switches;
        load.processorSeconds += static_cast<double>(last.processorTime - first.processorTime) / 1e9;
    }

    void ReadTrace() {
        if (m_board.Seconds() < m_nextRead) {
            return;
        }
        m_nextRead = m_board.Seconds() + TracePollSeconds;
        double start = m_start;
        int readings = 0;
        for (const TraceEntry& action : m_board.TraceWithTimes()) {
            if (action.seconds <= m_start) {
                continue;
            }
            if (action.text.rfind(ReadingAct, 0) == 0) {
                ++readings;
            } else if (action.text.rfind(FirstAction, 0) == 0) {
                if (start > 0.0) {
                    TakeCycle(action.seconds - start, readings);
                }
                start = action.seconds;
                readings = 0;
            }
        }
        m_start = start;
    }

    void TakeCycle(double seconds, int readings) {
        const double trials =
            static_cast<double>(readings - PrescribedReadings(m_settings, 0)) / ReadingsOfTrial(m_settings);
        CycleLength length;
        length.seconds = seconds;
        length.trials = static_cast<int>(std::lround(trials));
        const CycleWaits waits = PrescribedWaits(m_settings, m_pumpAngle, length.trials);
        length.prescribed = waits.milliseconds / 1000.0;
        m_pumpAngle = waits.pumpAngle;
        m_seen.lengths.push_back(length);
        m_lastProgress = m_board.Seconds();
    }

    Fixture& m_fixture;
    Board& m_board;
    const CycleSettings& m_settings;
    CyclesSeen& m_seen;
    double m_pumpAngle = 0.0;
    double m_start = 0.0;  // of the running cycle; 0: none yet
    double m_lastProgress = 0.0;
    double m_nextRead = 0.0;
};

}  // namespace

bool WatchCycles(Fixture& fixture, const CycleSettings& settings, int cycles, CyclesSeen& seen, std::string& error) {
    return Watch(fixture, settings, seen).Run(cycles, error);
}

}  // namespace Bench
