// Whole cycles of the system in this process, where the sanitizers see every thread.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "Frameworks/Utilities/Version.h"
#include "System/Messages/StepType.h"
#include "Tests/Support/ReadFile.h"
#include "Tests/Support/SystemFixture.h"

namespace {

class SystemCycle : public SystemOnBoard {
protected:
    SystemCycle() : SystemOnBoard(50.0) {
        configuration.Set("AutoStartMeasurement", "true").Set("AutoStartDelay", "1000");
    }

    void SetChlorine(double milligramsPerLitre) {
        Bench::InstrumentSettings settings = Board().Settings();
        settings.chlorine = milligramsPerLitre;
        Board().SetSettings(settings);
    }

    // Each status text has its own line in the system log.
    void WaitForStatus(const std::string& text, long count = 1) { WaitFor(text, count); }

    std::string CardFile(const std::string& name) const {
        for (const auto& entry : std::filesystem::directory_iterator(Folder() + "/card")) {
            if (entry.path().string().ends_with("_" + name)) {
                return ReadFile(entry.path());
            }
        }
        return {};
    }

    std::vector<std::string> Rows(const std::string& name) const {
        std::istringstream stream(CardFile(name));
        std::vector<std::string> rows;
        for (std::string line; std::getline(stream, line);) {
            EXPECT_TRUE(line.ends_with("\r")) << line;
            rows.push_back(line.substr(0, line.size() - 1));
        }
        return rows;
    }

    static std::string Field(const std::string& row, int index) {
        std::istringstream stream(row);
        std::string field;
        for (int count = 0; count <= index; ++count) {
            std::getline(stream, field, ',');
        }
        return field;
    }

    void WaitForResults(std::size_t count) {
        EXPECT_TRUE(Board().WaitUntil([&] { return Rows("Measurement.csv").size() >= count + 1; }, 200.0))
            << Rows("Measurement.csv").size();
    }
};

constexpr int ChlorineColumn = 3;
constexpr int StatusColumn = 2;

}  // namespace

TEST_F(SystemCycle, from_power_up_the_second_result_is_the_samples_chlorine) {
    SetChlorine(0.60);
    Start();
    WaitForResults(2);
    const std::vector<std::string> rows = Rows("Measurement.csv");
    EXPECT_EQ(rows[0],
              "Text Date / Time,Xcel Time,Absorbance,Chlorine,Dark Count,Reference Count,Sample Count,"
              "Measurement Index,Seconds,Nano Seconds,Version (" +
                  GetVersionText().Text() + ")");
    EXPECT_NEAR(std::stod(Field(rows[2], ChlorineColumn)), 0.60, 0.02);
    EXPECT_EQ(Field(rows[1], 7), "1");
    EXPECT_EQ(Field(rows[2], 7), "2");

    const std::vector<std::string> status = Rows("Status.csv");
    std::size_t row = 1;
    for (int step = 0; step < StepCount; ++step, ++row) {
        const std::string text = "Executing " + GetStepDisplayName(static_cast<StepType>(step)).Text() + " Step";
        if (Field(status[row], StatusColumn).rfind("LED Adjustment Results", 0) == 0) {
            ++row;
        }
        EXPECT_EQ(Field(status[row], StatusColumn), text);
    }
    EXPECT_EQ(Field(status[row], StatusColumn), "Waiting for Next Measurement Initiation");
    EXPECT_EQ(Field(status[row + 1], StatusColumn).rfind("End of Measurement Cycle: LED DutyCycle = ", 0), 0U);
    EXPECT_GT(Rows("MeasurementStep.csv").size(), 200U);
}

TEST_F(SystemCycle, an_abort_ends_it_without_a_result) {
    Start();
    WaitForStatus("Executing Sample Flush & Delivery Step");
    Board().ClearLog();
    Send(MOVE_TO_IDLE);
    WaitForStatus("Aborted Measurement Cycle");
    WaitFor("Changing to IDLE_STATE State for - MeasurementEngine");
    EXPECT_EQ(CountOf("Executing Sanity Check Step"), 0);
    EXPECT_EQ(CardFile("Measurement.csv"), "");
}

TEST_F(SystemCycle, a_reset_in_the_middle_ends_it_and_the_next_generation_measures) {
    Start();
    WaitForStatus("Executing Sample Flush & Delivery Step");
    Reset();
    Start();
    WaitForResults(1);
    EXPECT_EQ(Field(Rows("Measurement.csv")[1], 7), "1");
}

TEST_F(SystemCycle, a_pulled_card_drops_records_and_its_return_continues_the_file) {
    Start();
    WaitForStatus("Executing Dark Count Measurement Step");
    Board().PullCard();
    WaitForStatus("Executing Sample Settling Time Step");
    Board().InsertCard();
    WaitForResults(1);
    std::vector<std::string> texts;
    for (const std::string& row : Rows("Status.csv")) {
        texts.push_back(Field(row, StatusColumn));
    }
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Status Message"), 1);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Executing Sample Flush & Delivery Step"), 0);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Executing Sanity Check Step"), 1);
}
