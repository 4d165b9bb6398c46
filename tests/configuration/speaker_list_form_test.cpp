// The speaker list window's model over a real Passwords.db and settings file in a
// temporary data folder. Each case checks what the table and the settings file on
// disk hold afterwards, read again from scratch, and the texts shown.

#include "configuration/speaker_list_form.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "platform/files.h"
#include "settings/config_file.h"
#include "settings/databases.h"
#include "settings/event_log.h"
#include "settings/passwords_tables.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::configuration {
namespace {

using platform::Answer;

class SpeakerListTest : public ::testing::Test {
  protected:
    SpeakerListTest() {
        config.record.AddNameToFile = true;
        config.record.CurrentSpeaker = "Anne";
        if (!config.WriteConfig()) ADD_FAILURE() << "settings not written";
    }

    // The table as another window would find it, with the rows given.
    void listed(const std::vector<std::pair<std::string, bool>>& rows) {
        settings::SpeakersTable table(folder.path());
        for (const auto& [name, active] : rows) ASSERT_TRUE(table.addSpeaker(name, active));
    }

    SpeakerListForm& open() {
        SpeakerListHooks hooks;
        hooks.unsavedTake = [this] { return unsavedTake; };
        hooks.saveAndCloseLetter = [this] {
            ++letterCloses;
            unsavedTake = !closeSaves;
        };
        hooks.refreshSpeakerBox = [this] {
            ++boxRefills;
            boxAfterRefill = speakers.loadSpeakers(config.record.CurrentSpeaker);
        };
        hooks.close = [this] { ++windowCloses; };
        form = std::make_unique<SpeakerListForm>(config, speakers, log, prompts, hooks);
        form->load();
        return *form;
    }

    // The table as the file on disk holds it.
    std::vector<settings::Speaker> stored() const {
        settings::SpeakersTable fresh(folder.path());
        return fresh.allSpeakers();
    }
    std::vector<std::string> storedNames() const {
        std::vector<std::string> names;
        for (const settings::Speaker& s : stored()) names.push_back(s.Dictator);
        return names;
    }
    settings::SettingsRecord storedSettings() const {
        settings::ConfigFile fresh(folder.path());
        fresh.ReadConfig();
        return fresh.record;
    }
    std::size_t rowOf(const std::string& name) const {
        const auto& rows = form->controls().rows;
        const auto at = std::find_if(rows.begin(), rows.end(),
                                     [&](const SpeakerRow& r) { return r.name == name; });
        EXPECT_NE(at, rows.end()) << name;
        return static_cast<std::size_t>(at - rows.begin());
    }

