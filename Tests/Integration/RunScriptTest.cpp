// Whole runs as a person starts them: the unmodified analyzer on the bench, its result lines and the files on the card.
#include <gtest/gtest.h>

#include <algorithm>

#include "System/Messages/StepType.h"
#include "Tests/Support/BenchRun.h"
#include "Tests/Support/SampleConfiguration.h"

namespace {

// Values are right at four times this speed, too; the margin is for a busy machine.
constexpr const char* Speed = "50";
constexpr double Accuracy = 0.02;  // mg/l

class WholeRun : public testing::Test {
protected:
    void Run(std::vector<std::string> arguments, int expected = 0) {
        const std::vector<std::string> common = {"--speed", Speed, "--bench", m_folder / "bench"};
        arguments.insert(arguments.end(), common.begin(), common.end());
        EXPECT_EQ(m_run.Run(arguments), expected) << m_run.Out() << m_run.Err();
    }

    // The words of each result line.
    std::vector<std::vector<std::string>> Results() const {
        std::vector<std::vector<std::string>> results;
        std::istringstream lines(m_run.Out());
        for (std::string line; std::getline(lines, line);) {
            std::istringstream words(line);
            std::vector<std::string> list;
            for (std::string word; words >> word;) {
                list.push_back(word);
            }
            if (!list.empty() && list[0] == "result") {
                results.push_back(list);
            }
        }
        return results;
    }

    void ExpectChlorineFromTheSecondOn(std::size_t count, double chlorine) const {
        const auto results = Results();
        ASSERT_EQ(results.size(), count) << m_run.Out();
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_EQ(results[i].size(), 16U);
            EXPECT_EQ(results[i][1], std::to_string(i + 1));
            EXPECT_NEAR(std::stod(results[i][5]), chlorine, 1e-4);
            if (i > 0) {
                EXPECT_NEAR(std::stod(results[i][3]), chlorine, Accuracy);
            }
        }
    }

    std::vector<std::string> CardFiles() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder / "bench/card")) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    std::vector<std::string> Rows(const std::string& name) const {
        std::istringstream text(ReadFile(m_folder / ("bench/card/" + name)));
        std::vector<std::string> rows;
        for (std::string row; std::getline(text, row);) {
            rows.push_back(row);
        }
        return rows;
    }

    // The texts of a status file without its column line.
    std::vector<std::string> StatusTexts(const std::string& name) const {
        std::vector<std::string> texts;
        for (const std::string& row : Rows(name)) {
            std::istringstream fields(row);
            std::string field;
            for (int i = 0; i < 3; ++i) {
                std::getline(fields, field, ',');
            }
            texts.push_back(field);
        }
        EXPECT_FALSE(texts.empty());
        EXPECT_EQ(texts.empty() ? "" : texts[0], "Status Message") << name;
        texts.erase(texts.begin(), texts.begin() + (texts.empty() ? 0 : 1));
        return texts;
    }

    // Seconds of the records since the start of the run.
    std::vector<long> StatusTimes(const std::string& name, long start) const {
        std::vector<long> times;
        for (const std::string& row : Rows(name)) {
            const std::size_t last = row.rfind(',');
            const std::size_t seconds = row.rfind(',', last - 1);
            times.push_back(std::strtol(row.c_str() + seconds + 1, nullptr, 10) - start);
        }
        EXPECT_FALSE(times.empty());
        times.erase(times.begin(), times.begin() + (times.empty() ? 0 : 1));  // the column line
        return times;
    }

    static std::vector<std::string> StepTextsOf(int cycles) {
        std::vector<std::string> texts;
        for (int i = 0; i < cycles * StepCount; ++i) {
            texts.push_back("Executing " + GetStepDisplayName(static_cast<StepType>(i % StepCount)).Text() + " Step");
        }
        return texts;
    }

    TemporaryFolder m_folder;
    BenchRun m_run;
};

std::vector<std::string> OnlySteps(const std::vector<std::string>& texts) {
    std::vector<std::string> steps;
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(steps),
                 [](const std::string& text) { return text.rfind("Executing ", 0) == 0; });
    return steps;
}

class WholeRunOfSample : public WholeRun, public testing::WithParamInterface<const char*> {};

}  // namespace

