#pragma once
// A document as a list of pieces of work files. Editing splices the list, so an
// insert into an hour-long take costs the same as one into a second-long one, and
// an undo step is just the list as it was. Pieces hold their work file alive:
// audio cut or copied from a closed editor stays readable.

#include <memory>
#include <optional>
#include <vector>

#include "engine/codecs.h"
#include "engine/work_file.h"

namespace ovd::engine {

struct Piece {
    std::shared_ptr<const WorkFile> file;
    SampleCount start = 0;   // frame in the work file
    SampleCount length = 0;  // frames
};

using PieceList = std::vector<Piece>;

// What `now` holds beyond `before` when the document only grew at its end since
// it was `before` (its last piece may have grown, as a take being recorded does);
// none when it was changed anywhere else.
std::optional<PieceList> piecesAddedTo(const PieceList& before, const PieceList& now);

// Whether two lists hold the same audio from the same work files, however the
// edits in between have split them (a cut undone, a paste of nothing).
bool sameAudio(const PieceList& a, const PieceList& b);

class AudioDocument {
  public:
    AudioDocument() = default;
    explicit AudioDocument(PcmFormat format) : format_(format) {}

    [[nodiscard]] const PcmFormat& format() const { return format_; }
    [[nodiscard]] SampleCount length() const { return length_; }
    [[nodiscard]] const PieceList& pieces() const { return pieces_; }

    // The pieces between two positions (clamped to the document).
    [[nodiscard]] PieceList slice(SampleCount from, SampleCount to) const;
    // Returns the index of the first piece inserted.
    std::size_t insert(SampleCount at, const PieceList& pieces);
    void remove(SampleCount from, SampleCount to);
    // Makes one piece longer: the take being recorded grows at its end.
    void growPiece(std::size_t index, SampleCount frames);
    void replaceAll(PieceList pieces);

    // Reads frames from position on; fewer at the end.
    std::size_t read(SampleCount position, std::int16_t* out, std::size_t frameCount) const;

  private:
    // Index of the piece holding position, splitting a piece so that one starts there.
    std::size_t splitAt(SampleCount position);
    void recount();

    PcmFormat format_;
    PieceList pieces_;
    SampleCount length_ = 0;
};

// A document read front to back from a snapshot of its pieces, on any thread.
class DocumentSource : public PcmSource {
  public:
    DocumentSource(PcmFormat format, PieceList pieces);
    [[nodiscard]] PcmFormat format() const override { return format_; }
    [[nodiscard]] SampleCount frames() const override { return frames_; }
    std::size_t read(std::int16_t* out, std::size_t frameCount) override;

  private:
    PcmFormat format_;
    PieceList pieces_;
    SampleCount frames_ = 0;
    std::size_t piece_ = 0;
    SampleCount offset_ = 0;
};

}  // namespace ovd::engine
