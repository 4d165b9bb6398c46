#include "settings/transcriber_records.h"

#include <cerrno>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::settings {

std::string TranscriberRecord::get(std::string_view key) const {
    const auto found = values.find(std::string(key));
    return found == values.end() ? std::string() : found->second;
}

void TranscriberRecord::set(std::string_view key, std::string value) {
    values[std::string(key)] = std::move(value);
}

platform::Result<IniDocument> TranscriberStore::document() const {
    const std::string path = records_.clientsPath();
    if (!platform::fileExists(path)) return IniDocument{};
    const auto text = platform::readWholeFile(path);
    if (!text) return platform::systemFailure("Can't read " + path, errno);
    // A NUL is never part of a settings text: the file was overwritten with something else.
    if (text->find('\0') != std::string::npos) {
        return platform::failure(path + " is damaged: it is not a text file");
    }
    return IniDocument::parse(*text);
}

platform::Result<std::vector<std::string>> TranscriberStore::companies() const {
    auto doc = document();
    if (!doc) return doc.failed();
    return doc->sectionNames();
}

platform::Result<TranscriberRecord> TranscriberStore::load(std::string_view companyName) const {
    auto doc = document();
    if (!doc) return doc.failed();
    TranscriberRecord record;
    if (!doc->hasSection(companyName)) return record;
    for (const auto& entry : doc->sectionEntries(companyName)) {
        if (!record.values.contains(entry.key)) record.values[entry.key] = entry.value;
    }
    return record;
}

platform::Result<void> TranscriberStore::save(const TranscriberRecord& record,
                                              std::string_view previousName) const {
    auto doc = document();
    if (!doc) return doc.failed();
    const std::string section = platform::trim(record.companyName());
    if (section.empty()) return platform::failure("A transcriber needs a company name");
    if (!previousName.empty() && !platform::equalsIgnoreCase(previousName, section)) {
        doc->removeSection(previousName);
    }
    for (const auto key : kTranscriberKeys) doc->setValue(section, key, record.get(key));
    // Keys this station does not know travel with the record, so a rename keeps them.
    for (const auto& [key, value] : record.values) doc->setValue(section, key, value);
    if (!platform::replaceFile(records_.clientsPath(), doc->serialise(), /*ownerOnly=*/true)) {
        return platform::systemFailure("Can't write " + records_.clientsPath(), errno);
    }
    return {};
}

}  // namespace ovd::settings
