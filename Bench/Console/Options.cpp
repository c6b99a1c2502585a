#include "Bench/Console/Options.h"

#include <ctime>

#include "Bench/Board/Board.h"
#include "Bench/Common/Text.h"

namespace Bench {

namespace {

constexpr double MaxChlorine = 20.0;

constexpr char Purpose[] = "Runs the analyzer on a virtual board with water, reagent and light.";

constexpr char Notes[] =
    R"(Each result is one line:
  result INDEX chlorine VALUE sample VALUE absorbance VALUE dark COUNT
         reference COUNT reacted COUNT duty PERCENT
sample is the chlorine that the water really has. Each change of the remote
indicator is one line:
  indicator analyzer COLOR water COLOR sound FILE
COLOR is blue, amber, red, several of them joined by "+", all or off; FILE is
none in silence. Ctrl-C ends the run.

Exit status: 0 after N results; 1 if the analyzer ended or gave no result in
three times the time of a cycle; 2 for a wrong argument; 130 after Ctrl-C, 143
after SIGTERM. Front end and test station: 0 if every command was answered, 1 if
not, 2 for a wrong argument or command or a port in use.)";

// The configuration gets the level as it is written.
CommandLine::Take TakeLevel(std::string& level) {
    return [&level](const std::string& value) {
        double number = 0.0;
        level = value;
        return ReadNumber(value, 0.0, MaxChlorine, number);
    };
}

CommandLine::Take TakeFault(Options& options) {
    return [&options](const std::string& value) {
        if (value == "list") {
            options.listFaults = true;
            return true;
        }
        options.faults.push_back(value);
        return !value.empty() && value.find_first_of("=@") != 0;
    };
}

void AddBoardOptions(CommandLine& line, Options& options) {
    const std::string level = "a number from 0 to 20";
    line.AddNumber<std::uint64_t>("--cycles N", 1, 1000000, options.cycles, "stop after N results");
    line.AddNumber("--chlorine MG_PER_L", 0.0, MaxChlorine, options.chlorine, "chlorine in the water, 0 to 20 (0.60)");
    line.Add("--alert MG_PER_L", level, TakeLevel(options.alertLevel),
             "chlorine that makes the water's state alert,\n0 to 20 (AlertLevel of the configuration)");
    line.Add("--alarm MG_PER_L", level, TakeLevel(options.alarmLevel), "chlorine that makes it alarm (AlarmLevel)");
    line.AddNumber("--speed X", 0.1, 1000.0, options.speed, "simulated seconds per real second, 0.1 to 1000\n(20)");
    line.AddFlag("--exact", options.exact,
                 "as fast as the processor goes, without real time:\nthe same seed gives the same lines each time");
    const auto takeStart = [&options](const std::string& value) {
        options.start = ReadDate(value);
        return options.start.has_value();
    };
    line.Add(
        "--start \"DATE TIME\"", "a date as in \"2026-12-31 23:57:00\", from 1970 to 2037", takeStart,
        "initial time of the analyzer's clock, UTC, as in\n\"2026-12-31 23:57:00\" (now; with --exact 2026-01-01)");
    line.AddNumber<std::uint32_t>("--seed N", 0, 4294967295, options.seed,
                                  "seed of the noise, and with --exact of the order in\nwhich threads run (1)");
    const auto takeNoise = [&options](const std::string& value) {
        options.noise = value == "on";
        return options.noise || value == "off";
    };
    line.Add("--noise off", "on or off", takeNoise, "exact readings of the detector (on)");
    line.Add("--fault NAME[=VALUE][@SECONDS]", "NAME[=VALUE][@SECONDS], or list", TakeFault(options),
             "a fault from the start or from that simulated\nsecond on; may be repeated; list: all faults");
}

void AddFileOptions(CommandLine& line, Options& options) {
    line.AddText("--config FILE", "a file", options.config, "another configuration\n(configuration/analyzer.conf.xml)");
    line.AddText("--bench DIR", "a folder", options.bench,
                 "folder of the run (build/bench): emptied at the\nstart, kept after the end; DIR/card is the SD card");
    line.AddFlag("--log", options.log, "show the system log too");
    line.AddProgram(options.program);
}

void AddPeerOptions(CommandLine& line, Options& options) {
    line.AddFlag("--frontend", options.frontEnd, "instead of the analyzer, run the front end that it\nconnects to");
    line.AddFlag("--test-server", options.testServer, "likewise the test station");
    line.AddNumber<std::uint16_t>("--frontend-port N", 1, 65535, options.frontEndPort,
                                  "port of the front end, here and in a run (3111)");
    line.AddNumber<std::uint16_t>("--test-server-port N", 1, 65535, options.testServerPort,
                                  "port of the test station (TestServerPortNumber of\nthe configuration)");
    line.AddText("--script FILE", "a file", options.script,
                 "commands for the front end or the test station\n(standard input)");
    line.AddNumber("--wait SECONDS", 0.0, 1000000.0, options.wait,
                   "how long they wait for the analyzer and for an\nanswer (30)");
}

std::string CheckOptions(const Options& options) {
    if (options.frontEnd && options.testServer) {
        return "--frontend: not together with --test-server";
    }
    if (!options.script.empty() && !options.frontEnd && !options.testServer) {
        return "--script: only with --frontend or --test-server";
    }
    if (options.exact && (options.frontEnd || options.testServer || options.frontEndPort || options.testServerPort)) {
        return "--exact: not together with a front end or a test station, which need real time";
    }
    if (options.exact && options.speed) {
        return "--exact: not together with --speed";
    }
    for (const std::string& fault : options.faults) {
        std::string reason;
        if (!Board::CheckFault(fault, reason)) {
            return Format("--fault %s: %s (see --fault list)", fault.c_str(), reason.c_str());
        }
    }
    return "";
}

}  // namespace

CommandLine RunCommandLine(Options& options) {
    CommandLine line("run", Purpose, Notes);
    AddBoardOptions(line, options);
    AddFileOptions(line, options);
    AddPeerOptions(line, options);
    line.AddCheck([&options] { return CheckOptions(options); });
    return line;
}

std::optional<std::int64_t> ReadDate(const std::string& text) {
    constexpr const char* Form = "%Y-%m-%d %H:%M:%S";
    std::tm date{};
    const char* end = strptime(text.c_str(), Form, &date);
    if (end == nullptr || *end != '\0' || date.tm_year < 70 || date.tm_year > 137) {
        return std::nullopt;
    }
    const std::int64_t seconds = timegm(&date);
    // Only a date of the calendar, in full length, comes back as it was.
    char back[32];
    std::strftime(back, sizeof back, Form, &date);
    return text == back ? std::optional(seconds) : std::nullopt;
}

}  // namespace Bench
