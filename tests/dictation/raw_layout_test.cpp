// A take in the RAW format is made and saved in the layout the RAW options window
// kept in the data folder: headerless samples, so the file's size tells the
// layout, and a take at any other rate than the layout's would not be made at all.

#include "dictation_fixture.h"
#include "settings/encoder_options.h"

namespace ovd::dictation::testing {
namespace {

class RawLayoutTest : public DictationTest {};

TEST_F(RawLayoutTest, ARawTakeIsSavedInTheLayoutKept) {
    struct Case {
        settings::RawLayout layout;
        int bytesPerSecond;
    };
    // The microphone of the fixture speaks mono at 16000 Hz, so the rate and the
    // channels are those; the companding changes the size.
    const Case cases[] = {
        {{0, 1, 4}, 16000},      // mu-law
        {{2, 1, 4}, 16000 * 2},  // 16-bit
        {{1, 1, 4}, 16000},      // A-law
    };
    config.record.FormatType = "RAW";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytesPerSecond);
        ASSERT_TRUE(settings::storeRawLayout(folder.path(), c.layout));
        dictate(3000);
        const std::string name = state().Filename;
        d().closeFile();
        const auto bytes = platform::fileSize(name);
        ASSERT_TRUE(bytes) << name;
        // Three seconds, give or take the timer ticks that start and end a take.
        EXPECT_NEAR(static_cast<double>(*bytes) / c.bytesPerSecond, 3.0, 0.2);
    }
}

}  // namespace
}  // namespace ovd::dictation::testing
