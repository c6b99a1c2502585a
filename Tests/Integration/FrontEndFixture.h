// The whole system in this process, on the board, with a front end at the other end of its link.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include "Bench/Peers/FrontEnd.h"
#include "Tests/Support/ReadFile.h"
#include "Tests/Support/SystemFixture.h"

class WithFrontEnd : public SystemOnBoard {
protected:
    explicit WithFrontEnd(double speed = 50.0) : SystemOnBoard(speed), timeout(60.0 * speed) {
        std::string error;
        frontEnd = Bench::FrontEnd::Listen(0, error);
        EXPECT_NE(frontEnd, nullptr) << error;
        EXPECT_TRUE(Board().MapPort(Bench::FrontEnd::DefaultPort, frontEnd->Port()));
    }

    ~WithFrontEnd() override {
        if (system != nullptr) {
            Reset();  // while the front end is still there
        }
    }

    void StartConnected() {
        const std::size_t connections = frontEnd->Connections();
        Start();
        ASSERT_TRUE(frontEnd->WaitForConnection(connections + 1, timeout));
        WaitForIdle();
    }

    // After those that an earlier call has found.
    std::optional<Bench::FrontEndFrame> Wait(const char* name, const std::optional<std::string>& value = {}) {
        return frontEnd->WaitForValue(name, value, m_seen, timeout);
    }

    bool HasRecord() const { return !LastRecord().empty(); }

    // The fourth field of the last record.
    double ChlorineOnCard() const {
        std::istringstream line(LastRecord());
        std::string field;
        for (int column = 0; column < 4; ++column) {
            std::getline(line, field, ',');
        }
        return std::strtod(field.c_str(), nullptr);
    }

    // Of the day's measurement file; empty if there is none after the column line.
    std::string LastRecord() const {
        for (const auto& entry : std::filesystem::directory_iterator(Folder() + "/card")) {
            if (entry.path().string().ends_with("_Measurement.csv")) {
                const std::string text = ReadFile(entry.path());
                const std::size_t end = text.rfind("\r\n");
                const std::size_t start = text.rfind("\r\n", end - 1);
                return start < end ? text.substr(start + 2, end - start - 2) : "";
            }
        }
        return {};
    }

    const double timeout;  // seconds; ends a hang
    std::unique_ptr<Bench::FrontEnd> frontEnd;

private:
    std::size_t m_seen = 0;
};
