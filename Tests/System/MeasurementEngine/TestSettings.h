// A settings file with a measurement section only, its values to be changed by a test before it is read.
#pragma once

#include <map>
#include <string>
#include <vector>

struct TestSettings {
    TestSettings();  // nineteen steps that do nothing and take no time, and small values for the rest

    // Writes the file into the folder and makes it the process's settings.
    bool Install(const std::string& folder) const;

    std::map<std::string, std::string>& Step(const std::string& name);

    std::map<std::string, std::string> keys;
    std::vector<std::map<std::string, std::string>> steps;  // by item, "Step" is the name
};

// The process's settings from a file; false if it can't be read.
bool InstallSettings(const std::string& path);
void RemoveSettings();
