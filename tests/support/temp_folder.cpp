#include "support/temp_folder.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace ovd::testing {

TempFolder::TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ovd-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
}

std::string TempFolder::file(const std::string& name) const { return path_ + "/" + name; }

}  // namespace ovd::testing
