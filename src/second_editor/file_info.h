#pragma once
// What the information window shows of the second editor's document: where it
// came from, its format, its length and the size of its file.

#include <string>
#include <utility>
#include <vector>

#include "engine/wave_editor.h"

namespace ovd::second_editor {

// Label and value, in the order the window lists them.
using InfoLines = std::vector<std::pair<std::string, std::string>>;

InfoLines fileInformation(const engine::WaveEditor& editor, const std::string& fileName);

// "h:mm:ss.cc" of a length in seconds.
std::string lengthText(double seconds);

}  // namespace ovd::second_editor
