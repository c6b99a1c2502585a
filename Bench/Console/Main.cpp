#include <cstdio>

#include "Bench/Common/Program.h"
#include "Bench/Console/Runner.h"
#include "Bench/Peers/FrontEndProgram.h"
#include "Bench/Peers/TestServerProgram.h"

namespace {

void ListFaults() {
    for (const Bench::FaultInfo& fault : Bench::Board::KnownFaults()) {
        const std::string form = fault.value.empty() ? fault.name : fault.name + "=" + fault.value;
        std::printf("%-28s %s\n", form.c_str(), fault.description.c_str());
    }
}

int RunPeer(const Bench::Options& options) {
    if (options.frontEnd) {
        return Bench::RunFrontEnd(
            {options.frontEndPort.value_or(Bench::FrontEnd::DefaultPort), options.script, options.wait});
    }
    Bench::AnalyzerSettings settings;
    std::string error;
    if (!Bench::ReadAnalyzerSettings(
            options.config.empty() ? Bench::PlacesOfBuild("bench").configuration : options.config, settings, error)) {
        return Bench::Refuse("run", error);
    }
    return Bench::RunTestServer(
        {options.testServerPort.value_or(settings.testServerPort), options.script, options.wait});
}

}  // namespace

int main(int count, char** arguments) {
    Bench::Options options;
    if (const std::optional<int> status = Bench::RunCommandLine(options).Run(count, arguments)) {
        return *status;
    }
    if (options.listFaults) {
        ListFaults();
        return Bench::ExitSuccess;
    }
    if (options.frontEnd || options.testServer) {
        return RunPeer(options);
    }
    return Bench::Runner(options).Run();
}
