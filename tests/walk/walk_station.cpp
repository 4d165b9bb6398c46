#include "walk/walk_station.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

#include "devices/pedal_events.h"
#include "engine/codecs.h"
#include "platform/files.h"
#include "support/letter_names.h"

namespace ovd::walk {

namespace {

void writeRampWave(const std::string& path, int rate, int seconds) {
    const auto frames = static_cast<std::uint32_t>(rate * seconds);
    std::vector<std::int16_t> samples(frames);
    // A ramp that climbs one step every eight samples and wraps: no two nearby
    // stretches of audio are alike.
    for (std::uint32_t i = 0; i < frames; ++i)
        samples[i] = static_cast<std::int16_t>(i / 8 % 60000 - 30000);
    std::string bytes(44 + frames * 2, '\0');
    const auto put32 = [&](std::size_t at, std::uint32_t v) { std::memcpy(&bytes[at], &v, 4); };
    const auto put16 = [&](std::size_t at, std::uint16_t v) { std::memcpy(&bytes[at], &v, 2); };
    std::memcpy(&bytes[0], "RIFF", 4);
    put32(4, 36 + frames * 2);
    std::memcpy(&bytes[8], "WAVEfmt ", 8);
    put32(16, 16);
    put16(20, 1);
    put16(22, 1);
    put32(24, static_cast<std::uint32_t>(rate));
    put32(28, static_cast<std::uint32_t>(rate * 2));
    put16(32, 2);
    put16(34, 16);
    std::memcpy(&bytes[36], "data", 4);
    put32(40, frames * 2);
    std::memcpy(&bytes[44], samples.data(), frames * 2);
    if (!platform::writeWholeFile(path, bytes)) throw std::runtime_error("can't write " + path);
}

struct SeedFolder {
    ::ovd::testing::TempFolder folder;
    SeedFiles files;
    SeedFolder() {
        files.shortWave = folder.file("letter.wav");
        files.rampMp3 = folder.file("letter.mp3");
        writeRampWave(files.shortWave, 16000, 4);
        auto opened = engine::AudioFileReader::open(files.shortWave);
        if (!opened) throw std::runtime_error("can't read the seed letter: " + opened.error());
        auto& source = *opened;
        engine::TargetFormat mp3;
        mp3.word = engine::FormatWord::MP3;
        mp3.sampleRate = 16000;
        mp3.bitrateKbps = 32;
        if (auto made = engine::encodeFile(*source, files.rampMp3, mp3, "OVDESK"); !made) {
            throw std::runtime_error("can't make the seed MP3: " + made.error());
        }
    }
};

}  // namespace

const SeedFiles& seedFiles() {
    static const SeedFolder seeds;
    return seeds.files;
}

platform::Answer WalkPrompts::message(const platform::MessageRequest& request) {
    ++shown;
    return request.defaultAnswer;
}

std::optional<std::string> WalkPrompts::input(const platform::InputRequest&) {
    ++shown;
    return std::nullopt;
}

std::optional<std::string> WalkPrompts::chooseFile(const platform::FileRequest&) {
    ++shown;
    auto answer = nextFile;
    nextFile.reset();
    return answer;
}

std::optional<std::string> WalkPrompts::chooseFolder(const platform::FolderRequest&) {
    ++shown;
    return std::nullopt;
}

void WalkPrompts::notify(const platform::Notification&) { ++shown; }

WalkStation::WalkStation(const WalkSettings& chosen) : settings(chosen) {
    EXPECT_TRUE(platform::createFolder(recordings));
    EXPECT_TRUE(platform::createFolder(temporaryFolder()));
    EXPECT_TRUE(platform::createFolder(destinationFolder()));
    // The letters the walk may open lie in the recordings folder from the start.
    for (const std::string& seed : {seedFiles().shortWave, seedFiles().rampMp3}) {
        const std::string target = recordings + "/" + platform::withoutFolder(seed);
        EXPECT_TRUE(platform::writeWholeFile(target, platform::readWholeFile(seed).valueOr("")));
    }

    settings::SettingsRecord& r = config.record;
    ovd::testing::nameLettersAB(r, recordings, 1);
    r.RecordingFormats = "OPT2";
    r.FormatType = settings.format;
    r.Frequency = std::to_string(settings.rate);
    r.Channel = "MONO";
    r.FileBit = settings.format == "MP3" ? "32" : "16";
    r.StepAmt = 2;
    r.SAVEEVERY = 15;
    r.HandsFreeEdition = true;
    r.QDUDisconnected = true;
    r.FileSaveAtStop = settings.crashProtection;
    r.Last3SecsAR = settings.last3AutoRecord;
    r.OverwriteToEnd = settings.overwriteToEnd;
    r.RecoveryModule = true;
    r.gNormalShutDown = true;
    r.AutoSend1 = true;
    r.SendToOne = destinationFolder();
    r.LEFTSERPEDAL = "STEPLIST";
    r.MIDSERPEDAL = "INSAUDIO";
    r.RIGHTSERPEDAL = "RECSTOP";
    r.LEFTUSBPEDAL = "OVRAUDIO";
    r.MIDUSBPEDAL = "EOLSTOP";
    r.RIGHTUSBPEDAL = "STEPFWD";
    r.BUT1 = "New";
    r.BUT2 = "RenameFile";
    r.BUT3 = "Previous";
    r.BUT4 = "Next";
    r.BUT5 = "AudioSRC";
    r.BUT6 = "SendToOne";
    r.BUT7 = "SendToTwo";
    r.BUT8 = "EraseFile";
    config.WriteConfig();

    station_ = std::make_unique<station::Station>(station::StationParts{
        loop, config, log, prompts, backend, folder.path(), OVD_TEST_ASSETS "/prompts",
        OVD_TEST_ASSETS, folder.file("bin"), "", 0});
    station_->onExit = [this] { exitAsked_ = true; };
    watchdog_.setOnTick([this] {
        if (loop.now() - stepBegan_ > std::chrono::minutes(2)) {
            watchdog_.setEnabled(false);
            throw WalkHang(
                "a step still runs after two virtual minutes: the station waits for something "
                "that does not come");
        }
    });
    watchdog_.setEnabled(true);
    loop.beforeTimeMoves = [this] { letSavesFinish(); };
}

void WalkStation::letSavesFinish() {
    if (!station_) return;
    for (int i = 0; i < 20000 && (editor1().saving() || editor21().saving()); ++i) {
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
}

WalkStation::~WalkStation() = default;

void WalkStation::start() {
    stepBegins();
    if (station_->Form_Load() != station::LoadResult::Ready)
        throw std::runtime_error("the station did not load");
    // With no desk unit the first file opens a moment after the load.
    advance(2000);
}

void WalkStation::exitInOrder() {
    if (!station_) return;
    for (int pedal = 0; pedal < 6; ++pedal) {
        if (pedalsDown_[static_cast<std::size_t>(pedal)]) this->pedal(pedal);
    }
    stepBegins();
    if (!exitAsked_) station_->exitFromMenu();
    station_->Form_Unload();
    station_.reset();
}

std::string WalkStation::pedalKeyword(int index) const {
    const settings::SettingsRecord& r = config.record;
    const std::string* keywords[] = {&r.LEFTSERPEDAL, &r.MIDSERPEDAL, &r.RIGHTSERPEDAL,
                                     &r.LEFTUSBPEDAL, &r.MIDUSBPEDAL, &r.RIGHTUSBPEDAL};
    return *keywords[index];
}

void WalkStation::pedal(int index) {
    auto& down = pedalsDown_[static_cast<std::size_t>(index)];
    down = !down;
    const dictation::DictationState& state = d().state();
    // The readers drop edges while a routine the pedals must not enter runs.
    if (state.PedalsBusy || state.OnLoad || state.Imclosing) return;
    dictation::PedalHits& hits = d().pedalPresses();
    const char* names[] = {devices::kLeft, devices::kMiddle, devices::kRight};
    const char* name = names[index % 3];
    const char* direction = down ? devices::kDown : devices::kUp;
    devices::PedalDispatcher& dispatcher = station_->handsFree().dispatcher;
    if (index < 3) {
        bool* held[] = {&hits.LEFTSERPEDALHit, &hits.MIDSERPEDALHit, &hits.RIGHTSERPEDALHit};
        *held[index] = down;
        if (down) hits.HandSetHitNotHit = true;
        dispatcher.PedalEventSER(name, direction);
    } else {
        bool* held[] = {&hits.LEFTUSBPEDALHit, &hits.MIDUSBPEDALHit, &hits.RIGHTUSBPEDALHit};
        *held[index - 3] = down;
        if (down) hits.HandSetHitNotHit = true;
        dispatcher.PedalEventUSB(name, direction);
    }
}

}  // namespace ovd::walk
