#pragma once
// A recovery on the virtual clock over work files a test lays down in Temp.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "../engine/test_signal.h"
#include "conversion/scan_convert.h"
#include "engine/codecs.h"
#include "platform/files.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::conversion::testing {

using platform::Milliseconds;

class RecoveryFixture : public ::testing::Test {
  protected:
    // The format in force is MP3, and the last run did not end in order.
    void useSettings() {
        auto& r = config.record;
        r.CaptureFilePath = recordings;
        r.RecordingFormats = "OPT2";
        r.FormatType = "MP3";
        r.Frequency = "16000";
        r.Channel = "MONO";
        r.FileBit = "32";
        r.gNormalShutDown = false;  // the last run did not end in order
        config.WriteConfig();
        EXPECT_TRUE(platform::createFolder(temp()));
    }

    [[nodiscard]] std::string temp() const { return recordings + "/Temp"; }

    // A take as the engine leaves it in a work file: a wave file under a .tmp name.
    std::string workFile(const std::string& name, double seconds) {
        engine::testing::ToneSource tone({16000, 1}, seconds);
        const std::string path = temp() + "/" + name;
        const platform::Result<void> written =
            engine::encodeFile(tone, path, engine::TargetFormat{}, "", {});
        EXPECT_TRUE(written) << written.error();
        return path;
    }
    std::string fileOfBytes(const std::string& name, std::size_t bytes) {
        const std::string path = temp() + "/" + name;
        EXPECT_TRUE(platform::writeWholeFile(path, std::string(bytes, 'x')));
        return path;
    }

    void recoverAtStart() {
        scan.Form_Load(ScanMode::Recovery);
        loop.advance(Milliseconds(100));
        while (scan.working()) loop.advance(Milliseconds(50));
    }

    [[nodiscard]] bool operationShown(const std::string& text) const {
        return std::any_of(scan.view.viewEvent.begin(), scan.view.viewEvent.end(),
                           [&](const OperationRow& row) { return row.Operation == text; });
    }
    [[nodiscard]] bool crashStateStored() {
        settings::ConfigFile stored(folder.path());
        stored.ReadConfig();
        return !stored.record.gNormalShutDown;
    }

    ::ovd::testing::TempFolder folder;
    std::string recordings = folder.file("Rec");
    ::ovd::testing::VirtualEventLoop loop;
    settings::ConfigFile config{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    ::ovd::testing::ScriptedPrompts prompts;
    ScanConvert scan{{loop, config, log, prompts}};
};

}  // namespace ovd::conversion::testing
