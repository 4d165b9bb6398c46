#pragma once
// The five sender identities of the mail sender, kept with the own company in
// OurCompanyInfo.ini: for account n the keys POPServern, UserNamePopServn,
// PassPopServern, Emailn, POPPortn, POPTimeOutn, RelayServern and RelayPortn.

#include <array>
#include <string>
#include <string_view>

#include "platform/result.h"
#include "settings/company_records.h"

namespace ovd::settings {

inline constexpr int kMailAccounts = 5;

// The keys of one account without their number, in the order they are written.
inline constexpr std::array<std::string_view, 8> kMailSenderKeys = {
    "POPServer", "UserNamePopServ", "PassPopServer", "Email",
    "POPPort",   "POPTimeOut",      "RelayServer",   "RelayPort"};

// One account's values, in the order of kMailSenderKeys.
using MailSender = std::array<std::string, kMailSenderKeys.size()>;

// Account 1 to 5; an account never written reads as empty texts.
MailSender readMailSender(const CompanyRecords& records, int account);
platform::Result<void> writeMailSender(const CompanyRecords& records, int account,
                                       const MailSender& sender);

}  // namespace ovd::settings
