// The folder that a run leaves behind: reset at its start, never taken from somebody else.
#pragma once

#include <string>

namespace Bench {

// Holds the folder for one run: a marker file tells that it is a bench folder, and a lock on it that a run goes on.
class BenchFolder {
public:
    BenchFolder() = default;
    ~BenchFolder();
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;

    // Makes the folder, or empties it if it is a bench folder that no run holds. False with a sentence in `error`,
    // and nothing removed, where the folder holds anything else, is in use or can't be made.
    bool Take(const std::string& path, std::string& error);

    // Lays what the analyzer finds on its own disk: its folders, the sounds out of that folder, and its configuration,
    // given as text, since the file that it came from may have stood in this very folder.
    bool Fill(const std::string& configuration, const std::string& clips, std::string& error) const;

    const std::string& Path() const { return m_path; }  // absolute
    std::string Card() const { return m_path + "/card"; }

private:
    bool Mark(std::string& error);
    bool Empty(std::string& error) const;

    std::string m_path;
    int m_marker = -1;
};

}  // namespace Bench
