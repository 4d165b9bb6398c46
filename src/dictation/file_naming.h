#pragma once
// The name of a new dictation, made before the first word is spoken: the number
// is advanced and consumed at once, the pieces (label, speaker, date, number or
// time stamp, bar code) are put together in the order of the scheme in force,
// and an existing file is only overwritten when the user says so. Also the
// priority marker every save adds, and the speaker box of the main window.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "conversion/format_in_force.h"
#include "dictation/announced_view.h"
#include "dictation/dictation_state.h"
#include "dictation/main_view.h"
#include "engine/format_selection.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "settings/passwords_tables.h"

namespace ovd::dictation {

inline constexpr const char* kSequenceTooLongMessage =
    "You have exceded the maximum Sequential Number.\r\n"
    "Please goto the Configuration Drop Down menu and change your options\r\n"
    "File Can Not be saved at this time!";
inline constexpr const char* kBarCodePrompt = "Enter bar code.";
inline constexpr const char* kBarCodeTitle = "End Of File Name";
inline constexpr const char* kOverwriteQuestion = "Overwrite existing file?";
inline constexpr const char* kPriorityMarker = "-PRIORITY.";
// The answers the collision question leaves in Response.
inline constexpr const char* kResponseYes = "6";
inline constexpr const char* kResponseNo = "7";
// The mode of the file dialog that picks the name of a new file.
inline constexpr int kChooseForNew = 3;

// What naming reaches beyond itself: the closing and the reset of the
// transport, the engine's format step, the save timer, the file dialog and the
// peer link. The station implements it; the naming never sees those parts.
class NamingHooks {
  public:
    virtual ~NamingHooks() = default;

    // Closes whatever is loaded, as the close routine does.
    virtual void CaseClose() = 0;
    // Clears the dictation's flags and labels and writes the settings.
    virtual void ResetRecorderState() = 0;
    // The format step of the group in force (with the engine's own RAW options):
    // the new document is opened in that format.
    virtual void prepareFormat(const engine::FormatGroup& group) = 0;
    // timSave on.
    virtual void startSaveTimer() = 0;
    // The file dialog (1 open, 2 save as, 3 new). Nothing when the user cancels,
    // the dialog having told the user so.
    virtual std::optional<std::string> ChooseFileName(int mode) = 0;
    // "LOADED_", the name and CR LF to the peer, with the link's wait for it.
    // Returns the link's error text, empty when the message went out.
    virtual std::string sendLoaded(const std::string& baseName) = 0;
    // The user refused to overwrite: the peer hears that the file it was told of
    // is given up.
    virtual void tellPeerNewFileRefused() = 0;
};

using conversion::chosenFormatGroup;

// The name with "-PRIORITY." between its stem and its extension.
std::string withPriorityMarker(const std::string& filename);

// Run at every save (the save itself and the periodic one): with PriorityOn the
// marker goes in again. The flag stays on, so a file saved three times carries
// the marker three times; that is how the station has always behaved.
void addPriorityMarker(DictationState& state);

class FileNaming {
  public:
    FileNaming(DictationState& state, AnnouncedView& view, settings::ConfigFile& config,
               settings::EventLog& log, platform::Prompts& prompts,
               const platform::EventLoop& clock, settings::SpeakersTable& speakers,
               NamingHooks& hooks);

    // Advances and consumes the number, names the file and, when a name came
    // out, starts the take in the format in force. Leaves Filename empty and
    // UserSelectedNo true when the new file is abandoned.
    void Newfile();
    // Leaves Filename set, or empty after a refusal.
    void CreateFileName();

    // Fills the speaker box from the active speakers, and puts the current
    // speaker's number in DictatorSeqNo. A speaker no longer listed is cleared.
    void ComboFill();
    // The user picks a speaker from the box: any spelling of a listed name finds
    // it. False, and nothing changed, when no listed name matches.
    bool pickDictator(const std::string& name);

    [[nodiscard]] const std::vector<std::string>& dictatorNames() const { return names_; }
    [[nodiscard]] const std::vector<std::int32_t>& dictatorSeqNos() const { return seqNos_; }

  private:
    void consumeNumber();
    void setCurrentFormatType();
    // The name without folder or extension; nothing when the number is too wide.
    std::optional<std::string> composeName(std::size_t numberLength);
    void showMadeName(const std::string& folder, const std::string& name);
    void announce();
    void askBeforeOverwriting();
    std::optional<std::size_t> listIndexOf(const std::string& name) const;

    DictationState& state_;
    AnnouncedView& view_;
    settings::ConfigFile& config_;
    settings::EventLog& log_;
    platform::Prompts& prompts_;
    const platform::EventLoop& clock_;
    settings::SpeakersTable& speakers_;
    NamingHooks& hooks_;

    // The speaker box: names in list order and the number of each.
    std::vector<std::string> names_;
    std::vector<std::int32_t> seqNos_;
};

}  // namespace ovd::dictation
