// The remote indicator in whole runs, as a person sees it: the water's color and the looping sound.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "Tests/Support/BenchRun.h"

namespace {

struct Water {
    const char* name;
    const char* chlorine;
    std::string indicator;  // its last line
};

const std::string Normal = "indicator analyzer blue water blue sound none";

class IndicatorRun : public testing::TestWithParam<Water> {
protected:
    // Two results: the indicator has the whole second cycle to follow the first.
    std::vector<std::string> Lines(const std::string& chlorine) {
        EXPECT_EQ(m_run.Run({"--cycles", "2", "--chlorine", chlorine, "--alert", "0.5", "--alarm", "0.8", "--speed",
                             "50", "--bench", m_folder / "bench"}),
                  0)
            << m_run.Out() << m_run.Err();
        std::istringstream output(m_run.Out());
        std::vector<std::string> lines;
        for (std::string line; std::getline(output, line);) {
            if (line.rfind("indicator ", 0) == 0) {
                lines.push_back(line);
            }
        }
        return lines;
    }

private:
    TemporaryFolder m_folder;
    BenchRun m_run;
};

}  // namespace

TEST_P(IndicatorRun, shows_the_waters_color_and_loops_its_sound) {
    const std::vector<std::string> lines = Lines(GetParam().chlorine);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), Normal);
    EXPECT_EQ(lines.back(),
              GetParam().indicator);  // on a busy machine the sound may follow the color in its own line
}

INSTANTIATE_TEST_SUITE_P(EachLevel, IndicatorRun,
                         testing::Values(Water{"alarm", "0.9", "indicator analyzer blue water red sound alarm.wav"},
                                         Water{"alert", "0.6", "indicator analyzer blue water amber sound alert.wav"},
                                         Water{"normal", "0.2", Normal}),
                         [](const auto& each) { return std::string(each.param.name); });
