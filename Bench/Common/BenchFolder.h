// The folder of a run: emptied at its start, kept after its end.
#pragma once

#include <string>

namespace Bench {

// Holds the folder for one run. A marker file marks it as a bench folder; a lock on that file shows that a run is using
// it. One thread.
class BenchFolder {
public:
    BenchFolder() = default;
    ~BenchFolder();
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;

    // Makes the folder, or empties it if it is a bench folder that no run uses. If it holds anything else, is in use or
    // can't be made, removes nothing and returns false with the reason in `error`.
    bool Take(const std::string& path, std::string& error);

    // Writes what the analyzer finds on its own disk: its folders, the sounds and the configuration. The configuration
    // is a text because its file may have been in this folder.
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
