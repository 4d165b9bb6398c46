#include "walk/walk_commands.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "devices/pedal_events.h"
#include "platform/files.h"
#include "platform/text.h"
#include "station/file_saves_hooks.h"

namespace ovd::walk {

namespace {

using engine::SampleCount;

// The moves of the desk unit's switch; the other command words come from the pedals.
constexpr std::array<const char*, 4> kSwitchWords = {"LISTEN", "STOP", "STEPBACK", "Record"};

SampleCount perMille(WalkStation& s, int value) {
    return s.editor1().Length() * std::clamp(value, 0, 1000) / 1000;
}

// The audio files of the recordings folder, in name order.
std::vector<std::string> lettersOnDisk(WalkStation& s) {
    std::vector<std::string> letters;
    for (const std::string& name : platform::filesInFolder(s.recordings)) {
        const std::string upper = platform::toUpper(name);
        if (upper.ends_with(".WAV") || upper.ends_with(".MP3"))
            letters.push_back(s.recordings + "/" + name);
    }
    return letters;
}

std::string extensionOfFileInHand(WalkStation& s) {
    const std::string& name = s.d().state().Filename;
    const auto dot = name.find_last_of('.');
    if (dot == std::string::npos || name.find('/', dot) != std::string::npos) return ".wav";
    return name.substr(dot);
}

void open(WalkStation& s, const Step& step) {
    const auto letters = lettersOnDisk(s);
    if (letters.empty()) return;
    s.prompts.nextFile = letters[static_cast<std::size_t>(step.a) % letters.size()];
    s.d().openLetter();
    s.prompts.nextFile.reset();
}

void openRecent(WalkStation& s, const Step& step) {
    const auto recent = s.d().view().Reopen;
    if (recent.empty()) return;
    s.d().openRecentFile(recent[static_cast<std::size_t>(step.a) % recent.size()]);
}

void saveAs(WalkStation& s, const Step& step) {
    s.prompts.nextFile = s.recordings + "/copy" + std::to_string(step.a) + extensionOfFileInHand(s);
    s.d().saveAs();
    s.prompts.nextFile.reset();
}

void select(WalkStation& s, const Step& step) {
    engine::WaveEditor& e = s.editor1();
    e.setSelectionActive(true);
    e.setSelectionStart(perMille(s, std::min(step.a, step.b)));
    e.setSelectionEnd(perMille(s, std::max(step.a, step.b)));
}

void deskButton(WalkStation& s, const Step& step) {
    const settings::SettingsRecord& r = s.config.record;
    const std::string* actions[] = {&r.BUT1, &r.BUT2, &r.BUT3, &r.BUT4,
                                    &r.BUT5, &r.BUT6, &r.BUT7, &r.BUT8};
    const int number = std::clamp(step.a, 1, 8);
    devices::SwitchModel& model = s.station().handsFree().switchModel;
    model.Switch1TO8ON(*actions[number - 1], number);
    model.buttonReleased(number);
}

// Not one of the author's: audio put into the file behind the dictation's back.
// Only the net's own test uses it, to see that the net catches it.
void tamper(WalkStation& s, const Step&) {
    engine::WaveEditor& e = s.editor1();
    e.setSelectionActive(true);
    e.setSelectionStart(0);
    e.setSelectionEnd(std::min<SampleCount>(e.Length(), 800));
    (void)e.Copy();
    e.setSelectionActive(false);
    e.setCursorPosition(e.Length());
    (void)e.Paste();
}

// The file-save settings changed from their window and saved at any moment, a take
// included: the naming, the next letter's format, crash protection or recovery.
void fileSaves(WalkStation& s, const Step& step) {
    configuration::FileSavesForm form(s.config, s.prompts, station::fileSavesHooksFor(s.d()),
                                      configuration::FormKind::Scrolling);
    form.load();
    const configuration::FileSavesControls& shown = form.controls();
    switch (step.a % 4) {
        case 0:
            if (shown.sequential) {
                form.chooseDateTimeNaming();
            } else {
                form.chooseSequentialNaming();
                form.setStartingNumber(std::to_string(step.b));
                form.leaveStartingNumber();
                form.setPlaces("4");
            }
            break;
        case 1:
            form.setFormat(false, shown.normal.format == "MP3" ? "WAV" : "MP3");
            break;
        case 2:
            form.setSaveAtStop(!shown.saveAtStop);
            break;
        default:
            form.setRecovery(!shown.recovery);
            break;
    }
    (void)form.save();
}

// ---- The second editor, beside the letter ----

second_editor::SecondEditor& second(WalkStation& s) { return s.station().secondEditor(); }

void secondOpen(WalkStation& s, const Step& step) {
    const SeedFiles& seeds = seedFiles();
    second(s).openFile(step.a % 2 == 0 ? seeds.shortWave : seeds.rampMp3);
}

void secondSelect(WalkStation& s, const Step& step) {
    const double total = second(s).view().totalSeconds;
    second(s).setSelectionStart(total * std::min(step.a, step.b) / 1000.0);
    second(s).setSelectionEnd(total * std::max(step.a, step.b) / 1000.0);
}

// The effect runs on its own thread; the walk waits for it so that a seed replays
// the same steps whatever the machine's speed.
void secondEffect(WalkStation& s, const Step& step) {
    second(s).setChSelect(step.b % 2 == 0);
    const auto effect =
        static_cast<engine::Effect>(step.a % (static_cast<int>(engine::Effect::LowShelf) + 1));
    if (!second(s).applyEffect(effect)) return;
    engine::WaveEditor& e = second(s).editor();
    for (int i = 0; i < 4000 && e.effectRunning(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        s.loop.runPending();
    }
    s.loop.runPending();
}

#define ROUTE(call) [](WalkStation& s, const Step&) { s.d().call; }
#define KEY(name) [](WalkStation& s, const Step&) { s.d().toolbarButton(name); }

}  // namespace

const std::vector<WalkCommand>& walkCommands() {
    // name, weight, control, author's edit, needs a selection, opens a file, a range, b range, run
    static const std::vector<WalkCommand> commands = {
        {"new", 3, Control::None, true, false, false, 0, 0, ROUTE(newLetter())},
        {"record", 10, Control::Record, true, false, false, 0, 0, ROUTE(recordTake())},
        {"stop", 10, Control::Stop, false, false, false, 0, 0, ROUTE(stop())},
        {"play", 6, Control::Play, false, false, false, 0, 0, ROUTE(play())},
        {"pause", 4, Control::Pause, false, false, false, 0, 0, ROUTE(pause())},
        {"prev", 2, Control::Prev, false, false, false, 0, 0, ROUTE(goToBeginning())},
        {"next", 2, Control::Next, false, false, false, 0, 0, ROUTE(goToEnd())},
        {"back", 4, Control::Back, false, false, false, 0, 0, ROUTE(stepBack())},
        {"step", 3, Control::Step, false, false, false, 0, 0, ROUTE(stepForward())},
        {"insert", 4, Control::Command2, true, false, false, 0, 0, ROUTE(insertAtCursor())},
        {"insertEnd", 3, Control::ButtonEx1, true, false, false, 0, 0, ROUTE(endInsert())},
        {"overwrite", 4, Control::cmdOVR, true, false, false, 0, 0, ROUTE(overwriteAtCursor())},
        {"beginning", 2, Control::Command1, true, false, false, 0, 0, ROUTE(addToBeginning())},
        {"appendEnd", 2, Control::ButtonEx2, true, false, false, 0, 0, ROUTE(endAppend())},
        {"rcInsertBeginning", 2, Control::None, true, false, false, 0, 0,
         ROUTE(insertAtBeginningFromMenu())},
        {"rcAppendEnd", 2, Control::None, true, false, false, 0, 0, ROUTE(appendAtEnd())},
        {"rcLast3Continue", 2, Control::None, false, false, false, 0, 0,
         ROUTE(lastThreeSecondsContinueFromMenu())},
        {"last3", 2, Control::None, false, false, false, 0, 0, ROUTE(replayLastThreeSeconds())},
        {"select", 4, Control::None, false, false, false, 1000, 1000, select},
        {"cursor", 3, Control::None, false, false, false, 1000, 0,
         [](WalkStation& s, const Step& step) {
             s.editor1().setCursorPosition(perMille(s, step.a));
         }},
        {"cut", 3, Control::None, true, true, false, 0, 0, KEY("Cut")},
        {"copy", 3, Control::None, false, true, false, 0, 0, KEY("Copy")},
        {"paste", 2, Control::None, true, false, false, 0, 0, KEY("Paste")},
        {"undo", 2, Control::None, true, false, false, 0, 0, KEY("Undo")},
        {"redo", 2, Control::None, true, false, false, 0, 0, KEY("Redo")},
        {"save", 3, Control::None, false, false, false, 0, 0, ROUTE(saveNow())},
        {"saveAs", 1, Control::None, true, false, true, 3, 0, saveAs},
        {"close", 2, Control::None, true, false, false, 0, 0, ROUTE(closeFile())},
        {"menuClose", 1, Control::None, true, false, false, 0, 0, ROUTE(closeFromMenu())},
        {"open", 2, Control::None, true, false, true, 20, 0, open},
        {"openRecent", 2, Control::None, true, false, true, 20, 0, openRecent},
        {"eol", 3, Control::cmdEOL, true, false, false, 0, 0, ROUTE(finishLetter())},
        {"switch", 8, Control::None, true, false, false, 3, 0,
         [](WalkStation& s, const Step& step) {
             s.station().handsFree().switchModel.SwitchCommand(
                 kSwitchWords[static_cast<std::size_t>(step.a) % 4]);
         }},
        {"button", 3, Control::None, true, false, true, 8, 0, deskButton},
        {"pedal", 12, Control::None, true, false, false, 5, 0,
         [](WalkStation& s, const Step& step) { s.pedal(std::clamp(step.a, 0, 5)); }},
        {"fileSaves", 2, Control::None, true, false, false, 3, 999, fileSaves},
        // The second editor: none of these is an edit of the letter. Its passage
        // reaches the letter only through the letter's own paste above.
        {"secondOpen", 1, Control::None, false, false, false, 1, 0, secondOpen},
        {"secondRecord", 2, Control::None, false, false, false, 0, 0,
         [](WalkStation& s, const Step&) { second(s).record(); }},
        {"secondPlay", 1, Control::None, false, false, false, 0, 0,
         [](WalkStation& s, const Step&) { second(s).play(); }},
        {"secondStop", 2, Control::None, false, false, false, 0, 0,
         [](WalkStation& s, const Step&) { second(s).stop(); }},
        {"secondSelect", 1, Control::None, false, false, false, 1000, 1000, secondSelect},
        {"secondEffect", 2, Control::None, false, false, false, 17, 1, secondEffect},
        {"secondCopy", 2, Control::None, false, false, false, 0, 0,
         [](WalkStation& s, const Step&) { second(s).copy(); }},
        {"secondBack", 1, Control::None, false, false, false, 0, 0,
         [](WalkStation& s, const Step&) { second(s).backToLetter(); }},
        {"tamper", 0, Control::None, false, false, false, 0, 0, tamper},
    };
    return commands;
}

const WalkCommand* findWalkCommand(std::string_view name) {
    for (const WalkCommand& command : walkCommands()) {
        if (command.name == name) return &command;
    }
    return nullptr;
}

bool controlEnabled(WalkStation& station, Control control) {
    const dictation::MainView& v = station.d().view();
    switch (control) {
        case Control::None:
            return true;
        case Control::Prev:
            return v.transportBar.Prev;
        case Control::Next:
            return v.transportBar.Next;
        case Control::Play:
            return v.transportBar.Play;
        case Control::Pause:
            return v.transportBar.Pause;
        case Control::Back:
            return v.transportBar.Back;
        case Control::Step:
            return v.transportBar.Step;
        case Control::Stop:
            return v.transportBar.Stop;
        case Control::Record:
            return v.transportBar.Record;
        case Control::Command1:
            return v.addToBeginningEnabled;
        case Control::Command2:
            return v.insertEnabled;
        case Control::cmdOVR:
            return v.overwriteEnabled;
        case Control::cmdEOL:
            return v.endOfLetterEnabled;
        case Control::ButtonEx1:
            return v.endInsertVisible;
        case Control::ButtonEx2:
            return v.endAppendVisible;
    }
    return true;
}

const char* runGreyedRoute(WalkStation& station, Control control) {
    devices::SwitchModel& model = station.station().handsFree().switchModel;
    switch (control) {
        case Control::Record:
            model.SwitchAction("DICTATE");
            return "SwitchAction DICTATE";
        case Control::Play:
            model.SwitchAction("LISTEN");
            return "SwitchAction LISTEN";
        case Control::Stop:
            model.SwitchAction("STOP");
            return "SwitchAction STOP";
        case Control::Back:
            model.SwitchAction("STEPBACK");
            return "SwitchAction STEPBACK";
        case Control::Step:
            model.HandSetSwitchs3("STEPFOWARD");
            return "HandSetSwitchs3 STEPFOWARD";
        case Control::Next:
            model.HandSetSwitchs3("GOTOEND");
            return "HandSetSwitchs3 GOTOEND";
        case Control::Command2:
            model.HandSetSwitchs3("INSERT");
            return "HandSetSwitchs3 INSERT";
        case Control::cmdOVR:
            model.HandSetSwitchs3("OVERWRITE");
            return "HandSetSwitchs3 OVERWRITE";
        case Control::cmdEOL: {
            // The end of letter pedal, pressed and let go.
            devices::PedalDispatcher& dispatcher = station.station().handsFree().dispatcher;
            for (std::size_t i = 0; i < 6; ++i) {
                if (station.pedalKeyword(static_cast<int>(i)) != "EOLSTOP") continue;
                const char* names[] = {devices::kLeft, devices::kMiddle, devices::kRight};
                for (const char* direction : {devices::kDown, devices::kUp}) {
                    if (i < 3) {
                        dispatcher.PedalEventSER(names[i % 3], direction);
                    } else {
                        dispatcher.PedalEventUSB(names[i % 3], direction);
                    }
                }
            }
            return "the end of letter pedal";
        }
        case Control::None:
        case Control::Prev:
        case Control::Pause:
        case Control::Command1:
        case Control::ButtonEx1:
        case Control::ButtonEx2:
            return "";
    }
    return "";
}

bool stepIsAuthorEdit(WalkStation& station, const Step& step) {
    const WalkCommand* command = findWalkCommand(step.command);
    if (command == nullptr) return false;
    if (step.command == "switch")
        return kSwitchWords[static_cast<std::size_t>(step.a) % 4] == std::string("Record");
    if (step.command == "pedal") {
        const std::string keyword = station.pedalKeyword(std::clamp(step.a, 0, 5));
        return keyword != "STEPLIST" && keyword != "STEPFWD";
    }
    if (step.command == "button") return std::clamp(step.a, 1, 8) != 5;  // AudioSRC does nothing
    return command->authorEdit;
}

}  // namespace ovd::walk
