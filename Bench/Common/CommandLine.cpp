#include "Bench/Common/CommandLine.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "Bench/Common/Program.h"

namespace Bench {

namespace {

constexpr std::size_t HelpColumn = 28;

std::string ExpectedText(const std::string& expected) { return " (expected " + expected + ")"; }

}  // namespace

// The options as the library takes them.
class CommandLine::Parser {
public:
    explicit Parser(const CommandLine& line) : m_line(line), m_app(line.m_purpose + "\n", "./" + line.m_program) {
        m_app.set_help_flag("-h,--help", "print this help");
        m_app.footer(line.m_notes);
        m_app.get_formatter()->column_width(HelpColumn);
        m_app.allow_extras();
        for (const Option& option : line.m_options) {
            Add(option);
        }
    }

    std::string Help() const { return m_app.help(); }

    std::string Read(const std::vector<std::string>& arguments, bool& isHelpWanted) {
        try {
            m_app.parse(Reversed(arguments));
        } catch (const CLI::CallForHelp&) {
            isHelpWanted = true;
            return "";
        } catch (const CLI::ArgumentMismatch& error) {
            return Mismatch(error.what());
        } catch (const CLI::ParseError& error) {
            return error.what();
        }
        const std::vector<std::string> rest = m_app.remaining();
        return rest.empty() ? "" : "unknown argument \"" + rest.front() + "\" (see --help)";
    }

private:
    void Add(const Option& option) {
        if (option.flag != nullptr) {
            m_app.add_flag(option.name, *option.flag, option.help)->disable_flag_override();
            return;
        }
        const auto take = [&option](const std::string& value) {
            return option.take(value) ? "" : "invalid value \"" + value + "\"" + ExpectedText(option.expected);
        };
        // Each value is checked and taken in its order; the callback has nothing left to do.
        m_app
            .add_option(
                option.name, [](const CLI::results_t&) { return true; }, option.help)
            ->check(CLI::Validator(take, ""))
            ->take_last()
            ->option_text(option.valueName);
    }

    // As the library wants them. It would take the argument after "--name=" for the value.
    static std::vector<std::string> Reversed(const std::vector<std::string>& arguments) {
        std::vector<std::string> reversed;
        for (const std::string& argument : arguments) {
            const bool isEmptyValue = argument.starts_with("--") && argument.find('=') == argument.size() - 1;
            reversed.push_back(argument.substr(0, argument.size() - (isEmptyValue ? 1 : 0)));
            if (isEmptyValue) {
                reversed.emplace_back();
            }
        }
        std::reverse(reversed.begin(), reversed.end());
        return reversed;
    }

    // A value is missing, or a flag has one.
    std::string Mismatch(const std::string& text) const {
        const std::string name = text.substr(0, text.find_first_of(": "));
        const auto option = std::find_if(m_line.m_options.begin(), m_line.m_options.end(), [&name](const Option& row) {
            return row.name == name || row.name == "--" + name;
        });
        if (option == m_line.m_options.end()) {
            return text;
        }
        return option->name +
               (option->flag != nullptr ? ": takes no value" : ": no value" + ExpectedText(option->expected));
    }

    const CommandLine& m_line;
    CLI::App m_app;
};

void CommandLine::Add(const std::string& form, const std::string& expected, Take take, const std::string& help) {
    const std::size_t end = form.find_first_of(" [");
    m_options.push_back({form.substr(0, end), form.substr(end + 1), expected, std::move(take), nullptr, help});
}

void CommandLine::AddFlag(const std::string& form, bool& target, const std::string& help) {
    m_options.push_back({form, "", "", nullptr, &target, help});
}

void CommandLine::AddText(const std::string& form, const std::string& expected, std::string& target,
                          const std::string& help) {
    const Take take = [&target](const std::string& value) {
        target = value;
        return !value.empty();
    };
    Add(form, expected, take, help);
}

void CommandLine::AddProgram(std::string& target) {
    const Take take = [&target](const std::string& value) {
        target = value;
        return access(value.c_str(), X_OK) == 0;
    };
    Add("--program FILE", "an executable file", take, "run another program in the analyzer's place");
}

std::string CommandLine::Read(const std::vector<std::string>& arguments) {
    std::string error = Parser(*this).Read(arguments, m_isHelpWanted);
    for (std::size_t check = 0; error.empty() && !m_isHelpWanted && check < m_checks.size(); ++check) {
        error = m_checks[check]();
    }
    return error;
}

std::string CommandLine::Help() const { return Parser(*this).Help(); }

std::optional<int> CommandLine::Run(int count, char** arguments) {
    const std::string error = Read({arguments + 1, arguments + count});
    if (!error.empty()) {
        return Refuse(m_program, error);
    }
    if (m_isHelpWanted) {
        std::fputs(Help().c_str(), stdout);
        return ExitSuccess;
    }
    return std::nullopt;
}

}  // namespace Bench
