// The operation file on a board. The product keeps one object for the life of a process, so each start is a process.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "Frameworks/Configuration/SystemOperationFile.h"
#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/NewProcess.h"
#include "Tests/Support/ReadFile.h"

class OperationTest : public BoardTest {
protected:
    std::string DataFolder() const { return Folder() + "/var/log/vorn/data"; }
    std::string MainPath() const { return DataFolder() + "/analyzer.op.xml"; }
    std::string BackupPath() const { return DataFolder() + "/analyzer.op.backup.xml"; }

    std::string Main() const { return ReadFile(MainPath()); }
    std::string Backup() const { return ReadFile(BackupPath()); }
    void LayMain(const std::string& text) const { Lay(MainPath(), text); }
    void LayBackup(const std::string& text) const { Lay(BackupPath(), text); }

    static std::string Text(bool value) { return value ? "true" : "false"; }

    // The result of the action on the file after a start.
    static std::string AfterStart(const std::function<std::string(SystemOperationFile& file)>& action) {
        const NewProcess process([&](const NewProcess::Tell& tell) {
            SystemOperationFile* file = SystemOperationFile::GetInstance();
            tell(file == nullptr ? "not available" : action(*file));
        });
        return process.Answer();
    }

    static std::string TubingCyclesAfterStart() {
        return AfterStart([](SystemOperationFile& file) { return file.ReadItem("TubingRunCycles").Text(); });
    }

    // The document that a save writes for that number of tubing cycles.
    static std::string WithTubingCycles(const std::string& cycles) {
        return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
               "<ROOT_ANALYZER>\n"
               "<SYSTEM_INFO>\n"
               "<INFO_ITEM name=\"TubingRunCycles\" value=\"" +
               cycles +
               "\"/>\n"
               "</SYSTEM_INFO>\n"
               "</ROOT_ANALYZER>\n";
    }

private:
    static void Lay(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }
};
