// A site record read into a connection, the manual window's stored choices, and
// the setup windows' load and save with their key questions.

#include <gtest/gtest.h>

#include "ftp/ftp_setup_form.h"
#include "ftp/manual_ftp_settings.h"
#include "ftp/site_connection.h"
#include "settings/delivery_defaults.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::ftp {
namespace {

settings::TranscriberRecord recordOf(
    std::initializer_list<std::pair<const char*, const char*>> keys) {
    settings::TranscriberRecord record;
    for (const auto& [key, value] : keys) record.set(key, value);
    return record;
}

TEST(SiteConnectionTest, AnOldRecordIsPlainPassiveBinaryFtpOnPort21WithoutItsProxy) {
    const SiteConnection site = connectionFor(recordOf({{"FTPServer", " ftp.example.com "},
                                                        {"FTPPort", ""},
                                                        {"FTPUseProxyServer", "False"},
                                                        {"FTPProxyAddress", "proxy.example.com"}}),
                                              "/data");
    EXPECT_EQ(site.scheme, SiteScheme::Ftp);
    EXPECT_EQ(site.settings.hostName, "ftp.example.com");
    EXPECT_EQ(site.settings.port, 21);
    EXPECT_TRUE(site.settings.passiveMode);
    EXPECT_EQ(site.settings.transferType, TransferType::Binary);
    EXPECT_TRUE(site.settings.proxyAddress.empty());
}

TEST(SiteConnectionTest, ChosenModeTypeProxyAndSecurityReachTheConnection) {
    const SiteConnection tls = connectionFor(recordOf({{"FTPPort", "2121"},
                                                       {"FTPMode", "Active"},
                                                       {"FTPTranferMode", "ASCII"},
                                                       {"FTPUseProxyServer", "1"},
                                                       {"FTPProxyAddress", "proxy.example.com"},
                                                       {"FTPProxyPort", "3128"},
                                                       {"FTPSecurity", "FTPS"},
                                                       {"FTPPinnedCert", "/site/cert.pem"}}),
                                             "/data");
    EXPECT_EQ(tls.settings.port, 2121);
    EXPECT_FALSE(tls.settings.passiveMode);
    EXPECT_EQ(tls.settings.transferType, TransferType::Ascii);
    EXPECT_EQ(tls.settings.proxyAddress, "proxy.example.com:3128");
    EXPECT_EQ(tls.scheme, SiteScheme::Ftps);
    EXPECT_EQ(tls.settings.security, Security::ExplicitTls);
    EXPECT_EQ(tls.settings.pinnedCertificateFile, "/site/cert.pem");

    // SSH has a port of its own; a port that is no port falls back to it.
    const SiteConnection ssh =
        connectionFor(recordOf({{"FTPSecurity", "sftp"}, {"FTPPort", "x"}}), "/data");
    EXPECT_EQ(ssh.scheme, SiteScheme::Sftp);
    EXPECT_EQ(ssh.settings.port, 22);
    EXPECT_EQ(ssh.settings.security, Security::Sftp);
    EXPECT_EQ(ssh.settings.knownHostsFile, "/data/sftp_known_hosts");

    // A server typed with its kind in front says it itself.
    const SiteConnection typed = connectionFor(
        recordOf({{"FTPServer", "sftp://files.example.com/letters"}, {"FTPKeyFile", "/k/id"}}),
        "/data");
    EXPECT_EQ(typed.scheme, SiteScheme::Sftp);
    EXPECT_EQ(typed.settings.hostName, "files.example.com");
    EXPECT_EQ(typed.settings.privateKeyFile, "/k/id");
}

TEST(ManualFtpSettingsTest, TheChosenModeAndTypeAreKeptForTheNextWindow) {
    ovd::testing::TempFolder data;
    ConnectionSettings settings;
    loadManualFtpSettings(data.path()).applyTo(settings);
    EXPECT_TRUE(settings.passiveMode);
    EXPECT_EQ(settings.transferType, TransferType::Binary);

    ManualFtpSettings chosen;
    chosen.ManActive = true;
    chosen.ManPassive = false;
    chosen.ManAscii = true;
    chosen.ManBin = false;
    ASSERT_TRUE(saveManualFtpSettings(data.path(), chosen));
    const ManualFtpSettings loaded = loadManualFtpSettings(data.path());
    EXPECT_TRUE(loaded.ManActive);
    EXPECT_FALSE(loaded.ManPassive);
    loaded.applyTo(settings);
    EXPECT_FALSE(settings.passiveMode);
    EXPECT_EQ(settings.transferType, TransferType::Ascii);
}

class FtpSetupFormTest : public ::testing::Test {
  protected:
    void SetUp() override {
        settings::TranscriberRecord record;
        record.set("CompanyName", "Transcribe Right");
        record.set("Name", "Pat Typist");
        record.set("FTPServer", "ftp.old.example");
        ASSERT_TRUE(settings::TranscriberStore(records_).save(record).ok());
    }
    ovd::testing::TempFolder data_;
    settings::CompanyRecords records_{data_.path()};
    ovd::testing::ScriptedPrompts prompts_;
};

TEST_F(FtpSetupFormTest, WithoutATranscriberNothingLoadsOrSaves) {
    FtpSetupForm form(records_, prompts_);
    form.Form_Load();
    EXPECT_EQ(form.companies(), (std::vector<std::string>{"Transcribe Right"}));
    EXPECT_FALSE(form.GetInfoForCrypt(""));
    EXPECT_FALSE(form.WriteCryptoInfo());
    EXPECT_EQ(
        prompts_.texts(),
        (std::vector<std::string>{"No Current Transcriber selected'  Information Not Available",
                                  "No Current Transcriber selected'  Information Not Available"}));
}

TEST_F(FtpSetupFormTest, EncipheringWithoutAKeyAsksForItAndItsCharactersBeforeSaving) {
    FtpSetupForm form(records_, prompts_);
    form.Form_Load();
    ASSERT_TRUE(form.GetInfoForCrypt("transcribe right"));
    EXPECT_EQ(form.field("FTPServer"), "ftp.old.example");
    form.setField("FTPServer", "ftp.new.example");
    form.setField("FTPEncryptOption", "True");

    // A key with a blank is refused and nothing is written.
    prompts_.answerNextText("AB CD");
    EXPECT_FALSE(form.WriteCryptoInfo());
    EXPECT_EQ(settings::TranscriberStore(records_).load("Transcribe Right")->get("FTPServer"),
              "ftp.old.example");

    prompts_.clear();
    prompts_.answerNextText("ABCD");
    prompts_.answerNextText("TR");
    ASSERT_TRUE(form.WriteCryptoInfo());
    EXPECT_EQ(prompts_.texts(),
              (std::vector<std::string>{
                  "You have indicated you would like to encrypt the files sent to the FTP Site, "
                  "but you did not supply an ecryption key. Please do so n",
                  "Please Enter Two Unique Characters to associate this Encryption Key with.",
                  "Transcribers information has been saved"}));
    const auto saved = settings::TranscriberStore(records_).load("Transcribe Right");
    ASSERT_TRUE(saved.ok());
    EXPECT_EQ(saved->get("FTPServer"), "ftp.new.example");
    EXPECT_EQ(saved->get("FTPEncryptKey"), "ABCD");
    EXPECT_EQ(saved->get("FTPEncryptINIT"), "TR");
    // The transcriber's other keys are not the setup window's to change.
    EXPECT_EQ(saved->get("Name"), "Pat Typist");
}

TEST_F(FtpSetupFormTest, TheDefaultSiteFollowsItsTranscribersSaves) {
    FtpSetupForm form(records_, prompts_);
    form.Form_Load();
    ASSERT_TRUE(form.GetInfoForCrypt("Transcribe Right"));
    ASSERT_TRUE(form.makeDefaultSite());
    EXPECT_EQ(records_.defaultFtpClient(), "Transcribe Right");
    EXPECT_EQ(settings::LoadDefaultFTP(records_)["FTPServer"], "ftp.old.example");

    FtpSetupForm again(records_, prompts_);
    again.Form_Load();
    EXPECT_EQ(again.company(), "Transcribe Right");
    again.setField("FTPServer", "ftp.moved.example");
    ASSERT_TRUE(again.WriteCryptoInfo());
    EXPECT_EQ(settings::LoadDefaultFTP(records_)["FTPServer"], "ftp.moved.example");
}

}  // namespace
}  // namespace ovd::ftp
