#pragma once
// The texts the FTP windows show in their boxes and status lines, and the keys of
// their tool bars and button twins: one place, since the manual and the unattended
// window and the setup windows share most of them.

#include <string>

namespace ovd::ftp {

inline constexpr const char* kSessionEstablishedText = "Session is Established";
inline constexpr const char* kNoSessionText = "no Session";
inline constexpr const char* kNotConnectedText = "Not Connected.";
inline constexpr const char* kAlreadyConnectedText =
    "Already connected to an FTP Server...You must disconnect first.";
inline constexpr const char* kMustConnectFirstText =
    "Not connected to an FTP Server...You must connect first.";
inline constexpr const char* kDisconnectToChangeText =
    "To Change settings please disconnect from FTP Server";

inline constexpr const char* kDirectoryNamePrompt = "Please enter a name for this directory:";
inline constexpr const char* kDeleteTitle = "Delete?";
inline constexpr const char* kNewFileNamePrompt = "Please enter a new name for this file:";

inline constexpr const char* kZeroLengthText =
    "File must not be zero length to download. - File 'NOT' Downloaded";
inline constexpr const char* kUserCanceledText = "User canceled";
inline constexpr const char* kRunIncompleteText =
    "File Transfer or Move To did not complete sucessfully";
// The rule upload's failure: its words run together without the comma and the
// line break of the core's own connect text, and are kept so.
inline constexpr const char* kRuleUploadFailedText =
    "Can't Connect to Server. Please check Username, IP address, Password on your connection to "
    "the internet.or check to see if Server is available";
inline constexpr const char* kCompleteSoundName = "complete.wav";

inline constexpr const char* kNoTranscriberText =
    "No Current Transcriber selected'  Information Not Available";
// The question as the setup windows have always asked it, its end cut off.
inline constexpr const char* kEncryptKeyMissingQuestion =
    "You have indicated you would like to encrypt the files sent to the FTP Site, but you did "
    "not supply an ecryption key. Please do so n";

// Tool bar keys and their button twins.
inline constexpr const char* kConnectKey = "id_FTPTasksFTPConnect";
inline constexpr const char* kDisconnectKey = "id_FTPTasksFTPDisconnect";
inline constexpr const char* kDownloadKey = "id_FTPTasksDownloadFiles";
inline constexpr const char* kUploadKey = "id_FTPTasksUPLoadFiles";
inline constexpr const char* kDeleteKey = "id_FTPTasksDeleteItems";
inline constexpr const char* kRenameKey = "id_FTPTasksRenameFile";
inline constexpr const char* kRefreshKey = "id_FTPTasksRefreshAutoDirectoryListing";
inline constexpr const char* kCreateDirectoryKey = "id_FTPTasksCreateDirectory";
inline constexpr const char* kUnattendedKey = "id_UnAttended";
inline constexpr const char* kViewInfoKey = "id_ViewFTPInfo";
inline constexpr const char* kSettingsKey = "id_Settings";
inline constexpr const char* kExitKey = "id_Exit";
inline constexpr const char* kAboutKey = "id_About";
inline constexpr const char* kConnectButton = "ID_BUTFTPConnect";
inline constexpr const char* kDisconnectButton = "ID_BUTFTPDisconnect";
inline constexpr const char* kDownloadButton = "ID_ButDownloadFromServer";
inline constexpr const char* kUploadButton = "ID_ButUploadFileToServer";
inline constexpr const char* kDeleteButton = "ID_BUTDeleteItem";
inline constexpr const char* kRefreshButton = "ID_BUTRefreshDirectory";
inline constexpr const char* kRenameButton = "ID_BUTRenameFile";
inline constexpr const char* kCreateDirectoryButton = "ID_BUTCreateFTPDirectory";

std::string connectedStatusText(const std::string& host, const std::string& user,
                                const std::string& time);
std::string directoryCreatedText(const std::string& name);
std::string deleteQuestionText(const std::string& name);
std::string directoryRemovedText(const std::string& name);
std::string fileDeletedText(const std::string& name);
std::string fileRenamedText(const std::string& name, const std::string& newName);

}  // namespace ovd::ftp
