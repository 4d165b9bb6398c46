#pragma once
// The line grammar of DigitalRecorder.cfg. Writing: text in double quotes with no
// escaping, integers in plain decimal, yes/no as "#TRUE#" or "#FALSE#", a
// variant in the form of what it holds (nothing at all when it holds nothing),
// fields separated by single commas, the record ended by CR LF.
// Reading is forgiving in the way the file has always been read: a quoted field
// ends at the next quote, an unquoted one at the next comma or line end, and a
// field that does not fit its kind leaves the setting as it was.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/settings_record.h"

namespace ovd::settings {

struct RecordToken {
    std::string text;
    bool quoted = false;
};

// Splits the file's content into fields.
std::vector<RecordToken> tokenizeRecord(std::string_view content);

// What a load found wrong with the record: the fields that could not be taken
// (their former values stay), and whether the record had the wrong number of fields.
struct RecordDamage {
    std::vector<std::string> unreadFields;
    std::size_t fieldsFound = 0;
    [[nodiscard]] bool any() const;
};

// The longest value a field's use can take: a folder or path setting a path, any
// other a name. A longer value is damage, never a setting.
[[nodiscard]] std::size_t longestValueOf(const std::string& fieldName);

// Takes the fields onto the record in order; fields past the end of the tokens,
// and fields whose text does not fit their kind, keep their former values. Text
// with control characters, or longer than its field can take, does not fit.
RecordDamage applyRecord(SettingsRecord& record, const std::vector<RecordToken>& tokens);

// The whole record as one line, CR LF included.
std::string formatRecord(const SettingsRecord& record);

// One field read and written by the rules above, for the smaller records kept in
// the same grammar. Text that does not fit a text field gives nothing back.
[[nodiscard]] std::optional<std::string> readTextField(const RecordToken& token,
                                                       std::size_t longest);
[[nodiscard]] ConfigVariant readVariantField(const RecordToken& token);
[[nodiscard]] std::string formatTextField(const std::string& text);
[[nodiscard]] std::string formatVariantField(const ConfigVariant& value);

}  // namespace ovd::settings
