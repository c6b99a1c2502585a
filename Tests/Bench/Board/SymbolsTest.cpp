#include <cstdio>
#include <fstream>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace {

using Names = std::set<std::string>;

constexpr const char* Library = BINARY_FOLDER "/Bench/libboard.so";
constexpr const char* ExactTimeLibrary = BINARY_FOLDER "/Bench/libdeterministic.so";
constexpr const char* Product = BINARY_FOLDER "/vernicor";

// One name a line; "#" begins a remark.
Names ReadNames(const std::string& path) {
    Names names;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') {
            names.insert(line);
        }
    }
    return names;
}

bool StartsWithAny(const std::string& name, std::initializer_list<const char*> beginnings) {
    for (const char* beginning : beginnings) {
        if (name.rfind(beginning, 0) == 0) {
            return true;
        }
    }
    return false;
}

// What nm lists with that option, without versions. C++ names are left out, but for the file system library where a
// program needs it; so are the sanitizers' and the processor's own.
Names Symbols(const std::string& option, const std::string& file) {
    Names names;
    FILE* output =
        popen(("nm -D --format=just-symbols --without-symbol-versions " + option + " '" + file + "'").c_str(), "r");
    std::string name;
    for (int next = fgetc(output); next != EOF; next = fgetc(output)) {
        if (next != '\n') {
            name += static_cast<char>(next);
            continue;
        }
        const bool fileSystem = option == "--undefined-only" && name.find("10filesystem") != std::string::npos;
        if (fileSystem || !StartsWithAny(name, {"_Z", "__asan", "__ubsan", "__tsan", "__sanitizer", "__cxa", "__gxx",
                                                "_Unwind", "_ITM", "GLIBC_", "__aeabi"})) {
            names.insert(name);
        }
        name.clear();
    }
    EXPECT_EQ(pclose(output), 0) << file;
    return names;
}

Names Uncovered(const Names& needed, const Names& covered, const Names& harmless) {
    Names uncovered;
    for (const std::string& name : needed) {
        if (covered.count(name) == 0 && harmless.count(name) == 0) {
            uncovered.insert(name);
        }
    }
    return uncovered;
}

Names Covered() { return ReadNames(SOURCE_FOLDER "/Bench/Board/Covered.txt"); }
Names Harmless() { return ReadNames(SOURCE_FOLDER "/Bench/Board/Harmless.txt"); }

Names CoveredInExactTime() { return ReadNames(SOURCE_FOLDER "/Bench/Deterministic/Covered.txt"); }
// All that are needed of Bench/Deterministic/Waits.txt and are not in the other list.
Names UnseenInExactTime(const Names& needed, const Names& covered) {
    Names unseen;
    for (const std::string& name : ReadNames(SOURCE_FOLDER "/Bench/Deterministic/Waits.txt")) {
        if (needed.count(name) != 0 && covered.count(name) == 0) {
            unseen.insert(name);
        }
    }
    return unseen;
}

TEST(Symbols, the_list_of_covered_functions_is_what_the_library_offers) {
    EXPECT_EQ(Symbols("--defined-only", Library), Covered());
}

TEST(Symbols, no_function_is_both_covered_and_harmless) {
    for (const std::string& name : Covered()) {
        EXPECT_EQ(Harmless().count(name), 0U) << name;
    }
}

TEST(Symbols, each_libc_function_of_the_product_is_covered_or_harmless) {
    const Names needed = Symbols("--undefined-only", Product);
    EXPECT_EQ(needed.count("open"), 1U);
    EXPECT_EQ(Uncovered(needed, Covered(), Harmless()), Names{});
}

TEST(Symbols, a_function_of_neither_list_is_found) {
    EXPECT_EQ(Uncovered({"open", "strlen", "open_by_handle_at"}, Covered(), Harmless()), Names{"open_by_handle_at"});
}

TEST(SymbolsInExactTime, are_those_that_the_library_offers) {
    EXPECT_EQ(Symbols("--defined-only", ExactTimeLibrary), CoveredInExactTime());
}

TEST(SymbolsInExactTime, include_each_function_with_which_the_product_waits) {
    const Names needed = Symbols("--undefined-only", Product);
    EXPECT_EQ(needed.count("sem_wait"), 1U);
    EXPECT_EQ(UnseenInExactTime(needed, CoveredInExactTime()), Names{});
}

TEST(SymbolsInExactTime, do_not_include_a_wait_that_the_product_does_not_need) {
    EXPECT_EQ(UnseenInExactTime({"sem_wait", "strlen", "pthread_once"}, CoveredInExactTime()), Names{"pthread_once"});
}

// A wrong name in the list of waits would find nothing.
TEST(SymbolsInExactTime, are_of_functions_that_the_board_knows) {
    EXPECT_EQ(Uncovered(ReadNames(SOURCE_FOLDER "/Bench/Deterministic/Waits.txt"), Covered(), Harmless()), Names{});
}

}  // namespace
