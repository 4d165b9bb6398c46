#include "settings/transcriber_form.h"

#include "platform/text.h"
#include "settings/config_file.h"
#include "settings/record_rules.h"

namespace ovd::settings {

namespace {

const TranscriberBox* boxOf(std::string_view control) {
    for (const auto& box : kTranscriberBoxes) {
        if (control == box.control) return &box;
    }
    return nullptr;
}

}  // namespace

TranscriberForm::TranscriberForm(const CompanyRecords& records, platform::Prompts& prompts,
                                 DeliveryUse use)
    : records_(records), prompts_(prompts), use_(use), store_(records) {}

bool TranscriberForm::Form_Load() {
    auto listed = store_.companies();
    if (!listed) {
        prompts_.showMessage(kReadErrorMessage, kProductTitle, platform::Severity::Critical);
        if (trace) trace(listed.error());
        companies_.clear();
        return false;
    }
    companies_ = std::move(*listed);
    return true;
}

void TranscriberForm::chooseCompany(const std::string& name) {
    const std::string wanted = platform::trim(name);
    for (const auto& company : companies_) {
        if (!platform::equalsIgnoreCase(company, wanted)) continue;
        auto loaded = store_.load(company);
        if (!loaded) {
            prompts_.showMessage(kReadErrorMessage, kProductTitle, platform::Severity::Critical);
            return;
        }
        saved_ = *loaded;
        record_ = saved_;
        keyEditable_ = record_.get("RECEncryptKey").empty();
        return;
    }
    prompts_.showMessage(kUnknownCompanyMessage, kProductTitle);
    saved_ = {};
    record_ = {};
    record_.set("CompanyName", wanted);
    keyEditable_ = true;
}

std::string TranscriberForm::text(std::string_view control) const {
    const TranscriberBox* box = boxOf(control);
    return box == nullptr ? std::string() : record_.get(box->key);
}

void TranscriberForm::setText(std::string_view control, std::string value) {
    const TranscriberBox* box = boxOf(control);
    if (box == nullptr) return;
    // A closed key box takes no typing; the window shows it read-only.
    if (std::string_view(box->key) == "RECEncryptKey" && !keyEditable_) return;
    record_.set(box->key, std::move(value));
}

bool TranscriberForm::leaveCompanyName() {
    const std::string name = platform::trim(record_.companyName());
    if (name.empty()) return true;
    if (!sixCharactersClash(name, companies_, saved_.companyName()).empty()) {
        prompts_.showMessage(kSixCharactersClashMessage, kProductTitle,
                             platform::Severity::Warning);
        return false;
    }
    return true;
}

bool TranscriberForm::enterKey(const std::string& key) {
    if (!keyEditable_) return false;
    if (keyHasBlank(key)) {
        prompts_.showMessage(kSpacesNotAllowedMessage, kProductTitle, platform::Severity::Warning);
        return false;
    }
    record_.set("RECEncryptKey", key);
    if (key.empty()) {
        record_.set("RECEncryptINITS", {});
        return true;
    }
    prompts_.showMessage(kKeyCautionMessage, kProductTitle, platform::Severity::Warning);
    const auto two = prompts_.input({kTwoCharactersPrompt, kProductTitle, initials()});
    if (two) record_.set("RECEncryptINITS", platform::trim(*two).substr(0, 2));
    return true;
}

bool TranscriberForm::required(std::string_view control) const {
    const std::string_view key = boxOf(control) == nullptr ? "" : boxOf(control)->key;
    if (key == "CompanyName" || key == "Name") return true;
    if (key == "PTPHostIP") return use_.peer;
    if (key == "Email") return use_.email;
    if (key == "RECEncryptKey") return use_.encipher;
    return false;
}

bool TranscriberForm::refuse(const char* text) {
    prompts_.showMessage(text, kProductTitle, platform::Severity::Warning);
    return false;
}

bool TranscriberForm::save() {
    for (const auto& box : kTranscriberBoxes) {
        if (std::string_view(box.key) != "RECEncryptKey")
            record_.set(box.key, platform::trim(record_.get(box.key)));
    }
    if (record_.companyName().empty()) return refuse(kCompanyNotEnteredRecordMessage);
    if (record_.get("Name").empty()) return refuse(kTranscriberNameRequiredMessage);
    if (use_.encipher && record_.get("RECEncryptKey").empty())
        return refuse(kKeyNotEnteredRecordMessage);
    if (use_.email && record_.get("Email").empty()) return refuse(kTranscriberEmailMissingMessage);
    if (use_.peer && record_.get("PTPHostIP").empty()) return refuse(kTranscriberIpMissingMessage);
    if (keyHasBlank(record_.get("RECEncryptKey"))) return refuse(kSpacesNotAllowedMessage);
    if (!leaveCompanyName()) return false;

    auto written = store_.save(record_, saved_.companyName());
    if (!written) {
        prompts_.showMessage(written.error(), kProductTitle, platform::Severity::Critical);
        return false;
    }
    saved_ = record_;
    keyEditable_ = record_.get("RECEncryptKey").empty();
    prompts_.showMessage(kTranscriberSavedMessage, kProductTitle);
    if (Form_Load() && trace) trace("Refreashed");
    records_.CreateClientFolders();
    if (onSaved) onSaved();
    return true;
}

bool TranscriberForm::changed(std::string_view key) const {
    return record_.get(key) != saved_.get(key);
}

bool TranscriberForm::requestClose() {
    const bool newRecord = saved_.companyName().empty();
    if (newRecord && !record_.companyName().empty() && record_.get("RECEncryptKey").empty()) {
        return prompts_.askYesNo(
            std::string(kNewNameBlankKeyMessage) + "\r\n" + kExitWithoutSavingQuestion,
            kProductTitle, platform::Answer::No);
    }
    for (const auto& box : kTranscriberBoxes) {
        if (box.changedMessage == nullptr || !changed(box.key)) continue;
        if (prompts_.askYesNo(std::string(box.changedMessage) + "\r\n" + kSaveNowQuestion,
                              kProductTitle, platform::Answer::Yes)) {
            return save();
        }
    }
    return true;
}

std::string TranscriberForm::clipboardText() const {
    std::string text;
    for (const auto& box : kTranscriberBoxes) {
        text += std::string(box.clipboardLabel) + record_.get(box.key) + "\n";
    }
    return text;
}

}  // namespace ovd::settings
