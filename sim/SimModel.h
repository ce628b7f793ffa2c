#pragma once
// The six lidar models the simulator imitates and how each cuts a revolution
// into data packets. What a model is (its family, its GPS time, its
// commands, its recordings) the simulator takes from the model's
// descriptor; the bytes of its packets it writes on its own
// (SimPacketEncoders.h).

#include <QString>
#include <QStringList>
#include <cstdint>

namespace lidar {
struct ModelDescriptor;
}

namespace sim {

enum class Model { Tern, Tern_P, Tern_GPS, Tern_Plus, Wren_Plus, Wren_Kite };
enum class Family { Tern, Wren };

// The model's descriptor, as the viewer's registry has it.
const lidar::ModelDescriptor& describe(Model model);
// The model's class name, the key the viewer and recordings use.
QString modelName(Model model);
// Exact, case-sensitive class name; false for anything else.
bool modelFromName(const QString& name, Model* model);
QStringList allModelNames();
Family familyOf(Model model);
// Whether the model stamps its packets with a GPS calendar time.
bool carriesCalendar(Model model);

// The angular layout of a model's data packets.
struct PacketLayout {
    int packetsPerRevolution;
    int groupsPerPacket;  // azimuth samples in one packet
    int channels;         // measurements per sample
    double packetSpan;    // degrees from one packet's start to the next one's
    double groupStep;     // degrees between two samples of one packet

    int measurementsPerPacket() const { return groupsPerPacket * channels; }
    int measurementsPerRevolution() const { return packetsPerRevolution * measurementsPerPacket(); }
};
PacketLayout layoutOf(Model model);

// The speed word the lidars send: revolutions per minute = 2500000 / word.
// Truncated so that the decoded speed comes back as the whole rpm.
uint16_t periodWord(double rpm);

// Limits of the rotation rate the simulator accepts (revolutions per minute).
constexpr double kMinRpm = 60.0;
constexpr double kMaxRpm = 3000.0;

}  // namespace sim
