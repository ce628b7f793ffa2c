#pragma once
// What a lidar model is, stated once beside its decoder: its family, its
// packets, what its recordings hold before their packets, whether it stamps
// GPS time, the serial speed it is usually run at, what its commands offer,
// where a packet lies in azimuth, how far it measures, and the decoder
// functions the registry files under its name. The registry registers a
// model from its descriptor alone; the session, the recording format, the
// command-line tools and the simulator ask the descriptor instead of
// comparing model names.

#include "DecodeCommon.h"
#include "LidarRecords.h"
#include "OfflineParser.h"

#include <QByteArray>
#include <QString>
#include <QVector>
#include <cstdint>

struct QMetaObject;

namespace lidar {

enum class ModelFamily {
    Tern,  // header to trailer FA FB, 15 degrees a packet, no checksum
    Wren,  // a type byte and a checksum, 16 groups from a start to an end azimuth
};

// How a data packet is known in the stream and in a recording.
enum class PacketFraming {
    FixedSize,      // exactly `dataSize` bytes from header to trailer
    LengthField,    // bytes 2..3 give the packet's length (20 bytes and more)
    TypedChecksum,  // `dataSize` bytes, `packetType` at byte 2, checksum in the last
};

struct PacketSizes {
    PacketFraming framing = PacketFraming::FixedSize;
    int dataSize = 0;        // bytes of a data packet; 0 where the length field gives them
    uint8_t packetType = 0;  // TypedChecksum only
    int replySize = 0;       // the parameters reply, 186 or 188 bytes
    int replyVersionAt = 0;  // where the reply's six bytes year - 2000 .. patch begin
};

// The elements of a recording before its packets: always the class name,
// then, for a model whose distance words depend on the firmware, its
// version number as decimal text.
struct RecordingHeader {
    bool firmwareVersion = false;

    constexpr int elements() const { return 1 + prefixElements(); }
    // Those after the class name, which the offline parse is handed first.
    constexpr int prefixElements() const { return firmwareVersion ? 1 : 0; }
};

struct GpsStamping {
    bool stamped = false;  // every data packet carries its GPS calendar time
    // Where the calendar's ten bytes begin: from the packet's start, or when
    // negative back from its end (-12 in a length-field packet, whose last
    // 12 bytes are the calendar and the trailer).
    int calendarAt = -1;
};

// What SetDeviceParam (command code 10) sends, if anything.
enum class DeviceParam {
    None,
    MotorRpm,     // the speed setting times 60, 16 bits at 141..142
    ValueAt172,   // the byte itself at 172
};

// The 188-byte commands: the class byte (byte 2) each carries and what they
// can set. Setting the motor frequency (code 1, class 0x55) is common to all.
struct CommandSet {
    uint8_t readParamClass = 0;  // code 3; the parameters reply carries the same class
    uint8_t setFilterClass = 0;  // code 6
    int filterModes = 0;         // 3: normal, none, within three metres; 2: the first two
    DeviceParam deviceParam = DeviceParam::None;
};

// Where a data packet's measurements lie in azimuth. Angles are big-endian
// 1/100 degree.
enum class PacketSpan {
    Fixed,        // from the start angle over `spanDegrees`, spread over the points made
    StartToEnd,   // `groups` groups evenly from the start to the end angle, both given
};
struct PacketGeometry {
    PacketSpan span = PacketSpan::Fixed;
    int startAngleAt = -1;
    int endAngleAt = -1;        // StartToEnd only
    double spanDegrees = 0.0;   // Fixed only
    int measurementsAt = -1;    // the first distance word or group
    // StartToEnd: the measurement groups; Fixed: the distance words of a
    // fixed-size packet (0 where the length field gives their number).
    int groups = 0;
    int channels = 0;           // measurements per group
    bool dropsThe41stWord = false;  // the 41st word counts only when the 40th is zero
};

using ParseRecording = QVector<LidarDataPoint_V4> (*)(const QVector<QByteArray>& packets);

struct ModelDescriptor {
    // The decoder: the class (its name is the model's name everywhere: the
    // registry, the settings file's sections, element 0 of a recording),
    // the offline parse as a whole, by batches, and the process-wide parser
    // behind both.
    const QMetaObject* metaObject = nullptr;
    ParseRecording parseRecording = nullptr;
    decode::BatchParse parseBatch = nullptr;
    OfflineParser& (*offlineParser)() = nullptr;

    ModelFamily family = ModelFamily::Tern;
    PacketSizes packets;
    RecordingHeader recording;
    GpsStamping gps;
    int32_t baudRate = 0;  // the serial speed the model is usually run at
    CommandSet commands;
    PacketGeometry geometry;
    int distanceBits = 0;  // a distance word holds up to 2^bits - 1 mm

    QString name() const;

    // The decoder parts of `Model`, a LidarAnalysis subclass with the static
    // ParseRecordedPackets, ParseRecordedBatch and offline state of OfflineParser.h.
    template <typename Model>
    static ModelDescriptor of(ModelFamily family)
    {
        ModelDescriptor d;
        d.metaObject = &Model::staticMetaObject;
        d.parseRecording = &Model::ParseRecordedPackets;
        d.parseBatch = &Model::ParseRecordedBatch;
        d.offlineParser = []() -> OfflineParser& { return ModelOfflineParser<Model>::shared(); };
        d.family = family;
        return d;
    }
};

// Whether a recorded element is one the model's offline parse decodes as
// a data packet (the rule of its framing; a Wren element only has to be
// long enough).
bool isRecordedDataPacket(const ModelDescriptor& model, decode::Bytes element);

// Where a data packet of a GPS-stamping model holds its calendar time
// (year - 2000 first); -1 for any other model or element.
int calendarOffset(const ModelDescriptor& model, decode::Bytes element);

// The start azimuth of a data packet in degrees as the decoder takes it (a
// Tern start may exceed 360, a Wren start above 360 loses 360), and the
// angle from it to where the next packet of a complete stream starts: a
// Tern packet's fixed span, or one group step for each of a Wren packet's
// groups (from start to end, and on to the next packet's start).
double packetStartAngle(const ModelDescriptor& model, decode::Bytes packet);
double packetSpanAngle(const ModelDescriptor& model, decode::Bytes packet);

// The farthest distance a scan of the model can hold, in metres.
double farthestDistance(const ModelDescriptor& model);

}  // namespace lidar
