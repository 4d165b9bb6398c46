#include "engine/audio_document.h"

#include <algorithm>

namespace ovd::engine {

namespace {
std::size_t readPieces(const PieceList& pieces, std::size_t& index, SampleCount& offset,
                       int channels, std::int16_t* out, std::size_t frameCount) {
    std::size_t done = 0;
    while (done < frameCount && index < pieces.size()) {
        const Piece& piece = pieces[index];
        const SampleCount left = piece.length - offset;
        if (left <= 0) {
            ++index;
            offset = 0;
            continue;
        }
        const std::size_t want =
            std::min<std::size_t>(frameCount - done, static_cast<std::size_t>(left));
        const std::size_t got = piece.file->read(
            piece.start + offset, out + done * static_cast<std::size_t>(channels), want);
        done += got;
        offset += static_cast<SampleCount>(got);
        if (got < want) {
            // A work file shorter than its piece (a failed write): silence keeps the timing.
            std::fill_n(out + done * static_cast<std::size_t>(channels),
                        (want - got) * static_cast<std::size_t>(channels), 0);
            done += want - got;
            offset += static_cast<SampleCount>(want - got);
        }
    }
    return done;
}
}  // namespace

std::optional<PieceList> piecesAddedTo(const PieceList& before, const PieceList& now) {
    if (now.size() < before.size()) return std::nullopt;
    PieceList added;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const Piece& was = before[i];
        const Piece& is = now[i];
        const bool last = i + 1 == before.size();
        if (is.file != was.file || is.start != was.start) return std::nullopt;
        if (is.length == was.length) continue;
        if (!last || is.length < was.length) return std::nullopt;
        added.push_back({is.file, is.start + was.length, is.length - was.length});
    }
    added.insert(added.end(), now.begin() + static_cast<std::ptrdiff_t>(before.size()), now.end());
    return added;
}

namespace {
// Neighbours that continue each other in one work file become one piece; empty ones go.
PieceList joined(const PieceList& pieces) {
    PieceList out;
    for (const Piece& piece : pieces) {
        if (piece.length <= 0) continue;
        if (!out.empty() && out.back().file == piece.file &&
            out.back().start + out.back().length == piece.start) {
            out.back().length += piece.length;
        } else {
            out.push_back(piece);
        }
    }
    return out;
}
}  // namespace

bool sameAudio(const PieceList& a, const PieceList& b) {
    const PieceList x = joined(a);
    const PieceList y = joined(b);
    return std::equal(x.begin(), x.end(), y.begin(), y.end(), [](const Piece& p, const Piece& q) {
        return p.file == q.file && p.start == q.start && p.length == q.length;
    });
}

void AudioDocument::recount() {
    length_ = 0;
    for (const Piece& piece : pieces_) length_ += piece.length;
}

std::size_t AudioDocument::splitAt(SampleCount position) {
    SampleCount begin = 0;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        const SampleCount end = begin + pieces_[i].length;
        if (position == begin) return i;
        if (position < end) {
            Piece tail = pieces_[i];
            const SampleCount head = position - begin;
            pieces_[i].length = head;
            tail.start += head;
            tail.length -= head;
            pieces_.insert(pieces_.begin() + static_cast<std::ptrdiff_t>(i) + 1, tail);
            return i + 1;
        }
        begin = end;
    }
    return pieces_.size();
}

PieceList AudioDocument::slice(SampleCount from, SampleCount to) const {
    from = std::clamp<SampleCount>(from, 0, length_);
    to = std::clamp<SampleCount>(to, from, length_);
    PieceList out;
    SampleCount begin = 0;
    for (const Piece& piece : pieces_) {
        const SampleCount end = begin + piece.length;
        const SampleCount a = std::max(from, begin);
        const SampleCount b = std::min(to, end);
        if (a < b) out.push_back({piece.file, piece.start + (a - begin), b - a});
        begin = end;
        if (begin >= to) break;
    }
    return out;
}

std::size_t AudioDocument::insert(SampleCount at, const PieceList& pieces) {
    at = std::clamp<SampleCount>(at, 0, length_);
    const std::size_t index = splitAt(at);
    pieces_.insert(pieces_.begin() + static_cast<std::ptrdiff_t>(index), pieces.begin(),
                   pieces.end());
    recount();
    return index;
}

void AudioDocument::remove(SampleCount from, SampleCount to) {
    from = std::clamp<SampleCount>(from, 0, length_);
    to = std::clamp<SampleCount>(to, from, length_);
    if (from == to) return;
    const std::size_t first = splitAt(from);
    const std::size_t last = splitAt(to);
    pieces_.erase(pieces_.begin() + static_cast<std::ptrdiff_t>(first),
                  pieces_.begin() + static_cast<std::ptrdiff_t>(last));
    recount();
}

void AudioDocument::growPiece(std::size_t index, SampleCount frames) {
    if (index >= pieces_.size()) return;
    pieces_[index].length += frames;
    length_ += frames;
}

void AudioDocument::replaceAll(PieceList pieces) {
    pieces_ = std::move(pieces);
    recount();
}

std::size_t AudioDocument::read(SampleCount position, std::int16_t* out,
                                std::size_t frameCount) const {
    SampleCount begin = 0;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        const SampleCount end = begin + pieces_[i].length;
        if (position < end) {
            std::size_t index = i;
            SampleCount offset = position - begin;
            return readPieces(pieces_, index, offset, format_.channels, out, frameCount);
        }
        begin = end;
    }
    return 0;
}

DocumentSource::DocumentSource(PcmFormat format, PieceList pieces)
    : format_(format), pieces_(std::move(pieces)) {
    for (const Piece& piece : pieces_) frames_ += piece.length;
}

std::size_t DocumentSource::read(std::int16_t* out, std::size_t frameCount) {
    return readPieces(pieces_, piece_, offset_, format_.channels, out, frameCount);
}

}  // namespace ovd::engine
