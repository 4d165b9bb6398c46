#pragma once
// The Info frame at the head of an MP3 stream: it says how many frames and bytes
// follow and how much of the decoded sound is encoder start-up and end padding.
// Readers that trust it (the sound-file library among them) stop where it says,
// so a file that grows by appended frames has it rewritten at every sync.

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace ovd::engine {

// What has been written after the Info frame.
struct Mp3Tally {
    std::uint32_t frames = 0;
    std::uint64_t bytes = 0;
    std::uint16_t crc = 0;  // of those bytes, as mp3Crc16 gives it
    bool constantBitRate = true;
    // Decoded samples at the start and at the end that are not part of the recording.
    int startPadding = 0;
    int endPadding = 0;
    // Where each frame starts, counted from the first after the Info frame; the
    // table of contents follows them, so a reader seeks right in a file whose
    // frames differ in length. Empty: frames of one length.
    std::span<const std::uint64_t> frameStarts;
};

class Mp3InfoFrame {
  public:
    // Finds the frame in the first bytes of a file (behind its ID3v2 tag); none
    // when the stream has no Info frame with frame and byte counts, a table of
    // contents and the encoder's tag.
    static std::optional<Mp3InfoFrame> find(const std::uint8_t* head, std::size_t size);

    // Where the frame lies in the file, and its length.
    [[nodiscard]] std::uint64_t offset() const { return offset_; }
    [[nodiscard]] std::size_t size() const { return frame_.size(); }

    // The frame as it reads for a stream of the given tally.
    [[nodiscard]] std::vector<std::uint8_t> describing(const Mp3Tally& tally) const;

  private:
    Mp3InfoFrame(std::uint64_t offset, std::vector<std::uint8_t> frame, std::size_t tag,
                 std::size_t encoderTag)
        : offset_(offset), frame_(std::move(frame)), tag_(tag), encoderTag_(encoderTag) {}

    std::uint64_t offset_;
    std::vector<std::uint8_t> frame_;
    std::size_t tag_;         // where "Info" or "Xing" starts in the frame
    std::size_t encoderTag_;  // where the encoder's tag (delay, padding, CRCs) starts
};

// The CRC-16 the encoder's tag keeps of the audio and of itself, carried on from crc.
std::uint16_t mp3Crc16(std::uint16_t crc, const std::uint8_t* data, std::size_t size);

}  // namespace ovd::engine
