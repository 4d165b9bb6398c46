#pragma once
// The station's main settings: one record of 113 fields, known only by their
// place in DigitalRecorder.cfg, so the order of the list below is the file format.
// Kinds: T text, I 16-bit integer, B yes/no, V whatever it last held.

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "settings/config_variant.h"

namespace ovd::settings {

// X(kind, name) once per field, in file order.
#define OVD_SETTINGS_FIELDS(X)         \
    X(T, kDeviceInput)                 \
    X(T, kDeviceOutput)                \
    X(T, LastFolderOpened)             \
    X(T, LastFileOpened)               \
    X(T, LastPathFileOpened)           \
    X(V, FileLabelText)                \
    X(B, SuppressWarnings)             \
    X(V, CaptureFilePath)              \
    X(V, SequentialNumbering)          \
    X(V, FileNameIncrement)            \
    X(B, FileLabelActive)              \
    X(I, Places)                       \
    X(V, FileNameIncrementStartingNum) \
    X(T, kSrcInput)                    \
    X(T, kSrcOutput)                   \
    X(V, sldrVolumeInpSelStart)        \
    X(V, Ontopcheck)                   \
    X(T, Frequency)                    \
    X(T, Channel)                      \
    X(T, FormatType)                   \
    X(V, sldrVolumeOutSelStart)        \
    X(I, sldrVolBalanceInp)            \
    X(I, sldrVolBalanceOut)            \
    X(B, chSelectOutput)               \
    X(B, chSelectInput)                \
    X(B, Last3SecsAR)                  \
    X(T, Frequency2)                   \
    X(T, Channel2)                     \
    X(T, FormatType2)                  \
    X(T, FileBit)                      \
    X(T, FileBit2)                     \
    X(T, AudioSource1)                 \
    X(T, RecordingFormats)             \
    X(T, BUT1)                         \
    X(T, BUT2)                         \
    X(T, BUT3)                         \
    X(T, BUT4)                         \
    X(T, BUT5)                         \
    X(T, BUT6)                         \
    X(T, BUT7)                         \
    X(T, BUT8)                         \
    X(T, QDUSpeakerONOFF)              \
    X(T, QDUVol)                       \
    X(I, SAVEEVERY)                    \
    X(B, gNormalShutDown)              \
    X(T, SendToOne)                    \
    X(T, SendToTwo)                    \
    X(I, StepAmt)                      \
    X(B, AutoSend1)                    \
    X(B, AutoSend2)                    \
    X(B, VoicePrompts)                 \
    X(B, RecoveryModule)               \
    X(B, TCP)                          \
    X(T, TCPIP)                        \
    X(T, TCPPort)                      \
    X(B, TCPButtonScreen)              \
    X(T, WhichMIC)                     \
    X(T, LEFTQDUPEDAL)                 \
    X(T, MIDQDUPEDAL)                  \
    X(T, RIGHTQDUPEDAL)                \
    X(T, LEFTUSBPEDAL)                 \
    X(T, MIDUSBPEDAL)                  \
    X(T, RIGHTUSBPEDAL)                \
    X(T, LEFTSERPEDAL)                 \
    X(T, MIDSERPEDAL)                  \
    X(T, RIGHTSERPEDAL)                \
    X(B, TwoPedalsSER)                 \
    X(T, LEFTGAMEPEDAL)                \
    X(T, MIDGAMEPEDAL)                 \
    X(T, RIGHTGAMEPEDAL)               \
    X(I, Port)                         \
    X(B, UserSelectUSB)                \
    X(B, UserSelectGame)               \
    X(B, UserSelectSerial)             \
    X(B, AutoFileDeltion)              \
    X(B, OverwriteToEnd)               \
    X(B, AutoEmail)                    \
    X(T, AutoEmailName)                \
    X(B, AutoFTP)                      \
    X(T, AutoFTPName)                  \
    X(B, AutoRewind)                   \
    X(B, AutoInsert)                   \
    X(B, AutoOverwrite)                \
    X(B, FirstRunDone)                 \
    X(B, FileSaveAtStop)               \
    X(B, DFStopRec)                    \
    X(I, TCPDelay)                     \
    X(B, QDUDisconnected)              \
    X(B, NoLogging)                    \
    X(I, JumpBackSecs)                 \
    X(B, HandsFreeEdition)             \
    X(B, OneTapRecPause)               \
    X(B, AutoSend3)                    \
    X(T, SendToThree)                  \
    X(T, InputDeviceName)              \
    X(T, InputSourceName)              \
    X(B, AddNameToFile)                \
    X(T, CurrentSpeaker)               \
    X(I, DeleteDay)                    \
    X(I, DeleteHour)                   \
    X(I, DeleteMinute)                 \
    X(T, DeleteAMPM)                   \
    X(B, AddDateToName)                \
    X(B, Use30VEC)                     \
    X(B, EOLHotKeysOn)                 \
    X(T, HotKeyMode)                   \
    X(V, EOLHotKey)                    \
    X(V, EOLHotKeyShift)               \
    X(B, ExitAtEOL)                    \
    X(T, ScreenSize)                   \
    X(V, MainWindowLeft)               \
    X(V, MainWindowTop)                \
    X(B, PromptBarCode)

namespace field_kind {
using T = std::string;
using I = std::int16_t;
using B = bool;
using V = ConfigVariant;
}  // namespace field_kind

struct SettingsRecord {
#define OVD_DECLARE_FIELD(kind, name) field_kind::kind name{};
    OVD_SETTINGS_FIELDS(OVD_DECLARE_FIELD)
#undef OVD_DECLARE_FIELD

    bool operator==(const SettingsRecord& other) const = default;
};

// One field of the record: its name and where it lives in the struct.
struct SettingsField {
    const char* name;
    std::variant<std::string SettingsRecord::*, std::int16_t SettingsRecord::*,
                 bool SettingsRecord::*, ConfigVariant SettingsRecord::*>
        member;
};

// All 113 fields in file order.
const std::vector<SettingsField>& settingsFields();

// The value of a field as the dump of the globals shows it.
std::string describeField(const SettingsRecord& record, const SettingsField& field);

}  // namespace ovd::settings
