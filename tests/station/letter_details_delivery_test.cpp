// A letter's details go wherever the letter goes at the end of letter: inside a
// wave file's own tags, and in the text file beside a RAW letter, in both
// destination folders and in the e-mail staging folder.

#include <gtest/gtest.h>

#include <filesystem>

#include "engine/file_tags.h"
#include "letter_delivery_fixture.h"
#include "settings/encoder_options.h"

namespace ovd::station {
namespace {

namespace fs = std::filesystem;

const engine::LetterDetails kDetails = {{"Y-Author", "Dr Brown"},
                                        {"SF-Meeting Name", "Ward round"}};

class LetterDetailsDeliveryTest : public testing::LetterDeliveryFixture {
  protected:
    // A letter dictated with its details, then the end of letter; its name.
    std::string dictateWithDetails() {
        d().newLetter();
        d().recordTake();
        run(1500);
        EXPECT_TRUE(d().setLetterDetails(kDetails));
        run(1500);
        d().stop();
        const std::string name = fs::path(state().Filename).filename();
        eol.startEndOfLetter();
        return name;
    }

    std::vector<std::string> copiesOf(const std::string& name) {
        return {config.record.SendToOne + "/" + name, config.record.SendToTwo + "/" + name,
                recordings + "/EmailTemp/" + name};
    }
};

TEST_F(LetterDetailsDeliveryTest, AWaveLetterCarriesItsDetailsInsideEveryCopy) {
    const std::string name = dictateWithDetails();
    for (const std::string& copy : copiesOf(name)) {
        SCOPED_TRACE(copy);
        EXPECT_EQ(engine::readLetterDetails(copy), kDetails);
        EXPECT_FALSE(platform::fileExists(engine::detailsFilePath(copy)));
    }
    EXPECT_TRUE(d().letterDetails().empty()) << "the next letter starts without details";
}

TEST_F(LetterDetailsDeliveryTest, ARawLetterTakesItsDetailsFileAlongToEveryCopy) {
    config.record.FormatType = "RAW";
    ASSERT_TRUE(settings::storeRawLayout(folder.path(), {2, 1, 4}));
    const std::string name = dictateWithDetails();
    for (const std::string& copy : copiesOf(name)) {
        SCOPED_TRACE(copy);
        ASSERT_TRUE(platform::fileExists(copy));
        const auto text = platform::readWholeFile(engine::detailsFilePath(copy));
        ASSERT_TRUE(text);
        EXPECT_EQ(engine::detailsFromText(*text), kDetails);
    }
}

}  // namespace
}  // namespace ovd::station