TEST_P(WholeRunOfSample, results_are_the_chlorine_of_the_water) {
    Run({"--cycles", "3", "--chlorine", GetParam()});
    ExpectChlorineFromTheSecondOn(3, std::stod(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Samples, WholeRunOfSample, testing::Values("0.10", "0.35", "0.60", "0.95"));

TEST_F(WholeRun, another_calibration_on_both_sides_gives_the_same_chlorine) {
    WriteFile(m_folder / "c.xml", SampleConfiguration().Set("ColorimeterCellConstant", "1.3").Text());
    Run({"--cycles", "2", "--chlorine", "0.35", "--config", m_folder / "c.xml"});
    ExpectChlorineFromTheSecondOn(2, 0.35);
    EXPECT_NEAR(std::stod(Results()[1][7]), 0.35 / 1.3, 0.015);
}

TEST_F(WholeRun, turn_of_the_year_begins_new_files_and_loses_no_step) {
    Run({"--cycles", "3", "--start", "2026-12-31 23:57:00"});
    EXPECT_EQ(CardFiles(), (std::vector<std::string>{"2026-12-31_MeasurementStep.csv", "2026-12-31_Status.csv",
                                                     "2027-01-01_Measurement.csv", "2027-01-01_MeasurementStep.csv",
                                                     "2027-01-01_Status.csv"}));
    std::vector<std::string> steps = OnlySteps(StatusTexts("2026-12-31_Status.csv"));
    EXPECT_FALSE(steps.empty());
    const std::vector<std::string> later = OnlySteps(StatusTexts("2027-01-01_Status.csv"));
    steps.insert(steps.end(), later.begin(), later.end());
    ASSERT_GE(steps.size(), 3U * StepCount);
    steps.resize(3U * StepCount);  // the fourth cycle may have begun
    EXPECT_EQ(steps, StepTextsOf(3));
    EXPECT_EQ(Rows("2027-01-01_Measurement.csv").size(), 4U);
}

TEST_F(WholeRun, pulled_card_misses_records_and_continues_its_file) {
    Run({"--cycles", "3", "--start", "2026-11-20 12:00:00", "--fault", "card-out@330", "--fault", "card-in@370"});
    ExpectChlorineFromTheSecondOn(3, 0.60);
    const std::vector<long> times = StatusTimes("2026-11-20_Status.csv", 1795176000);
    const auto count = [&times](long from, long to) {
        return std::count_if(times.begin(), times.end(), [from, to](long time) { return time >= from && time < to; });
    };
    EXPECT_GT(count(0, 330), 0);
    EXPECT_EQ(count(331, 369), 0);
    EXPECT_GT(count(371, 1000), 20);
    EXPECT_EQ(CardFiles().size(), 3U);
}

TEST_F(WholeRun, missing_card_ends_the_run_with_the_reason) {
    Run({"--cycles", "1", "--fault", "card-out"}, 1);
    EXPECT_EQ(m_run.Err().rfind("run: no result in ", 0), 0U) << m_run.Err();
    EXPECT_TRUE(m_run.Err().ends_with(" of simulated time, and the card with its records is out\n")) << m_run.Err();
}

TEST_F(WholeRun, dead_led_gives_no_chlorine_and_full_duty) {
    Run({"--cycles", "1", "--fault", "led-dead"});
    ASSERT_EQ(Results().size(), 1U);
    EXPECT_NEAR(std::stod(Results()[0][3]), 0.0, 1e-9);
    EXPECT_EQ(Results()[0][15], "100.00");
}

TEST_F(WholeRun, dry_reagent_makes_the_value_fall_towards_zero) {
    Run({"--cycles", "3", "--fault", "reagent-empty@210"});
    const auto results = Results();
    ASSERT_EQ(results.size(), 3U);
    EXPECT_NEAR(std::stod(results[0][3]), 0.60, Accuracy);
    EXPECT_LT(std::stod(results[2][3]), 0.45);
}

TEST_F(WholeRun, stopped_flow_leaves_the_old_water) {
    Run({"--cycles", "2", "--fault", "flow-stopped@210"});
    ASSERT_EQ(Results().size(), 2U);
    EXPECT_NEAR(std::stod(Results()[0][3]), 0.60, Accuracy);
    EXPECT_NEAR(std::stod(Results()[1][3]), 0.0, 0.05);
}
