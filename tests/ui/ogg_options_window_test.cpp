// frmOgg as the editor's Save As opens it: the quality and the bit rate sliders
// take turns, OK hands back the Ogg Vorbis format chosen and keeps it for the
// next time, Cancel hands back nothing and keeps nothing.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>

#include "support/temp_folder.h"
#include "ui/format_windows.h"
#include "ui_test_helpers.h"

namespace ovd::ui {
namespace {

using testing::answering;

TEST(OggOptionsWindowTest, TheQualityAndTheBitRatesTakeTurnsAndOkHandsBackTheChoice) {
    ::ovd::testing::TempFolder data;
    std::optional<engine::TargetFormat> chosen;
    const bool answered = answering<OggOptionsWindow>(
        [](OggOptionsWindow& window) {
            auto* quality = window.findChild<QCheckBox*>("chQuality");
            auto* nominal = window.findChild<QSlider*>("sldrBitrate");
            auto* minimum = window.findChild<QSlider*>("sldrMinBitrate");
            auto* maximum = window.findChild<QSlider*>("sldrMaxBitrate");
            auto* vbr = window.findChild<QCheckBox*>("chVbr");
            ASSERT_TRUE(quality && nominal && minimum && maximum && vbr);
            EXPECT_TRUE(quality->isChecked());
            EXPECT_TRUE(window.findChild<QSlider*>("sldrQuality")->isEnabled());
            EXPECT_FALSE(nominal->isEnabled());

            quality->setChecked(false);
            EXPECT_FALSE(window.findChild<QSlider*>("sldrQuality")->isEnabled());
            EXPECT_TRUE(nominal->isEnabled());
            EXPECT_FALSE(minimum->isEnabled()) << "the bounds wait for VBR";
            vbr->setChecked(true);
            EXPECT_TRUE(minimum->isEnabled());
            nominal->setValue(5);  // 112
            maximum->setValue(7);  // 160
            minimum->setValue(9);  // 224: the maximum comes along
            EXPECT_EQ(maximum->value(), 9);
            minimum->setValue(3);  // 80
            EXPECT_EQ(window.findChild<QLabel*>("lblBitrate")->text(),
                      "Current nominal bitrate: 112 kbit");
            EXPECT_EQ(window.findChild<QLabel*>("lblMinBitrate")->text(),
                      "Current min bitrate: 80 kbit");
            EXPECT_EQ(window.findChild<QLabel*>("lblMaxBitrate")->text(),
                      "Current max bitrate: 224 kbit");
            auto* frequency = window.findChild<QComboBox*>("cmbFrequency");
            frequency->setCurrentIndex(3);
            Q_EMIT frequency->activated(3);  // 16 000 Hz
            auto* mode = window.findChild<QComboBox*>("cmbChMode");
            mode->setCurrentIndex(0);
            Q_EMIT mode->activated(0);  // Mono
            window.findChild<QPushButton*>("cmdOK")->click();
        },
        [&] { chosen = askOggOptions(data.path(), nullptr); });
    ASSERT_TRUE(answered);
    ASSERT_TRUE(chosen);
    EXPECT_EQ(chosen->word, engine::FormatWord::OGG);
    EXPECT_EQ(chosen->sampleRate, 16000);
    EXPECT_EQ(chosen->channels, 1);
    EXPECT_FALSE(chosen->ogg.byQuality);
    EXPECT_TRUE(chosen->ogg.variable);
    EXPECT_EQ(chosen->ogg.nominalKbps, 112);
    EXPECT_EQ(chosen->ogg.minKbps, 80);
    EXPECT_EQ(chosen->ogg.maxKbps, 224);

    // Opened again, it shows what the encoder was given; Cancel keeps that as it was.
    std::optional<engine::TargetFormat> cancelled = engine::TargetFormat{};
    ASSERT_TRUE(answering<OggOptionsWindow>(
        [](OggOptionsWindow& window) {
            EXPECT_FALSE(window.findChild<QCheckBox*>("chQuality")->isChecked());
            EXPECT_EQ(window.findChild<QSlider*>("sldrBitrate")->value(), 5);
            window.findChild<QCheckBox*>("chQuality")->setChecked(true);
            window.findChild<QPushButton*>("cmdCancel")->click();
        },
        [&] { cancelled = askOggOptions(data.path(), nullptr); }));
    EXPECT_FALSE(cancelled);
    EXPECT_EQ(configuration::OggOptionsDialog(data.path()).target(), *chosen);
}

}  // namespace
}  // namespace ovd::ui
