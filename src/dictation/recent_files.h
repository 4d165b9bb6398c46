#pragma once
// The station's recent-files list, the Reopen menu's source: MRU.dat in the data
// folder, one full path per line, newest first.

#include <cstddef>
#include <string>
#include <vector>

namespace ovd::dictation {

inline constexpr const char* kRecentFilesName = "MRU.dat";
inline constexpr std::size_t kMaxRecentFiles = 15;

class RecentFiles {
  public:
    explicit RecentFiles(std::string dataFolder);

    // A file just saved or opened goes to the top of the list. A path already in the
    // list leaves the list as it is (it does not move up). Otherwise MRU.dat is
    // rewritten: the new path first if that file exists, then the old entries whose
    // files still exist, at most 15 lines in all.
    void AddToMRUX(const std::string& path);
    // The entries, newest first, whose files exist (what the Reopen menu shows).
    [[nodiscard]] std::vector<std::string> DisplayMRU() const;
    // Empties MRU.dat.
    void clearRecentFiles();  // Clear_Click
    [[nodiscard]] const std::string& filePath() const { return filePath_; }

  private:
    // Every line of MRU.dat as written, whether its file still exists or not.
    [[nodiscard]] std::vector<std::string> storedEntries() const;
    void store(const std::vector<std::string>& entries) const;

    std::string filePath_;
};

}  // namespace ovd::dictation
