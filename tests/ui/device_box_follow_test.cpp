// The device boxes over the real sound server: a microphone plugged in while the
// station runs appears, one taken away goes and the box shows the device really
// recorded from, and the author's choice comes back with the microphone. The box
// follows when the lists say they changed, as the station window wires it; nobody
// keeps looking.

#include <gtest/gtest.h>

#include <QComboBox>

#include "engine/pulse_backend.h"
#include "station/device_choice.h"
#include "support/pulse_daemon.h"
#include "support/pulse_modules.h"
#include "support/real_time_event_loop.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "ui/device_box.h"

namespace ovd::ui {
namespace {

using ovd::testing::PulseDaemon;
using std::chrono::milliseconds;

QStringList itemsOf(const QComboBox& box) {
    QStringList items;
    for (int i = 0; i < box.count(); ++i) items << box.itemText(i);
    return items;
}

class DeviceBoxFollowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(daemon_.running()) << daemon_.error();
        auto connected = engine::PulseBackend::connect(loop_);
        ASSERT_TRUE(connected) << connected.error();
        backend_ = std::move(*connected);
        choice_ = std::make_unique<station::DeviceChoice>(
            backend_->recordingDevices(), backend_->playbackDevices(), config_, prompts_);
        ASSERT_TRUE(choice_->load());
        box_ = std::make_unique<DeviceBox>(*choice_);
        backend_->recordingDevices().onChanged = [this] { box_->follow(); };
        backend_->playbackDevices().onChanged = [this] { box_->follow(); };
        inputs_ = box_->findChild<QComboBox*>("cmbDevInput");
        ASSERT_NE(inputs_, nullptr);
    }
    void TearDown() override {
        for (const int module : modules_) ovd::testing::unloadPulseModule(module);
    }

    void plugIn(const std::string& name, const std::string& label) {
        std::string error;
        const int module = ovd::testing::loadPulseModule(
            ovd::testing::sineSourceArguments(name, label, 880), &error);
        ASSERT_GE(module, 0) << error;
        modules_.push_back(module);
    }
    void takeAway() {
        ASSERT_FALSE(modules_.empty());
        ASSERT_TRUE(ovd::testing::unloadPulseModule(modules_.back()));
        modules_.pop_back();
    }
    // The loop runs until the box lists what is wanted.
    bool boxShowsUntil(const std::function<bool()>& wanted) {
        return loop_.runUntil(wanted, milliseconds(5000));
    }

    PulseDaemon daemon_;
    ovd::testing::RealTimeEventLoop loop_;
    ovd::testing::TempFolder folder_;
    settings::ConfigFile config_{folder_.path()};
    ovd::testing::ScriptedPrompts prompts_;
    std::unique_ptr<engine::PulseBackend> backend_;
    std::unique_ptr<station::DeviceChoice> choice_;
    std::unique_ptr<DeviceBox> box_;
    QComboBox* inputs_ = nullptr;
    std::vector<int> modules_;
};

TEST_F(DeviceBoxFollowTest, AMicrophonePluggedInOrTakenAwayShowsInTheBox) {
    ASSERT_EQ(inputs_->currentText().toStdString(), PulseDaemon::kSineLabel);
    plugIn("ovd_desk_mic", "DeskMicrophone");
    ASSERT_TRUE(boxShowsUntil([this] { return itemsOf(*inputs_).contains("DeskMicrophone"); }))
        << "a microphone plugged in while the station runs is offered";

    // The author picks it, as a click in the box would.
    const int picked = inputs_->findText("DeskMicrophone");
    choice_->cmbDevInput_Click(picked);
    box_->fill();
    ASSERT_EQ(inputs_->currentText(), "DeskMicrophone");
    EXPECT_EQ(config_.record.InputDeviceName, "DeskMicrophone");

    takeAway();
    ASSERT_TRUE(boxShowsUntil([this] { return !itemsOf(*inputs_).contains("DeskMicrophone"); }));
    EXPECT_EQ(inputs_->currentText().toStdString(), PulseDaemon::kSineLabel)
        << "the box shows the microphone the server now records from";
    EXPECT_EQ(backend_->recordingDevices().Name(backend_->recordingDevices().Current()),
              PulseDaemon::kSineLabel);
    EXPECT_EQ(config_.record.InputDeviceName, "DeskMicrophone") << "the author's choice is kept";

    plugIn("ovd_desk_mic", "DeskMicrophone");
    EXPECT_TRUE(boxShowsUntil([this] { return inputs_->currentText() == "DeskMicrophone"; }))
        << "plugged back in, the chosen microphone is used and shown again";
}

}  // namespace
}  // namespace ovd::ui
