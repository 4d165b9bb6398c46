#pragma once
// The entry rules every record window shares: how transcribers are told apart by the
// first six characters of their company name, what a key may hold, and the texts
// these windows show in more than one place.

#include <string>
#include <string_view>
#include <vector>

namespace ovd::settings {

inline constexpr const char* kReadErrorMessage = "An Error has Occurd";
inline constexpr const char* kSpacesNotAllowedMessage = "Please try again. Spaces are not allowed";
inline constexpr const char* kKeyCautionMessage =
    "Caution: Once the encryption key is entered and saved.  No changes are allowed";
inline constexpr const char* kTwoCharactersPrompt =
    "Please Enter Two Unique Characters to associate this Encryption Key with.";
inline constexpr const char* kEditEncryptionKeyCommand = "id_EditEncryptionKey";
inline constexpr const char* kSaveToClipboardCommand = "id_SaveInformationtoClipboard";
inline constexpr const char* kCompanyNotEnteredRecordMessage =
    "Company Name field has not been entered-Record is not saved";
inline constexpr const char* kKeyNotEnteredRecordMessage =
    "Transcibers Encrypt/Decrypt field has not been entered-Record is not saved";
inline constexpr const char* kNewNameBlankKeyMessage =
    "A new company name has been entered but the ecryption field is blank";
inline constexpr const char* kExitWithoutSavingQuestion =
    "Do you want to exit? If Yes record will not be saved ";
inline constexpr const char* kKeyChangedMessage =
    "The Transcriber encryption key has changed but the information has not been saved.";
inline constexpr const char* kSaveNowQuestion = "Do you want to save now? ";
inline constexpr const char* kSixCharactersClashMessage =
    "The first six characters of the Transcriber Company name you are trying to enter has "
    "matched a previously entered Transcriber. The first six characters of the Transcriber "
    "Company Name has to be different. Please change the Transcribers Company Name";

// The colour of a box that must be filled (pale yellow, 0xFFFF80 as BGR 8454143).
inline constexpr int kRequiredFieldColour = 8454143;

// The first six characters of a company name; a shorter name whole. A character is a
// whole UTF-8 sequence, so a name in any script is never cut inside a letter.
std::string firstSixCharacters(std::string_view companyName);

// The company among `existing` whose first six characters match those of `name`,
// without regard to case; `self` (the record being edited, if any) is not a match.
// Empty when there is none.
std::string sixCharactersClash(std::string_view name, const std::vector<std::string>& existing,
                               std::string_view self = {});

// A key may not hold a blank of any kind.
bool keyHasBlank(std::string_view key);

}  // namespace ovd::settings