    ::ovd::testing::TempFolder folder;
    ::ovd::testing::VirtualEventLoop loop;
    settings::ConfigFile config{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    settings::SpeakersTable speakers{folder.path()};
    ::ovd::testing::ScriptedPrompts prompts;
    std::unique_ptr<SpeakerListForm> form;
    bool unsavedTake = false;
    bool closeSaves = true;
    int letterCloses = 0;
    int boxRefills = 0;
    int windowCloses = 0;
    settings::SpeakerChoice boxAfterRefill;
};

struct AddCase {
    const char* typed;
    bool active;
    std::vector<std::string> namesAfter;
    std::vector<std::string> texts;  // message, then title
};

TEST_F(SpeakerListTest, AddRefusesBlankAndAnyCaseOfAListedNameAndStartsNewOnesAtZero) {
    const std::vector<AddCase> cases = {
        {"", true, {"Anne", "carl"}, {"Speaker/Dictator cannot be blank.", "Please try again!"}},
        {"   ", true, {"Anne", "carl"}, {"Speaker/Dictator cannot be blank.", "Please try again!"}},
        {"ANNE", true, {"Anne", "carl"}, {"This Speaker/Dictator is already in the list."}},
        {" Carl ", true, {"Anne", "carl"}, {"This Speaker/Dictator is already in the list."}},
        {"bob", false, {"Anne", "bob", "carl"}, {}},
    };
    listed({{"Anne", true}, {"carl", true}});
    for (const AddCase& c : cases) {
        SCOPED_TRACE(c.typed);
        prompts.clear();
        SpeakerListForm& f = open();
        f.setNewSpeaker(c.typed);
        f.setActive(c.active);
        EXPECT_EQ(f.add(), c.texts.empty());
        EXPECT_EQ(storedNames(), c.namesAfter);
        if (c.texts.empty()) {
            EXPECT_TRUE(prompts.transcript().empty());
        } else {
            ASSERT_EQ(prompts.transcript().size(), 1u);
            EXPECT_EQ(prompts.transcript()[0].text, c.texts[0]);
            if (c.texts.size() > 1) {
                EXPECT_EQ(prompts.transcript()[0].title, c.texts[1]);
            }
        }
    }
    const auto rows = stored();
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[1].LastSeqNo, 0);
    EXPECT_FALSE(rows[1].Active);
    EXPECT_EQ(form->controls().rows[1].status, "False");
    EXPECT_EQ(form->controls().newSpeaker, "");
}

struct ChangeCase {
    const char* row;
    const char* newName;
    bool addNameToFile;
    std::vector<std::string> namesAfter;
    const char* currentSpeakerAfter;
    const char* textShown;  // empty: the change goes through
};

TEST_F(SpeakerListTest, ChangeRenamesThePickedRowAndTheCurrentSpeakerFollowsWhileNamesAreOn) {
    const std::vector<ChangeCase> cases = {
        {"Anne", "", true, {"Anne", "carl"}, "Anne", "Speaker/Dictator cannot be blank!"},
        // Renaming onto another listed speaker would make two rows of one speaker.
        {"Anne",
         "CARL",
         true,
         {"Anne", "carl"},
         "Anne",
         "This Speaker/Dictator is already in the list."},
        // A row may change the case of its own name.
        {"Anne", "ANNE", true, {"ANNE", "carl"}, "ANNE", ""},
        {"ANNE", "Annette", false, {"Annette", "carl"}, "ANNE", ""},
        {"carl", "Carla", true, {"Annette", "Carla"}, "ANNE", ""},
    };
    listed({{"Anne", true}, {"carl", true}});
    for (const ChangeCase& c : cases) {
        SCOPED_TRACE(std::string(c.row) + " -> " + c.newName);
        prompts.clear();
        config.record.AddNameToFile = c.addNameToFile;
        SpeakerListForm& f = open();
        f.selectRow(rowOf(c.row));
        EXPECT_EQ(f.controls().newSpeaker, c.row);
        f.setNewSpeaker(c.newName);
        EXPECT_EQ(f.change(), std::string(c.textShown).empty());
        EXPECT_EQ(storedNames(), c.namesAfter);
        EXPECT_EQ(storedSettings().CurrentSpeaker, c.currentSpeakerAfter);
        if (std::string(c.textShown).empty()) {
            EXPECT_TRUE(prompts.transcript().empty());
        } else {
            ASSERT_EQ(prompts.transcript().size(), 1u);
            EXPECT_EQ(prompts.transcript()[0].text, c.textShown);
        }
    }
}

TEST_F(SpeakerListTest, SelectingARowShowsItsStatusAndAChangeCanDeactivateIt) {
    listed({{"Anne", true}, {"Bob", false}});
    SpeakerListForm& f = open();
    f.selectRow(rowOf("Bob"));
    EXPECT_FALSE(f.controls().active);
    f.selectRow(rowOf("Anne"));
    EXPECT_TRUE(f.controls().active);
    f.setActive(false);
    ASSERT_TRUE(f.change());
    EXPECT_FALSE(stored()[0].Active);
    // The main window's box no longer offers Anne, and no longer names files after her.
    EXPECT_TRUE(boxAfterRefill.names.empty());
    EXPECT_EQ(boxAfterRefill.CurrentSpeaker, "");
}

TEST_F(SpeakerListTest, DeleteNeedsAPickedRowAndTheDeletedCurrentSpeakerIsClearedAtTheNextLoad) {
    listed({{"Anne", true}, {"Bob", true}});
    SpeakerListForm& f = open();
    EXPECT_FALSE(f.deleteRow());
    ASSERT_EQ(prompts.transcript().size(), 1u);
    EXPECT_EQ(prompts.transcript()[0].text, "Please click on Status to be deleted..");
    EXPECT_EQ(prompts.transcript()[0].title, "Please try again!");
    EXPECT_EQ(storedNames(), (std::vector<std::string>{"Anne", "Bob"}));

    f.selectRow(rowOf("Anne"));
    ASSERT_TRUE(f.deleteRow());
    EXPECT_EQ(storedNames(), std::vector<std::string>{"Bob"});
    EXPECT_EQ(f.controls().rows.size(), 1u);
    EXPECT_FALSE(f.controls().selected.has_value());
    EXPECT_EQ(boxAfterRefill.names, std::vector<std::string>{"Bob"});
    EXPECT_EQ(boxAfterRefill.CurrentSpeaker, "");
}

struct TickCase {
    bool unsaved;
    Answer answer;
    bool closeSaves;
    bool stored;  // the tick reached the settings file
    int closes;
};

TEST_F(SpeakerListTest, NamingTicksUnderAnUnsavedTakeAskFirstAndAreUndoneOnNo) {
    const std::vector<TickCase> cases = {
        {false, Answer::No, true, true, 0},
        {true, Answer::Yes, true, true, 1},
        {true, Answer::No, true, false, 0},
        // The letter could not be saved: naming must not change under its take.
        {true, Answer::Yes, false, false, 1},
    };
    for (const bool nameTick : {true, false}) {
        for (const TickCase& c : cases) {
            SCOPED_TRACE(std::string(nameTick ? "name" : "date") + " unsaved " +
                         std::to_string(c.unsaved) + " closes " + std::to_string(c.closes));
            config.record.AddNameToFile = false;
            config.record.AddDateToName = false;
            ASSERT_TRUE(config.WriteConfig());
            prompts.clear();
            unsavedTake = c.unsaved;
            closeSaves = c.closeSaves;
            letterCloses = 0;
            boxRefills = 0;
            if (c.unsaved) prompts.answerNext(c.answer);
            SpeakerListForm& f = open();
            if (nameTick) {
                f.setAddNameToFile(true);
            } else {
                f.setAddDateToName(true);
            }
            const settings::SettingsRecord onDisk = storedSettings();
            EXPECT_EQ(nameTick ? onDisk.AddNameToFile : onDisk.AddDateToName, c.stored);
            EXPECT_EQ(nameTick ? f.controls().addNameToFile : f.controls().addDateToName, c.stored);
            EXPECT_EQ(letterCloses, c.closes);
            EXPECT_EQ(boxRefills, c.stored ? 1 : 0);
            if (c.unsaved) {
                ASSERT_EQ(prompts.transcript().size(), 1u);
                EXPECT_EQ(prompts.transcript()[0].text, kSpeakerCloseLetterFirst);
            } else {
                EXPECT_TRUE(prompts.transcript().empty());
            }
        }
    }
}

TEST_F(SpeakerListTest, CancelWithATypedNameAsksBeforeLeaving) {
    listed({{"Anne", true}});
    SpeakerListForm& f = open();
    f.selectRow(0);
    EXPECT_TRUE(f.cancel());  // a picked name is not unsaved text
    EXPECT_TRUE(prompts.transcript().empty());

    f.setNewSpeaker("Zoe");
    prompts.answerNext(Answer::No);
    EXPECT_FALSE(f.cancel());
    prompts.answerNext(Answer::Yes);
    EXPECT_TRUE(f.cancel());
    EXPECT_EQ(prompts.transcript().size(), 2u);
    EXPECT_EQ(windowCloses, 2);
}

TEST_F(SpeakerListTest, ATableThatCannotBeReadShowsAnEmptyListAndTheFailureIsLogged) {
    ASSERT_TRUE(platform::writeWholeFile(folder.file(settings::kPasswordsDatabaseFile),
                                         "this is not a database"));
    SpeakerListForm& f = open();
    EXPECT_TRUE(f.controls().rows.empty());
    f.setNewSpeaker("Anne");
    EXPECT_FALSE(f.add());
    EXPECT_TRUE(f.controls().rows.empty());
    EXPECT_NE(log.text().find("Speaker list: could not add Anne"), std::string::npos);
}

}  // namespace
}  // namespace ovd::configuration
