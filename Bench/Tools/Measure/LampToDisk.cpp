#include "Bench/Tools/Measure/LampToDisk.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>

#include "Bench/Common/Text.h"
#include "Bench/Tools/Measure/CycleWatch.h"
#include "Bench/Tools/Measure/RoundTrip.h"
#include "System/Messages/StepType.h"

namespace Bench {

namespace {

constexpr double RecordTimeout = 60.0;
constexpr int PollMilliseconds = 100;
constexpr const char* CardAction = "card ";
constexpr const char* RecordFile = "_Measurement.csv ";

bool IsRecord(const std::string& text) {
    return text.rfind(CardAction, 0) == 0 && text.find(RecordFile) != std::string::npos;
}

// From the newest reading before a record to that record.
std::optional<RecordTime> LastReadingToRecord(const Board& board) {
    const std::vector<TraceEntry> trace = board.TraceWithTimes();
    const auto record =
        std::find_if(trace.rbegin(), trace.rend(), [](const auto& action) { return IsRecord(action.text); });
    const auto reading =
        std::find_if(record, trace.rend(), [](const auto& action) { return action.text.rfind(ReadingAct, 0) == 0; });
    if (reading == trace.rend()) {
        return std::nullopt;
    }
    return RecordTime{record->seconds - reading->seconds, record->deviceSeconds - reading->deviceSeconds};
}

}  // namespace

SettingsFile WithShortSteps(SettingsFile settings) {
    static const std::map<std::string, std::string> values = {
        {"Duration", "250"},          {"Motor Speed", "0"},        {"Stirring On", "false"},
        {"Sample Valve On", "false"}, {"LEDSettleTime", "10"},     {"DarkHighRejectNum", "0"},
        {"DarkLowRejectNum", "0"},    {"RefHighRejectNum", "0"},   {"RefLowRejectNum", "0"},
        {"SampleHighRejectNum", "0"}, {"SampleLowRejectNum", "0"},
    };
    const std::string lastStep = GetStepInternalName(static_cast<StepType>(StepCount - 1)).Text();
    settings.ChangeEach([&lastStep](const SettingsItem& item) {
        const auto value = item.step == lastStep ? values.end() : values.find(item.name);
        return value == values.end() ? std::nullopt : std::optional(value->second);
    });
    return settings;
}

std::uintmax_t RecordBytes(const Board& board) {
    std::uintmax_t bytes = 0;
    std::error_code gone;
    for (const auto& file : std::filesystem::directory_iterator(board.Folder() + "/card", gone)) {
        const std::string name = file.path().filename().string() + " ";
        bytes += name.find(RecordFile) != std::string::npos ? file.file_size(gone) : 0;
    }
    return bytes;
}

RecordTimes LampToDisk(Fixture& fixture, int cycles, std::string& error) {
    Board& board = fixture.OnBoard();
    RecordTimes times;
    RoundTrip roundTrip;
    if (!fixture.Send(FrontEnd::Running)) {
        error = "the front end's link is cut";
        return times;
    }
    for (std::uintmax_t records = RecordBytes(board); times.records.size() < static_cast<std::size_t>(cycles);) {
        const double start = board.Seconds();
        while (RecordBytes(board) == records && board.Seconds() - start < RecordTimeout) {
            SleepMilliseconds(PollMilliseconds);
            times.roundTrips.push_back(roundTrip.Once());
        }
        const std::optional<RecordTime> passed = LastReadingToRecord(board);
        if (RecordBytes(board) == records || !passed) {
            error = "no record of a cycle comes to the card";
            return {};
        }
        times.records.push_back(*passed);
        records = RecordBytes(board);
    }
    return times;
}

}  // namespace Bench
