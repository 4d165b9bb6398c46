// The pedal assignment dialogs' rules, once for each of the four devices: the
// options follow the assignments, a function belongs to one pedal only, OK tests
// the pedals in order with the device's own words, Cancel leaves the clicks in
// memory, and the serial dialog's two-pedal unit has no middle pedal.

#include "devices/pedal_assignments_form.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::devices {
namespace {

constexpr int kStepList = 0, kRecStop = 1, kEolStop = 2, kStepFwd = 5;
constexpr int kLeft = 0, kMiddle = 1, kRight = 2;

struct Device {
    PedalDialog dialog;
    const char* word;
    std::string settings::SettingsRecord::*left;
    std::string settings::SettingsRecord::*middle;
    std::string settings::SettingsRecord::*right;
};

using R = settings::SettingsRecord;
const std::vector<Device> kDevices = {
    {PedalDialog::DeskUnit, "QDU", &R::LEFTQDUPEDAL, &R::MIDQDUPEDAL, &R::RIGHTQDUPEDAL},
    {PedalDialog::Usb, "USB", &R::LEFTUSBPEDAL, &R::MIDUSBPEDAL, &R::RIGHTUSBPEDAL},
    {PedalDialog::Serial, "SER", &R::LEFTSERPEDAL, &R::MIDSERPEDAL, &R::RIGHTSERPEDAL},
    {PedalDialog::Game, "GAME", &R::LEFTGAMEPEDAL, &R::MIDGAMEPEDAL, &R::RIGHTGAMEPEDAL},
};

class PedalAssignmentsFormTest : public ::testing::TestWithParam<Device> {
  protected:
    testing::TempFolder folder;
    settings::ConfigFile config{folder.path()};
    testing::ScriptedPrompts prompts;
    const Device& device = GetParam();

    void assign(const char* left, const char* middle, const char* right) {
        config.record.*device.left = left;
        config.record.*device.middle = middle;
        config.record.*device.right = right;
    }
    [[nodiscard]] std::vector<std::string> pedals() const {
        return {config.record.*device.left, config.record.*device.middle,
                config.record.*device.right};
    }
    [[nodiscard]] std::string notDefined(const char* pedal) const {
        return std::string(pedal) + " " + device.word + " PEDAL has not been defined.";
    }
    [[nodiscard]] std::vector<std::string> onDisk() const {
        settings::ConfigFile written(folder.path());
        written.ReadConfig();
        return {written.record.*device.left, written.record.*device.middle,
                written.record.*device.right};
    }
};

TEST_P(PedalAssignmentsFormTest, AFunctionBelongsToOnePedalAndOkWantsEveryPedalInOrder) {
    assign("STEPLIST", "RECSTOP", "EOLSTOP");
    PedalAssignmentsForm form(device.dialog, config, prompts);
    EXPECT_TRUE(form.option(kStepList, kLeft));
    EXPECT_TRUE(form.option(kEolStop, kRight));
    EXPECT_FALSE(form.option(kEolStop, kLeft));
    EXPECT_TRUE(form.rowMarked(kRecStop));
    EXPECT_FALSE(form.rowMarked(kStepFwd));

    // Left takes end of letter from the right pedal: the right pedal has nothing now.
    form.clickOption(kEolStop, kLeft);
    EXPECT_EQ(pedals(), (std::vector<std::string>{"EOLSTOP", "RECSTOP", ""}));
    EXPECT_FALSE(form.rowMarked(kStepList));
    EXPECT_FALSE(form.ok());
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{notDefined("RIGHT")});

    form.clickOption(kStepFwd, kRight);
    EXPECT_TRUE(form.ok());
    EXPECT_EQ(onDisk(), (std::vector<std::string>{"EOLSTOP", "RECSTOP", "STEPFWD"}));
}

TEST_P(PedalAssignmentsFormTest, OkNamesTheFirstPedalWithoutAFunction) {
    struct Case {
        const char* left;
        const char* middle;
        const char* right;
        const char* first;
    };
    for (const Case& c : {Case{"", "", "", "LEFT"}, Case{"STEPLIST", "", "", "MIDDLE"},
                          Case{"STEPLIST", "RECSTOP", "", "RIGHT"},
                          Case{"STEPLIST", "FASTER", "EOLSTOP", "MIDDLE"}}) {
        prompts.clear();
        assign(c.left, c.middle, c.right);
        PedalAssignmentsForm form(device.dialog, config, prompts);
        EXPECT_FALSE(form.ok());
        EXPECT_EQ(prompts.texts(), std::vector<std::string>{notDefined(c.first)})
            << c.left << "/" << c.middle << "/" << c.right;
    }
    EXPECT_TRUE(config.record.*device.middle == "")
        << "a function the dialog doesn't know is dropped";
}

TEST_P(PedalAssignmentsFormTest, CancelKeepsTheClicksInMemoryButWritesNothing) {
    assign("STEPLIST", "RECSTOP", "EOLSTOP");
    ASSERT_TRUE(config.WriteConfig());
    {
        PedalAssignmentsForm form(device.dialog, config, prompts);
        form.clickOption(kStepList, kRight);
        form.clickOption(kRecStop, kLeft);
    }  // Cancel: the dialog goes without OK
    EXPECT_EQ(pedals(), (std::vector<std::string>{"RECSTOP", "", "STEPLIST"}));
    EXPECT_EQ(onDisk(), (std::vector<std::string>{"STEPLIST", "RECSTOP", "EOLSTOP"}));
    EXPECT_TRUE(prompts.transcript().empty());
}

TEST_P(PedalAssignmentsFormTest, OnlyTheSerialDialogKnowsTwoPedalUnits) {
    assign("STEPLIST", "RECSTOP", "EOLSTOP");
    PedalAssignmentsForm form(device.dialog, config, prompts);
    form.clickTwoPedal(true);
    const bool serial = device.dialog == PedalDialog::Serial;
    EXPECT_EQ(form.middleColumnShown(), !serial);
    EXPECT_EQ(config.record.TwoPedalsSER, serial);
    form.clickOption(kStepFwd, kMiddle);
    EXPECT_EQ(form.option(kStepFwd, kMiddle), !serial) << "a hidden pedal takes no click";
    if (!serial) return;
    EXPECT_TRUE(form.ok()) << "left and right are enough";
    EXPECT_TRUE(prompts.transcript().empty());
    EXPECT_EQ(onDisk(), (std::vector<std::string>{"STEPLIST", "", "EOLSTOP"}));
}

INSTANTIATE_TEST_SUITE_P(EveryDevice, PedalAssignmentsFormTest, ::testing::ValuesIn(kDevices),
                         [](const ::testing::TestParamInfo<Device>& param) {
                             return std::string(param.param.word);
                         });

}  // namespace
}  // namespace ovd::devices
