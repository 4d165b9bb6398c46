#include "settings/mail_senders.h"

#include <cerrno>

#include "platform/files.h"

namespace ovd::settings {

namespace {

constexpr const char* kCompanySection = "Company";

std::string numbered(std::string_view key, int account) {
    return std::string(key) + std::to_string(account);
}

}  // namespace

MailSender readMailSender(const CompanyRecords& records, int account) {
    const IniDocument document = records.ourCompany().load();
    MailSender sender;
    for (std::size_t i = 0; i < kMailSenderKeys.size(); ++i) {
        sender[i] =
            document.value(kCompanySection, numbered(kMailSenderKeys[i], account)).value_or("");
    }
    return sender;
}

platform::Result<void> writeMailSender(const CompanyRecords& records, int account,
                                       const MailSender& sender) {
    if (account < 1 || account > kMailAccounts) {
        return platform::failure("There is no mail account " + std::to_string(account));
    }
    const IniStore store = records.ourCompany();
    IniDocument document = store.load();
    for (std::size_t i = 0; i < kMailSenderKeys.size(); ++i) {
        document.setValue(kCompanySection, numbered(kMailSenderKeys[i], account), sender[i]);
    }
    if (!platform::replaceFile(store.path(), document.serialise(), /*ownerOnly=*/true)) {
        return platform::systemFailure("Can't write " + store.path(), errno);
    }
    return {};
}

}  // namespace ovd::settings
