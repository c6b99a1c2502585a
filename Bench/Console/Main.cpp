#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "Bench/Console/Runner.h"
#include "Bench/Peers/FrontEndProgram.h"
#include "Bench/Peers/TestServerProgram.h"

namespace {

int Refuse(const std::string& error) {
    std::fprintf(stderr, "run: %s\n", error.c_str());
    return Bench::ExitWrongArgument;
}

void ListFaults() {
    for (const Bench::FaultInfo& fault : Bench::Board::KnownFaults()) {
        const std::string form = fault.value.empty() ? fault.name : fault.name + "=" + fault.value;
        std::printf("%-28s %s\n", form.c_str(), fault.description.c_str());
    }
}

// Before anything is laid or emptied.
bool FaultsFit(const Bench::Options& options, std::string& error) {
    for (const std::string& fault : options.faults) {
        std::string reason;
        if (!Bench::Board::CheckFault(fault, reason)) {
            error.append("--fault ").append(fault).append(": ").append(reason).append("; --fault list shows all");
            return false;
        }
    }
    return true;
}

int RunPeer(const Bench::Options& options) {
    if (options.frontEnd) {
        return Bench::RunFrontEnd(
            {options.frontEndPort.value_or(Bench::FrontEnd::UsualPort), options.script, options.wait});
    }
    Bench::AnalyzerSettings settings;
    std::string error;
    if (!Bench::ReadAnalyzerSettings(options.config.empty() ? BENCH_CONFIGURATION : options.config, settings, error)) {
        return Refuse(error);
    }
    return Bench::RunTestServer(
        {options.testServerPort.value_or(settings.testServerPort), options.script, options.wait});
}

}  // namespace

int main(int count, char** arguments) {
    Bench::Options options;
    std::string error;
    if (!Bench::ReadOptions({arguments + 1, arguments + count}, options, error) || !FaultsFit(options, error)) {
        return Refuse(error);
    }
    if (options.help) {
        std::fputs(Bench::HelpText().c_str(), stdout);
        return Bench::ExitDone;
    }
    if (options.listFaults) {
        ListFaults();
        return Bench::ExitDone;
    }
    if (options.frontEnd || options.testServer) {
        return RunPeer(options);
    }
    if (!options.program.empty() && access(options.program.c_str(), X_OK) != 0) {
        return Refuse("can't run the program " + options.program);
    }
    return Bench::Runner(options, {BENCH_PROGRAM, BENCH_LIBRARY, BENCH_CLIPS, BENCH_CONFIGURATION, BENCH_FOLDER}).Run();
}
