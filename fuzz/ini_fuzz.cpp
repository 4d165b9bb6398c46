// Any bytes as an INI file, with a section, key and value of any bytes written into
// it: reading and writing must not fail, a value written reads back as written (up
// to its first line break, without the blanks around it), and a file written once
// reads back to the same text.

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/text.h"
#include "settings/ini_store.h"

namespace {

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find_first_of(std::string("\0\r\n", 3)));
}

// A key the store can't hold is refused, not written.
bool storable(const std::string& key) {
    const std::string name = ovd::platform::trim(firstLine(key));
    return name.find('=') == std::string::npos &&
           (name.empty() || (name.front() != ';' && name.front() != '['));
}

void check(bool condition) {
    if (!condition) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using ovd::settings::IniDocument;
    FuzzedDataProvider input(data, size);
    const std::string section = input.ConsumeRandomLengthString(64);
    const std::string key = input.ConsumeRandomLengthString(64);
    const std::string value = input.ConsumeRandomLengthString(256);
    const std::string text = input.ConsumeRemainingBytesAsString();

    IniDocument document = IniDocument::parse(text);
    for (const auto& name : document.sectionNames()) {
        for (const auto& entry : document.sectionEntries(name)) {
            // A name is asked for as one C string line: a key holding a NUL or a
            // lone CR can't be asked for.
            if (firstLine(entry.key) == entry.key) {
                check(document.value(name, entry.key).has_value());
            }
        }
    }

    const std::string once = document.serialise();
    check(IniDocument::parse(once).serialise() == once);

    document.setValue(section, key, value);
    if (storable(key)) {
        const auto stored = document.value(section, key);
        check(stored == ovd::platform::trim(firstLine(value)));
        check(IniDocument::parse(document.serialise()).value(section, key) == stored);
    }

    document.removeKey(section, key);
    document.removeSection(section);
    const std::string after = document.serialise();
    check(IniDocument::parse(after).serialise() == after);
    return 0;
}
