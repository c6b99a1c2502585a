// The product's command line, from the outside.
#include <gtest/gtest.h>

#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/ProductProcess.h"
#include "Tests/Support/SampleConfiguration.h"

namespace {

class CommandLine : public BoardTest {
protected:
    // The product's text, without that of a sanitizer.
    struct Result {
        int status;
        std::string output;
        std::string errors;
    };

    Result Run(const std::vector<std::string>& arguments) {
        ProductProcess product(Folder(), true, arguments);
        const int status = product.Wait();
        return {status, product.Output(), product.Errors()};
    }
};

}  // namespace

TEST_F(CommandLine, version_prints_the_four_numbers) {
    const Result result = Run({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "0.2.1.19\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_TRUE(Board().Log().empty());
}

TEST_F(CommandLine, any_other_argument_does_nothing) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {""}, {"-version"}, {"--version", "&"}, {"&", "&"}, {"a", "b", "c"}}) {
        const Result result = Run(arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output + result.errors, "");
    }
    EXPECT_TRUE(Board().Log().empty());
    EXPECT_EQ(Board().TraceCount(), 0U);
}

TEST_F(CommandLine, nothing_or_a_lone_ampersand_runs_the_system) {
    SampleConfiguration().Set("LoggingLevel", "DEBUG_LOG_LEVEL").LayInto(Folder());
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{}, {"&"}}) {
        Board().ClearLog();
        ProductProcess product(Folder(), true, arguments);
        EXPECT_TRUE(Board().WaitUntil([&] { return !Board().Log().empty(); }));
        EXPECT_TRUE(product.IsRunning());
    }
}

TEST_F(CommandLine, without_settings_the_process_tries_again_until_they_are_there) {
    ProductProcess product(Folder(), true);
    EXPECT_TRUE(Board().WaitUntil([&] { return Board().CallCount("fopen") > 10; }));
    EXPECT_TRUE(product.IsRunning());
    EXPECT_TRUE(Board().Log().empty());
    SampleConfiguration().Set("LoggingLevel", "DEBUG_LOG_LEVEL").LayInto(Folder());
    EXPECT_TRUE(Board().WaitUntil([&] { return !Board().Log().empty(); }));
}
