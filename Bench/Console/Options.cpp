#include "Bench/Console/Options.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace Bench {

namespace {

constexpr std::uint64_t MaximalCycles = 1000000;
constexpr double MaximalChlorine = 20.0;
constexpr double MinimalSpeed = 0.1;
constexpr double MaximalSpeed = 1000.0;
constexpr std::uint64_t MaximalSeed = 0xFFFFFFFF;
constexpr std::uint64_t MaximalPort = 0xFFFF;
constexpr double MaximalWait = 1000000.0;

bool ReadWhole(const std::string& text, std::uint64_t highest, std::uint64_t& value) {
    if (text.empty() || text.size() > 12 || text.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    value = std::strtoull(text.c_str(), nullptr, 10);
    return value <= highest;
}

bool ReadNumber(const std::string& text, double lowest, double highest, double& value) {
    if (text.empty() || text.find_first_not_of("0123456789.") != std::string::npos) {
        return false;
    }
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return *end == '\0' && value >= lowest && value <= highest;
}

// Each takes the value of its option; false where it is not one.
bool TakeCycles(Options& options, const std::string& value) {
    std::uint64_t cycles = 0;
    if (!ReadWhole(value, MaximalCycles, cycles) || cycles == 0) {
        return false;
    }
    options.cycles = cycles;
    return true;
}

bool TakeChlorine(Options& options, const std::string& value) {
    return ReadNumber(value, 0.0, MaximalChlorine, options.chlorine);
}

bool TakeLevel(std::string& level, const std::string& value) {
    double number = 0.0;
    level = value;
    return ReadNumber(value, 0.0, MaximalChlorine, number);
}

bool TakeAlert(Options& options, const std::string& value) { return TakeLevel(options.alertLevel, value); }
bool TakeAlarm(Options& options, const std::string& value) { return TakeLevel(options.alarmLevel, value); }

bool TakeSpeed(Options& options, const std::string& value) {
    return ReadNumber(value, MinimalSpeed, MaximalSpeed, options.speed);
}

bool TakeStart(Options& options, const std::string& value) {
    options.start = ReadDate(value);
    return options.start.has_value();
}

bool TakeSeed(Options& options, const std::string& value) {
    std::uint64_t seed = 0;
    if (!ReadWhole(value, MaximalSeed, seed)) {
        return false;
    }
    options.seed = static_cast<std::uint32_t>(seed);
    return true;
}

bool TakeNoise(Options& options, const std::string& value) {
    options.noise = value == "on";
    return options.noise || value == "off";
}

bool TakeConfig(Options& options, const std::string& value) {
    options.config = value;
    return !value.empty();
}

bool TakeBench(Options& options, const std::string& value) {
    options.bench = value;
    return !value.empty();
}

bool TakeProgram(Options& options, const std::string& value) {
    options.program = value;
    return !value.empty();
}

bool TakeFault(Options& options, const std::string& value) {
    if (value == "list") {
        options.listFaults = true;
        return true;
    }
    options.faults.push_back(value);
    return !value.empty() && value.find_first_of("=@") != 0;
}

bool TakePort(std::optional<std::uint16_t>& port, const std::string& value) {
    std::uint64_t number = 0;
    if (!ReadWhole(value, MaximalPort, number) || number == 0) {
        return false;
    }
    port = static_cast<std::uint16_t>(number);
    return true;
}

bool TakeFrontEndPort(Options& options, const std::string& value) { return TakePort(options.frontEndPort, value); }

bool TakeTestServerPort(Options& options, const std::string& value) { return TakePort(options.testServerPort, value); }

bool TakeScript(Options& options, const std::string& value) {
    options.script = value;
    return !value.empty();
}

bool TakeWait(Options& options, const std::string& value) { return ReadNumber(value, 0.0, MaximalWait, options.wait); }

struct ValueOption {
    const char* name;
    bool (*take)(Options& options, const std::string& value);
    const char* wants;
};

constexpr ValueOption ValueOptions[] = {
    {"--cycles", TakeCycles, "a whole number from 1 to 1000000"},
    {"--chlorine", TakeChlorine, "mg/l, from 0 to 20"},
    {"--alert", TakeAlert, "mg/l, from 0 to 20"},
    {"--alarm", TakeAlarm, "mg/l, from 0 to 20"},
    {"--speed", TakeSpeed, "a number from 0.1 to 1000"},
    {"--start", TakeStart, "a date as in \"2026-12-31 23:57:00\", from 1970 to 2037"},
    {"--seed", TakeSeed, "a whole number from 0 to 4294967295"},
    {"--noise", TakeNoise, "on or off"},
    {"--config", TakeConfig, "a file"},
    {"--bench", TakeBench, "a folder"},
    {"--program", TakeProgram, "a file"},
    {"--fault", TakeFault, "NAME[=VALUE][@SECONDS], or list"},
    {"--frontend-port", TakeFrontEndPort, "a port from 1 to 65535"},
    {"--test-server-port", TakeTestServerPort, "a port from 1 to 65535"},
    {"--script", TakeScript, "a file"},
    {"--wait", TakeWait, "seconds, from 0 to 1000000"},
};

const ValueOption* FindValueOption(const std::string& name) {
    for (const ValueOption& option : ValueOptions) {
        if (name == option.name) {
            return &option;
        }
    }
    return nullptr;
}

std::string Refusal(const ValueOption& option, const std::string& value) {
    return std::string(option.name) + " does not take \"" + value + "\", but " + option.wants;
}

bool TakeFlag(Options& options, const std::string& argument) {
    if (argument == "--log") {
        options.log = true;
    } else if (argument == "--help" || argument == "-h") {
        options.help = true;
    } else if (argument == "--frontend") {
        options.frontEnd = true;
    } else if (argument == "--test-server") {
        options.testServer = true;
    } else {
        return false;
    }
    return true;
}

}  // namespace

bool ReadOptions(const std::vector<std::string>& arguments, Options& options, std::string& error) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (TakeFlag(options, arguments[i])) {
            continue;
        }
        const std::size_t equals = arguments[i].find('=');
        const std::string name = arguments[i].substr(0, equals);
        const ValueOption* option = FindValueOption(name);
        if (option == nullptr) {
            error = "unknown argument \"" + arguments[i] + "\"; --help lists what there is";
            return false;
        }
        if (equals == std::string::npos && i + 1 == arguments.size()) {
            error = name + " needs a value: " + option->wants;
            return false;
        }
        const std::string value = equals == std::string::npos ? arguments[++i] : arguments[i].substr(equals + 1);
        if (!option->take(options, value)) {
            error = Refusal(*option, value);
            return false;
        }
    }
    if (options.frontEnd && options.testServer) {
        error = "--frontend and --test-server are two programs";
        return false;
    }
    if (!options.script.empty() && !options.frontEnd && !options.testServer) {
        error = "--script goes with --frontend or --test-server";
        return false;
    }
    return true;
}

