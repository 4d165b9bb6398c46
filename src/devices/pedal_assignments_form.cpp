#include "devices/pedal_assignments_form.h"

namespace ovd::devices {

namespace {

using Record = settings::SettingsRecord;

constexpr std::array<PedalDialogSpec, 4> kSpecs = {{
    {"QDU Pedal Functions", "QDU PEDAL ASSIGNMENTS", "QDU", &Record::LEFTQDUPEDAL,
     &Record::MIDQDUPEDAL, &Record::RIGHTQDUPEDAL, false, false},
    {"USB Pedal Functions", "", "USB", &Record::LEFTUSBPEDAL, &Record::MIDUSBPEDAL,
     &Record::RIGHTUSBPEDAL, false, true},
    {"Serial 3 Pedal Functions", "", "SER", &Record::LEFTSERPEDAL, &Record::MIDSERPEDAL,
     &Record::RIGHTSERPEDAL, true, false},
    {"Game Pedal Functions", "", "GAME", &Record::LEFTGAMEPEDAL, &Record::MIDGAMEPEDAL,
     &Record::RIGHTGAMEPEDAL, false, false},
}};

// The shipped settings give every device's pedals these functions.
constexpr std::array<int, kPedalColumns> kFactoryRows = {0, 1, 2};

constexpr std::array<const char*, kPedalColumns> kPedalWords = {"LEFT", "MIDDLE", "RIGHT"};

bool inRange(int row, int column) {
    return row >= 0 && row < kPedalRows && column >= 0 && column < kPedalColumns;
}

std::string keyword(int row) {
    return std::string(kPedalKeywords[static_cast<std::size_t>(row)].keyword);
}

}  // namespace

const PedalDialogSpec& pedalDialogSpec(PedalDialog dialog) {
    switch (dialog) {
        case PedalDialog::DeskUnit:
            return kSpecs[0];
        case PedalDialog::Usb:
            return kSpecs[1];
        case PedalDialog::Serial:
            return kSpecs[2];
        case PedalDialog::Game:
            return kSpecs[3];
    }
    return kSpecs[0];
}

PedalAssignmentsForm::PedalAssignmentsForm(PedalDialog dialog, settings::ConfigFile& config,
                                           platform::Prompts& prompts)
    : spec_(pedalDialogSpec(dialog)), config_(config), prompts_(prompts) {}

std::string& PedalAssignmentsForm::assignment(int column) const {
    settings::SettingsRecord& record = config_.record;
    if (column == 0) return record.*spec_.left;
    if (column == 1) return record.*spec_.middle;
    return record.*spec_.right;
}

bool PedalAssignmentsForm::twoPedalChecked() const {
    return spec_.twoPedalCheck && config_.record.TwoPedalsSER;
}

bool PedalAssignmentsForm::middleColumnShown() const { return !twoPedalChecked(); }

bool PedalAssignmentsForm::option(int row, int column) const {
    if (!inRange(row, column)) return false;
    // A hidden middle pedal shows no choice.
    if (column == 1 && !middleColumnShown()) return false;
    return assignment(column) == keyword(row);
}

bool PedalAssignmentsForm::rowMarked(int row) const {
    for (int column = 0; column < kPedalColumns; ++column) {
        if (option(row, column)) return true;
    }
    return false;
}

bool PedalAssignmentsForm::factoryDefault(int row, int column) {
    return inRange(row, column) && kFactoryRows[static_cast<std::size_t>(column)] == row;
}

void PedalAssignmentsForm::clickOption(int row, int column) {
    if (!inRange(row, column)) return;
    if (column == 1 && !middleColumnShown()) return;
    const std::string word = keyword(row);
    for (int other = 0; other < kPedalColumns; ++other) {
        if (other != column && assignment(other) == word) assignment(other).clear();
    }
    assignment(column) = word;
}

void PedalAssignmentsForm::clickTwoPedal(bool checked) {
    if (!spec_.twoPedalCheck) return;
    config_.record.TwoPedalsSER = checked;
    if (checked) assignment(1).clear();
}

bool PedalAssignmentsForm::ok() {
    // The slider's value is taken, as the dialog always did, and goes nowhere.
    [[maybe_unused]] const int stopSpeed = usbStopSpeed;
    if (twoPedalChecked()) assignment(1).clear();
    // What no option shows is not read back: a function the dialog does not know
    // leaves its pedal undefined.
    for (int column = 0; column < kPedalColumns; ++column) {
        bool known = false;
        for (int row = 0; row < kPedalRows; ++row)
            known = known || assignment(column) == keyword(row);
        if (!known) assignment(column).clear();
    }
    for (int column = 0; column < kPedalColumns; ++column) {
        if (column == 1 && twoPedalChecked()) continue;
        if (assignment(column).empty()) {
            prompts_.showMessage(std::string(kPedalWords[static_cast<std::size_t>(column)]) + " " +
                                 spec_.device + " PEDAL has not been defined.");
            return false;
        }
    }
    (void)config_.WriteConfig();
    return true;
}

}  // namespace ovd::devices
