// The naming boxes: what leaving the starting number, typing the places and
// resetting the numbering do, and how the save treats the numbering.

#include "configuration/file_saves_texts.h"
#include "file_saves_fixture.h"

namespace ovd::configuration::testing {
namespace {

struct LeaveCase {
    const char* typed;
    const char* places;
    const char* number;       // Text2 afterwards
    const char* placesAfter;  // Text4 afterwards
    std::string message;      // "" for none
};

TEST_F(FileSavesTest, LeavingTheStartingNumberKeepsItWithinItsPlaces) {
    const std::string tooMany4 = std::string(kTooManyDigitsFront) + "4" + kTooManyDigitsBack;
    const std::string tooMany2 = std::string(kTooManyDigitsFront) + "2" + kTooManyDigitsBack;
    const LeaveCase cases[] = {
        {"0123", "4", "", "4", ""},          {"12", "", "12", "5", ""},
        {"", "", "", "", kNoPlacesMessage},  {"12345", "4", "1", "1", tooMany4},
        {"123", "2", "1", "2", tooMany2},    {"1234567", "5", "1", "5", kOverFivePositions},
        {"7a", "4", "", "4", kEnterANumber},
    };
    for (const LeaveCase& c : cases) {
        SCOPED_TRACE(c.typed + std::string(" / ") + c.places);
        prompts.clear();
        FileSavesForm& f = open();
        f.chooseSequentialNaming();
        f.setStartingNumber(c.typed);
        f.setPlaces(c.places);
        f.leaveStartingNumber();
        EXPECT_EQ(f.controls().startingNumber, c.number);
        EXPECT_EQ(f.controls().places, c.placesAfter);
        if (c.message.empty()) {
            EXPECT_TRUE(prompts.texts().empty());
        } else {
            EXPECT_EQ(prompts.texts(), std::vector<std::string>{c.message});
        }
    }
}

TEST_F(FileSavesTest, LeavingTheStartingNumberDoesNothingWithDateAndTimeNaming) {
    FileSavesForm& f = open();
    f.setStartingNumber("1234567");
    f.leaveStartingNumber();
    EXPECT_EQ(f.controls().startingNumber, "1234567");
    EXPECT_TRUE(prompts.texts().empty());
}

TEST_F(FileSavesTest, PlacesTakeOneToFiveOnly) {
    FileSavesForm& f = open();
    for (const char* refused : {"0", "6", "05", "x", "-1", ""}) {
        f.setPlaces(refused);
        EXPECT_EQ(f.controls().places, "") << refused;
    }
    f.setPlaces("3");
    EXPECT_EQ(f.controls().places, "3");
}

TEST_F(FileSavesTest, ResetNumberingStoresTheNumberAtOnce) {
    FileSavesForm& f = open();
    f.chooseSequentialNaming();
    f.setStartingNumber("40");
    f.setPlaces("3");
    f.resetNumbering();
    const settings::SettingsRecord disk = stored();
    EXPECT_EQ(disk.FileNameIncrement.toText(), "40");
    EXPECT_EQ(disk.FileNameIncrementStartingNum.toText(), "40");
    EXPECT_EQ(disk.Places, 3);

    f.setStartingNumber("4O");
    f.resetNumbering();
    EXPECT_TRUE(shown(kEnterANumber));
    EXPECT_EQ(stored().FileNameIncrement.toText(), "40");
}

TEST_F(FileSavesTest, SequentialWithoutLabelBoxComesOutLabelled) {
    FileSavesForm& f = open();
    f.setAddLabel(false);
    f.chooseSequentialNaming();
    f.setStartingNumber("12");
    EXPECT_EQ(f.save(), SaveOutcome::Saved);
    const settings::SettingsRecord disk = stored();
    EXPECT_TRUE(disk.FileLabelActive);
    EXPECT_TRUE(disk.SequentialNumbering.toBool());
    EXPECT_EQ(closes, 1);
}

TEST_F(FileSavesTest, UnlabelledDateTimeNamingIsLabelledAgainAtTheEnd) {
    FileSavesForm& f = open();
    f.setAddLabel(false);
    EXPECT_EQ(f.save(), SaveOutcome::Saved);
    const settings::SettingsRecord disk = stored();
    EXPECT_TRUE(disk.FileLabelActive);
    EXPECT_FALSE(disk.SequentialNumbering.toBool());
}

TEST_F(FileSavesTest, AnIncompleteNumberingStopsTheSaveAfterTheStepsBeforeIt) {
    struct Case {
        const char* number;
        const char* places;
        const char* message;
    };
    for (const Case& c : {Case{"", "4", kFillStartingNumber}, Case{"9", "", kFillPlaces}}) {
        SCOPED_TRACE(c.message);
        prompts.clear();
        closes = 0;
        FileSavesForm& f = open();
        f.chooseSequentialNaming();
        f.setStartingNumber(c.number);
        f.setPlaces(c.places);
        f.setJumpBackSeconds("7");
        f.setRecovery(true);
        EXPECT_EQ(f.save(), SaveOutcome::StoppedAtStep);
        EXPECT_TRUE(shown(c.message));
        EXPECT_EQ(closes, 0);
        // In force in memory, as far as the save came, but nothing written yet.
        EXPECT_TRUE(config.record.SequentialNumbering.toBool());
        EXPECT_EQ(config.record.JumpBackSecs, 7);
        EXPECT_TRUE(config.record.RecoveryModule);
        EXPECT_FALSE(stored().RecoveryModule);
        config.record.SequentialNumbering = false;
    }
}

TEST_F(FileSavesTest, ASevenDigitNumberIsNeverStored) {
    FileSavesForm& f = open();
    f.chooseSequentialNaming();
    f.setPlaces("5");
    f.setStartingNumber("1234567");
    EXPECT_EQ(f.save(), SaveOutcome::StoppedAtStep);
    EXPECT_TRUE(shown(kOverFivePositions));
    EXPECT_EQ(f.controls().startingNumber, "1");
    EXPECT_EQ(stored().FileNameIncrement.toText(), "12");
    EXPECT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_EQ(stored().FileNameIncrement.toText(), "12");  // 1 is below the number in use
}

TEST_F(FileSavesTest, ALowerStartingNumberIsTakenOnlyWhileTheLetterHasChanges) {
    for (const bool changed : {false, true}) {
        SCOPED_TRACE(changed);
        fileChanged = changed;
        FileSavesForm& f = open();
        f.chooseSequentialNaming();
        f.setStartingNumber("5");
        EXPECT_EQ(f.save(), SaveOutcome::Saved);
        EXPECT_EQ(stored().FileNameIncrement.toText(), changed ? "5" : "12");
        config.record.FileNameIncrement = 12;
    }
    FileSavesForm& f = open();
    f.chooseSequentialNaming();
    f.setStartingNumber("30");
    EXPECT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_EQ(stored().FileNameIncrement.toText(), "30");
    EXPECT_EQ(stored().FileNameIncrementStartingNum.toText(), "30");
}

}  // namespace
}  // namespace ovd::configuration::testing
