#pragma once
// The file-save settings window's model over a settings file of a temporary data
// folder, with scripted prompts. What a test checks is the record as the file on
// disk holds it, read again from scratch.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "configuration/file_saves_form.h"
#include "platform/files.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::configuration::testing {

class FileSavesTest : public ::testing::Test {
  protected:
    FileSavesTest() {
        auto& r = config.record;
        r.CaptureFilePath = folder.file("Rec");
        r.FormatType = "WAV";
        r.Frequency = "16000";
        r.Channel = "MONO";
        r.FileBit = "16";
        r.FormatType2 = "MP3";
        r.Frequency2 = "32000";
        r.Channel2 = "STEREO";
        r.FileBit2 = "64";
        r.JumpBackSecs = 3;
        r.FileLabelActive = true;
        r.FileLabelText = "AB";
        r.SequentialNumbering = false;
        r.FileNameIncrement = 12;
        r.FileNameIncrementStartingNum = 12;
        r.Places = 4;
        r.TCPIP = "127.0.0.1";
        r.TCPPort = "2011";
        std::string* buttons[] = {&r.BUT1, &r.BUT2, &r.BUT3, &r.BUT4,
                                  &r.BUT5, &r.BUT6, &r.BUT7, &r.BUT8};
        for (std::size_t i = 0; i < 8; ++i) *buttons[i] = kStandardButtonLabels[i];
        if (!platform::createFolder(folder.file("Rec"))) ADD_FAILURE() << "no recordings folder";
        if (!config.WriteConfig()) ADD_FAILURE() << "settings not written";
    }

    FileSavesForm& open(FormKind kind = FormKind::Scrolling) {
        FileSavesHooks hooks;
        hooks.recording = [this] { return recording; };
        hooks.saveTakeAndOpenNext = [this] {
            ++takesSaved;
            formatWhenTakeSaved = config.record.FormatType;
        };
        hooks.fileChanged = [this] { return fileChanged; };
        hooks.emailSetup = [this] { ++emailSetups; };
        hooks.ftpSetup = [this] { ++ftpSetups; };
        hooks.volumes = [this](int in, int out) { volumes = {in, out}; };
        hooks.close = [this] { ++closes; };
        form = std::make_unique<FileSavesForm>(config, prompts, hooks, kind);
        form->load();
        return *form;
    }

    // The settings as the file on disk holds them.
    settings::SettingsRecord stored() const {
        settings::ConfigFile fresh(folder.path());
        fresh.ReadConfig();
        return fresh.record;
    }
    bool shown(const std::string& text) const {
        const auto texts = prompts.texts();
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    }

    ::ovd::testing::TempFolder folder;
    settings::ConfigFile config{folder.path()};
    ::ovd::testing::ScriptedPrompts prompts;
    std::unique_ptr<FileSavesForm> form;
    bool recording = false;
    bool fileChanged = false;
    int takesSaved = 0;
    std::string formatWhenTakeSaved;
    int emailSetups = 0;
    int ftpSetups = 0;
    int closes = 0;
    std::pair<int, int> volumes{-1, -1};
};

}  // namespace ovd::configuration::testing
