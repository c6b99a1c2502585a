// The options of a program, in the one dialect of all programs here: "--name value" or "--name=value"; of several the
// last one counts; -h or --help prints the help. One thread.
#pragma once

#include <charconv>
#include <functional>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace Bench {

// The whole text as a number from `min` to `max`; no sign but "-", no exponent. Returns false for any other text.
template <typename Number>
bool ReadNumber(const std::string& text, Number min, Number max, Number& number) {
    const char* end = text.data() + text.size();
    std::from_chars_result result{};
    if constexpr (std::is_floating_point_v<Number>) {
        result = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    } else {
        result = std::from_chars(text.data(), end, number);
    }
    return result.ec == std::errc() && result.ptr == end && number >= min && number <= max;
}

class CommandLine {
public:
    // Takes the value of an option; returns false if it is invalid.
    using Take = std::function<bool(const std::string& value)>;

    // `program` begins each error message; `purpose` and `notes` enclose the list of options in the help.
    CommandLine(std::string program, std::string purpose, std::string notes)
        : m_program(std::move(program)), m_purpose(std::move(purpose)), m_notes(std::move(notes)) {}

    // `form` is "--name VALUE"; `expected` completes "expected ..." in the error message.
    void Add(const std::string& form, const std::string& expected, Take take, const std::string& help);
    void AddFlag(const std::string& form, bool& target, const std::string& help);
    // Any text but the empty one.
    void AddText(const std::string& form, const std::string& expected, std::string& target, const std::string& help);
    void AddProgram(std::string& target);  // --program FILE, which has to be executable
    template <typename Number, typename Target>
    void AddNumber(const std::string& form, Number min, Number max, Target& target, const std::string& help) {
        std::ostringstream expected;
        expected.precision(std::numeric_limits<double>::digits10);
        expected << (std::is_integral_v<Number> ? "a whole number from " : "a number from ") << min << " to " << max;
        const Take take = [min, max, &target](const std::string& value) {
            Number number{};
            const bool isValid = ReadNumber(value, min, max, number);
            target = isValid ? Target(number) : target;
            return isValid;
        };
        Add(form, expected.str(), take, help);
    }
    // A condition on all options together: the reason if it is not met, else an empty text.
    void AddCheck(std::function<std::string()> check) { m_checks.push_back(std::move(check)); }

    // Takes the values. Returns the first error, or an empty text.
    std::string Read(const std::vector<std::string>& arguments);
    bool IsHelpWanted() const { return m_isHelpWanted; }
    std::string Help() const;

    // Reads the arguments of main and prints the help or the error. Returns the exit status if the program is then
    // done.
    std::optional<int> Run(int count, char** arguments);

private:
    struct Option {
        std::string name;
        std::string valueName;  // empty: a flag
        std::string expected;
        Take take;
        bool* flag = nullptr;
        std::string help;
    };
    class Parser;

    std::string m_program;
    std::string m_purpose;
    std::string m_notes;
    std::vector<Option> m_options;
    std::vector<std::function<std::string()>> m_checks;
    bool m_isHelpWanted = false;
};

}  // namespace Bench
