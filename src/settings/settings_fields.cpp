#include "settings/settings_record.h"

namespace ovd::settings {

const std::vector<SettingsField>& settingsFields() {
    static const std::vector<SettingsField> fields = {
#define OVD_FIELD_ENTRY(kind, name) {#name, &SettingsRecord::name},
        OVD_SETTINGS_FIELDS(OVD_FIELD_ENTRY)
#undef OVD_FIELD_ENTRY
    };
    return fields;
}

std::string describeField(const SettingsRecord& record, const SettingsField& field) {
    struct Describe {
        const SettingsRecord& record;
        std::string operator()(std::string SettingsRecord::*member) const { return record.*member; }
        std::string operator()(std::int16_t SettingsRecord::*member) const {
            return std::to_string(record.*member);
        }
        std::string operator()(bool SettingsRecord::*member) const {
            return (record.*member) ? "True" : "False";
        }
        std::string operator()(ConfigVariant SettingsRecord::*member) const {
            return (record.*member).toText();
        }
    };
    return std::visit(Describe{record}, field.member);
}

}  // namespace ovd::settings
