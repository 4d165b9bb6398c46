#include "station/file_saves_hooks.h"

namespace ovd::station {

configuration::FileSavesHooks fileSavesHooksFor(dictation::Dictation& dictation) {
    configuration::FileSavesHooks hooks;
    hooks.recording = [&dictation] { return dictation.state().Recordingstatus; };
    hooks.saveTakeAndOpenNext = [&dictation] {
        dictation.CaseStop();
        dictation.closeFile();
        dictation.newLetter();
    };
    hooks.fileChanged = [&dictation] { return dictation.state().FileChanged; };
    return hooks;
}

}  // namespace ovd::station
