#include "Tern_Plus.h"

#include <QThread>

using namespace lidar::decode;
namespace tern = lidar::tern;

float Tern_Plus::previousAzimuth = -1.0f;
tern::PacketClock Tern_Plus::packetClock;

Tern_Plus::Tern_Plus(QObject* parent) : GpsSession(parent) {}

const lidar::ModelDescriptor& Tern_Plus::Descriptor()
{
    static const lidar::ModelDescriptor model = [] {
        auto d = tern::describeWithLength<Tern_Plus>();
        d.baudRate = 921600;
        d.commands.deviceParam = lidar::DeviceParam::MotorRpm;
        return d;
    }();
    return model;
}

tern::CalendarTime Tern_Plus::DecodePacket(Bytes packet, DecodedPacket& out)
{
    return tern::decodeVariablePacket(packet, tern::kUnmaskedFlaggedWords, out);
}

void Tern_Plus::DecodeReply(Bytes reply, LidarParam& param)
{
    tern::readReply(reply, kReplyVersionAt, param);
    param.value2 = be16(reply, 141) / 60;
}

void Tern_Plus::ParseLidarData()
{
    tern::parseStream(receiveBuffer, streamCounters, kMinimumBuffer, 0, [this](Bytes piece) {
        if (tern::isVariableDataPacket(piece)) {
            recordPacket(piece.data, piece.size);
            const tern::CalendarTime time = DecodePacket(piece, decoded_);
            emit SendGPSTimeData(packetClock.apply(decoded_, time));
            placePoints<float>(decoded_, currentFrame, lastFrame, previousAzimuth, frameAccounting,
                              [this] { finishFrame(); });
        } else if (piece.size == kReplySize) {
            takeReply([piece](LidarParam& p) { DecodeReply(piece, p); });
        }
    });
}

bool Tern_Plus::ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames)
{
    return lidar::parseSharedBatch<Tern_Plus>(packets, frames);
}

bool Tern_Plus::AddRecordedPacket(OfflineState& state, const QByteArray& packet,
                                  QVector<lidar::LidarDataPoint_V4>& frames)
{
    return tern::addRecorded(packet, state.frames.totals, tern::isVariableDataPacket, [&](const QByteArray& p) {
        DecodedPacket& decoded = scratchPacket();
        const tern::CalendarTime time = DecodePacket(p, decoded);
        state.clock.apply(decoded, time);
        state.frames.place<float>(decoded, frames);
    });
}

QByteArray Tern_Plus::DeviceParamCommand(signed char value)
{
    // Sign-extended, the product taken modulo 65536.
    const uint16_t scaled = static_cast<uint16_t>(int(value) * 60);
    return commandPacket(0x55, 0x0A, 0, {{141, uint8_t(scaled >> 8)}, {142, uint8_t(scaled & 0xFF)}});
}

void Tern_Plus::SetDeviceParam(quint8 value)
{
    emit SendDataToLidarSignal(DeviceParamCommand(static_cast<signed char>(value)));
    QThread::msleep(100);
    SetMotorFrequency(storedFrequency());
}
