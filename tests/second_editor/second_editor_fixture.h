#pragma once
// The second editor on the virtual backend and clock, with a two-second tone
// open in it: the commands are clicked as the window would click them.

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "engine/codecs.h"
#include "engine/test_signal.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "second_editor/second_editor.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::second_editor::testing {

constexpr int kRate = 16000;

// Scripted prompts that also keep the last file request whole, filters included.
class FileRequestPrompts : public ::ovd::testing::ScriptedPrompts {
  public:
    std::optional<std::string> chooseFile(const platform::FileRequest& request) override {
        lastFileRequest = request;
        return ScriptedPrompts::chooseFile(request);
    }
    platform::FileRequest lastFileRequest;
};

class FakeDesktopClipboard : public DesktopClipboard {
  public:
    [[nodiscard]] std::optional<std::string> wavAudio() const override { return held; }
    void setWavAudio(const std::string& wavBytes) override { held = wavBytes; }
    std::optional<std::string> held;
};

class SecondEditorTest : public ::testing::Test {
  protected:
    SecondEditorTest() {
        editor.setTempFileName(folder.file("work"));
        tone = writeTone("tone.wav", 2.0);
        EXPECT_TRUE(second.openFile(tone));
    }

    std::string writeTone(const std::string& name, double seconds, double hertz = 440.0) {
        engine::testing::ToneSource source({kRate, 1}, seconds, hertz);
        engine::TargetFormat wav;
        wav.sampleRate = kRate;
        const std::string path = folder.file(name);
        EXPECT_TRUE(engine::encodeFile(source, path, wav, "").ok());
        return path;
    }

    std::vector<std::int16_t> frames(engine::SampleCount from, engine::SampleCount count) const {
        std::vector<std::int16_t> out(static_cast<std::size_t>(count));
        out.resize(editor.readFrames(from, out.data(), out.size()));
        return out;
    }

    void select(double from, double to) {
        second.setSelectionStart(from);
        second.setSelectionEnd(to);
    }

    // An effect runs on its own thread; its end comes back through the loop.
    void waitForEffect() {
        for (int i = 0; i < 2000 && editor.effectRunning(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            loop.runPending();
        }
        loop.runPending();
        ASSERT_FALSE(editor.effectRunning());
    }

    ::ovd::testing::TempFolder folder;
    ::ovd::testing::VirtualEventLoop loop;
    engine::VirtualBackend backend{loop, {}};
    std::shared_ptr<engine::Clipboard> clipboard = std::make_shared<engine::Clipboard>();
    engine::WaveEditor editor{loop, backend, clipboard, "SecondEditor"};
    FileRequestPrompts prompts;
    bool letterRecording = false;
    SecondEditor second{SecondEditorParts{loop, prompts, editor, clipboard,
                                          [this] { return letterRecording; },
                                          [this] { return folder.path(); },
                                          [] {
                                              return engine::PcmFormat{kRate, 1};
                                          },
                                          [this] { return oggChoice; }}};
    engine::TargetFormat oggChoice;
    std::string tone;
};

}  // namespace ovd::second_editor::testing