std::optional<std::int64_t> ReadDate(const std::string& text) {
    constexpr const char* Form = "dddd-dd-dd dd:dd:dd";
    if (text.size() != std::strlen(Form)) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (Form[i] == 'd' ? !digit : text[i] != Form[i]) {
            return std::nullopt;
        }
    }
    const auto number = [&text](std::size_t at, std::size_t length) { return std::stoi(text.substr(at, length)); };
    std::tm date{};
    date.tm_year = number(0, 4) - 1900;
    date.tm_mon = number(5, 2) - 1;
    date.tm_mday = number(8, 2);
    date.tm_hour = number(11, 2);
    date.tm_min = number(14, 2);
    date.tm_sec = number(17, 2);
    const std::tm asked = date;
    const std::int64_t seconds = timegm(&date);
    const bool inCalendar = date.tm_mon == asked.tm_mon && date.tm_mday == asked.tm_mday &&
                            date.tm_hour == asked.tm_hour && date.tm_min == asked.tm_min && date.tm_sec == asked.tm_sec;
    if (!inCalendar || asked.tm_year < 70 || asked.tm_year > 137) {
        return std::nullopt;
    }
    return seconds;
}

std::string HelpText() {
    return
        R"(./run puts the analyzer on a virtual board with water, reagent and light, and shows what it does.

  --cycles N               stop after N results
  --chlorine MG_PER_L      chlorine in the water, 0 to 20 (0.60)
  --alert MG_PER_L         chlorine from which the water is in alert, 0 to 20 (AlertLevel of the configuration)
  --alarm MG_PER_L         likewise in alarm (AlarmLevel)
  --speed X                simulated seconds for one real second, 0.1 to 1000 (20)
  --start "DATE TIME"      where the analyzer's clock begins, as in "2026-12-31 23:57:00", UTC (now)
  --seed N                 of the noise (1)
  --noise off              every reading of the detector is exact (on)
  --config FILE            another configuration (configuration/analyzer.conf.xml)
  --bench DIR              where the run's files lie (build/bench); kept after the run, reset at the next;
                           the SD card's files lie in DIR/card
  --fault NAME[=VALUE][@SECONDS]
                           a fault, at once or after so many simulated seconds; may be repeated
  --fault list             all faults by name
  --log                    show the system log too
  --program FILE           put another program on the board
  --frontend               be the front end that the analyzer connects to, instead of running it
  --test-server            be the test station that it connects to
  --frontend-port N        where the front end listens, and a run finds it (3111)
  --test-server-port N     likewise the test station (TestServerPortNumber of the configuration)
  --script FILE            commands for the front end or the test station (the standard input)
  --wait SECONDS           how long they wait for the analyzer and for an answer (30)
  --help                   this text

Each result is one line:
  result INDEX chlorine VALUE sample VALUE absorbance VALUE dark COUNT reference COUNT reacted COUNT duty PERCENT
where sample is the chlorine that the water really has, and the remote indicator, whenever it changes, another:
  indicator analyzer COLOUR water COLOUR sound FILE
with blue, amber, red, several of them joined by "+", all or off, and none in silence. Ctrl-C ends the run.

Exit status: 0 after N results; 1 if the analyzer ended or gave no result in three times the time of a cycle;
2 for a wrong argument; 130 after Ctrl-C, 143 after SIGTERM. Of a front end or test station: 0 if all was answered,
1 if something was not, 2 for a wrong argument or command and for a port that is taken.
)";
}

}  // namespace Bench
