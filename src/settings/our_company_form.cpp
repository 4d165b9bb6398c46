#include "settings/our_company_form.h"

#include <cerrno>

#include "platform/files.h"
#include "platform/text.h"
#include "settings/config_file.h"
#include "settings/ini_store.h"

namespace ovd::settings {

namespace {

constexpr const char* kCompanySection = "Company";
constexpr const char* kKeySection = "Key";

const OurCompanyBox* boxOf(std::string_view control) {
    for (const auto& box : kOurCompanyBoxes) {
        if (control == box.control) return &box;
    }
    return nullptr;
}

bool onlyBlanks(const std::string& text) { return !text.empty() && platform::trim(text).empty(); }

}  // namespace

OurCompany readOurCompany(const CompanyRecords& records) {
    const IniStore store = records.ourCompany();
    return {store.readValue(kCompanySection, "CompanyName").value_or(""),
            store.readValue(kKeySection, "EncryptKey").value_or("")};
}

OurCompanyForm::OurCompanyForm(const CompanyRecords& records, platform::Prompts& prompts)
    : records_(records), prompts_(prompts) {}

std::string& OurCompanyForm::field(std::string_view key) {
    if (key == "CompanyName") return fields_.CompanyName;
    if (key == "Name") return fields_.Name;
    if (key == "Address") return fields_.Address;
    if (key == "City") return fields_.City;
    if (key == "St") return fields_.St;
    if (key == "Zip") return fields_.Zip;
    if (key == "Phone") return fields_.Phone;
    return fields_.EncryptKey;
}

std::string OurCompanyForm::fieldOf(const OurCompanyFields& fields, std::string_view key) const {
    if (key == "CompanyName") return fields.CompanyName;
    if (key == "Name") return fields.Name;
    if (key == "Address") return fields.Address;
    if (key == "City") return fields.City;
    if (key == "St") return fields.St;
    if (key == "Zip") return fields.Zip;
    if (key == "Phone") return fields.Phone;
    return fields.EncryptKey;
}

bool OurCompanyForm::Form_Load() {
    const std::string path = records_.ourCompanyPath();
    fields_ = {};
    saved_ = {};
    if (platform::fileExists(path)) {
        const auto text = platform::readWholeFile(path);
        if (!text || text->find('\0') != std::string::npos) {
            prompts_.showMessage(kReadErrorMessage, kProductTitle, platform::Severity::Critical);
            return false;
        }
        const IniDocument document = IniDocument::parse(*text);
        for (const auto& box : kOurCompanyBoxes) {
            const char* section =
                std::string_view(box.key) == "EncryptKey" ? kKeySection : kCompanySection;
            field(box.key) = document.value(section, box.key).value_or("");
        }
    }
    saved_ = fields_;
    keyEditable_ = fields_.EncryptKey.empty();
    return true;
}

std::string OurCompanyForm::text(std::string_view control) const {
    const OurCompanyBox* box = boxOf(control);
    return box == nullptr ? std::string() : fieldOf(fields_, box->key);
}

void OurCompanyForm::setText(std::string_view control, std::string value) {
    const OurCompanyBox* box = boxOf(control);
    if (box == nullptr) return;
    if (std::string_view(box->key) == "EncryptKey" && !keyEditable_) return;
    field(box->key) = std::move(value);
}

bool OurCompanyForm::enterKey(const std::string& key) {
    if (!keyEditable_) return false;
    if (platform::trim(key).size() != 0 && keyHasBlank(key)) {
        prompts_.showMessage(kSpacesNotAllowedMessage, kProductTitle, platform::Severity::Warning);
        return false;
    }
    fields_.EncryptKey = key;
    if (!key.empty())
        prompts_.showMessage(kKeyCautionMessage, kProductTitle, platform::Severity::Warning);
    return true;
}

bool OurCompanyForm::required(std::string_view control) const {
    return control == "txtCompanyName" || control == "txtName" || control == "txtKeyInfo";
}

bool OurCompanyForm::write() {
    const IniStore store = records_.ourCompany();
    IniDocument document = store.load();
    for (const auto& box : kOurCompanyBoxes) {
        const char* section =
            std::string_view(box.key) == "EncryptKey" ? kKeySection : kCompanySection;
        document.setValue(section, box.key, fieldOf(fields_, box.key));
    }
    if (auto written =
            platform::replaceFile(store.path(), document.serialise(), /*ownerOnly=*/true);
        !written) {
        prompts_.showMessage(written.error(), kProductTitle, platform::Severity::Critical);
        return false;
    }
    saved_ = fields_;
    keyEditable_ = false;
    if (onSaved) onSaved();
    return true;
}

bool OurCompanyForm::save() {
    for (const auto& box : kOurCompanyBoxes) {
        if (std::string_view(box.key) != "EncryptKey")
            field(box.key) = platform::trim(field(box.key));
    }
    const auto refuse = [this](const char* text) {
        prompts_.showMessage(text, kProductTitle, platform::Severity::Warning);
        return false;
    };
    if (fields_.CompanyName.empty()) return refuse(kCompanyNameMissingMessage);
    if (fields_.EncryptKey.empty()) return refuse(kEncryptKeyMissingMessage);
    if (onlyBlanks(fields_.EncryptKey)) return refuse(kKeyBlankMessage);
    if (keyHasBlank(fields_.EncryptKey)) return refuse(kSpacesNotAllowedMessage);
    if (fields_.Name.empty()) {
        if (prompts_.askYesNo(kEmailNeedsNameQuestion, kProductTitle, platform::Answer::Yes)) {
            if (focusName) focusName();
            return false;
        }
        // The company and its key are saved; only the mail sender waits for the name.
        prompts_.showMessage(kEmailDataNotSavedMessage, kProductTitle, platform::Severity::Warning);
        if (!write()) return false;
        prompts_.showMessage(kCompanySavedWithoutNameMessage, kProductTitle);
        return true;
    }
    if (!write()) return false;
    prompts_.showMessage(kCompanySavedMessage, kProductTitle);
    return true;
}

bool OurCompanyForm::requestClose() {
    for (const auto& box : kOurCompanyBoxes) {
        if (box.changedMessage == nullptr || fieldOf(fields_, box.key) == fieldOf(saved_, box.key))
            continue;
        prompts_.showMessage(box.changedMessage, kInformationNotSavedTitle,
                             platform::Severity::Warning);
        return false;
    }
    return true;
}

std::string OurCompanyForm::clipboardText() const {
    return "Company Name: " + fields_.CompanyName + "\nName: " + fields_.Name +
           "\nAddress: " + fields_.Address + "\nCity: " + fields_.City + "\nState: " + fields_.St +
           "\nZip: " + fields_.Zip + "\nPhone: " + fields_.Phone + "\n";
}

bool ensureOurCompany(const CompanyRecords& records, platform::Prompts& prompts,
                      const std::function<void()>& openOurCompany) {
    if (!readOurCompany(records).g_strOrganization.empty()) return true;
    if (prompts.askYesNo(kNoCompanyQuestion, kProductTitle, platform::Answer::Yes) &&
        openOurCompany) {
        openOurCompany();
        if (!readOurCompany(records).g_strOrganization.empty()) return true;
    }
    prompts.showMessage(kNoCompanyClosingMessage, kProductTitle, platform::Severity::Warning);
    return false;
}

}  // namespace ovd::settings
