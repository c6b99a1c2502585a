#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "Tests/Support/BoardFixture.h"

namespace {

std::string Read(const std::string& path) {
    std::string text;
    std::ifstream(path) >> text;
    return text;
}

bool Write(const std::string& path, const std::string& text) {
    std::ofstream file(path);
    file << text << std::flush;
    return file.good();
}

TEST_F(BoardTest, an_exported_pin_can_be_made_an_output_and_set_high) {
    ASSERT_TRUE(Write("/sys/class/gpio/export", "2"));
    ASSERT_TRUE(Write("/sys/class/gpio/pioA2/direction", "out"));
    ASSERT_TRUE(Write("/sys/class/gpio/pioA2/value", "1"));
    EXPECT_EQ(Read("/sys/class/gpio/pioA2/value"), "1");
    EXPECT_TRUE(Board().Pin(0, 2).level);
    const std::vector<std::string> expected{"/sys/class/gpio/export=2", "/sys/class/gpio/pioA2/direction=out",
                                            "/sys/class/gpio/pioA2/value=1"};
    EXPECT_EQ(Board().Trace(), expected);
}

}  // namespace
