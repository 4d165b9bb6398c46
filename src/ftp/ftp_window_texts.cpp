#include "ftp/ftp_window_texts.h"

namespace ovd::ftp {

std::string connectedStatusText(const std::string& host, const std::string& user,
                                const std::string& time) {
    return "Connected to " + host + " as " + user + " at " + time;
}

std::string directoryCreatedText(const std::string& name) {
    return "Directory " + name + " was successfully created.";
}

std::string deleteQuestionText(const std::string& name) {
    return "Are you sure you want to delete " + name;
}

std::string directoryRemovedText(const std::string& name) {
    return "Directory " + name + " was successfully removed.";
}

std::string fileDeletedText(const std::string& name) {
    return "The file " + name + " was successfully deleted.";
}

std::string fileRenamedText(const std::string& name, const std::string& newName) {
    return "The file " + name + " was successfuly renamed to " + newName;
}

}  // namespace ovd::ftp
