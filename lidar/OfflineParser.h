#pragma once
// A model's offline parse as an object: the state it carries from packet to
// packet (the unfinished turn, the turn after it, the previous azimuth, the
// previous packet time) and what the recording says before its packets
// (Tern_P's firmware version). The registry keeps one per model for the
// whole process, which is what carries a parse's unfinished turn from one
// recording into the next. A copy decodes on its own; a copy taken between
// two packets goes on from there exactly as the original would, which is
// what lets a long recording be decoded from the middle.

#include "DecodeCommon.h"
#include "FrameHealth.h"
#include "LidarRecords.h"

#include <QByteArray>
#include <QVector>
#include <memory>
#include <mutex>

namespace lidar {

class OfflineParser {
public:
    virtual ~OfflineParser() = default;
    virtual std::unique_ptr<OfflineParser> clone() const = 0;
    // Takes over the state of `other`, a parser of the same model.
    virtual void assign(const OfflineParser& other) = 0;
    // The recording's elements between its class name and its first packet.
    virtual void setPrefix(const QVector<QByteArray>& prefix) = 0;
    // One recorded packet: the frames it completes are appended. False when
    // the packet ends the parse: nothing after it is decoded.
    virtual bool add(const QByteArray& packet, QVector<LidarDataPoint_V4>& frames) = 0;
    // The health of the frames the last add() completed, one for each, in order.
    virtual const std::vector<FrameHealth>& frameHealth() const = 0;
    // Totals since the parse began: data packets decoded, elements refused
    // (skipped, or ending the parse), frames whole and incomplete. A
    // recording holds whole packets only: no skipped bytes, no replies.
    virtual StreamTotals totals() const = 0;
};

// Held while a model's process-wide parser is used or copied, so that the
// thread that indexes a recording and the window's thread can both reach it.
std::mutex& sharedOfflineParserMutex();

// A model's parse over its OfflineState, a plain copyable value whose
// unfinished turns are its member `frames` (decode::OfflineFrames). The
// model supplies:
//   struct OfflineState;
//   static void SetRecordPrefix(OfflineState&, const QVector<QByteArray>&);
//   static bool AddRecordedPacket(OfflineState&, const QByteArray&, QVector<LidarDataPoint_V4>&);
template <typename Model>
class ModelOfflineParser final : public OfflineParser {
public:
    std::unique_ptr<OfflineParser> clone() const override
    {
        auto copy = std::make_unique<ModelOfflineParser>(*this);
        copy->state_.frames.compact();
        return copy;
    }
    void assign(const OfflineParser& other) override
    {
        state_ = static_cast<const ModelOfflineParser&>(other).state_;
    }
    void setPrefix(const QVector<QByteArray>& prefix) override { Model::SetRecordPrefix(state_, prefix); }
    bool add(const QByteArray& packet, QVector<LidarDataPoint_V4>& frames) override
    {
        if (Q_UNLIKELY(!state_.frames.completed.empty()))
            forgetCompleted();
        return Model::AddRecordedPacket(state_, packet, frames);
    }
    const std::vector<FrameHealth>& frameHealth() const override { return state_.frames.completed; }
    StreamTotals totals() const override
    {
        StreamTotals totals = state_.frames.totals;
        totals.packets = state_.frames.accounting.packetsPlaced();
        return totals;
    }

    // The one the registered parse functions use, for the life of the process.
    static ModelOfflineParser& shared()
    {
        static ModelOfflineParser parser;
        return parser;
    }

private:
    // Out of line: most packets complete no frame, and their add() stays a jump.
    Q_DECL_COLD_FUNCTION Q_NEVER_INLINE void forgetCompleted() { state_.frames.completed.clear(); }

    typename Model::OfflineState state_;
};

// Runs `elements` (the prefix elements first, then packets) through a
// parser: appends the frames completed; false once a packet ended the parse.
bool parseElements(OfflineParser& parser, const QVector<QByteArray>& elements, int prefixElements,
                   QVector<LidarDataPoint_V4>& frames);

// A model's registered batch parse: its process-wide parser over one batch.
template <typename Model, int PrefixElements = 0>
bool parseSharedBatch(const QVector<QByteArray>& elements, QVector<LidarDataPoint_V4>& frames)
{
    std::lock_guard<std::mutex> lock(sharedOfflineParserMutex());
    return parseElements(ModelOfflineParser<Model>::shared(), elements, PrefixElements, frames);
}

}  // namespace lidar
