#pragma once
// A fresh folder under the system's temporary folder, removed with its contents
// when the test ends.

#include <string>

namespace ovd::testing {

class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string file(const std::string& name) const;

  private:
    std::string path_;
};

}  // namespace ovd::testing
