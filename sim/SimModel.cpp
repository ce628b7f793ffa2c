#include "SimModel.h"

#include "ModelDescriptor.h"
#include "Tern.h"
#include "Tern_GPS.h"
#include "Tern_P.h"
#include "Tern_Plus.h"
#include "Wren_Kite.h"
#include "Wren_Plus.h"

#include <cmath>

namespace sim {

namespace {
struct ModelEntry {
    Model model;
    const lidar::ModelDescriptor& (*describe)();
};
const ModelEntry kModels[] = {
    {Model::Tern, &Tern::Descriptor},           {Model::Tern_P, &Tern_P::Descriptor},
    {Model::Tern_GPS, &Tern_GPS::Descriptor},   {Model::Tern_Plus, &Tern_Plus::Descriptor},
    {Model::Wren_Plus, &Wren_Plus::Descriptor}, {Model::Wren_Kite, &Wren_Kite::Descriptor},
};

// The distance words the simulated Tern models put in every packet (the
// length-field ones too: kTernVariableLength).
constexpr int kTernWords = 42;
}  // namespace

const lidar::ModelDescriptor& describe(Model model)
{
    for (const ModelEntry& e : kModels)
        if (e.model == model)
            return e.describe();
    return kModels[0].describe();
}

QString modelName(Model model)
{
    return describe(model).name();
}

bool modelFromName(const QString& name, Model* model)
{
    for (const ModelEntry& e : kModels) {
        if (e.describe().name() == name) {
            *model = e.model;
            return true;
        }
    }
    return false;
}

QStringList allModelNames()
{
    QStringList names;
    for (const ModelEntry& e : kModels)
        names << e.describe().name();
    return names;
}

Family familyOf(Model model)
{
    return describe(model).family == lidar::ModelFamily::Wren ? Family::Wren : Family::Tern;
}

bool carriesCalendar(Model model)
{
    return describe(model).gps.stamped;
}

PacketLayout layoutOf(Model model)
{
    const lidar::PacketGeometry& geometry = describe(model).geometry;
    if (geometry.span == lidar::PacketSpan::StartToEnd) {
        // The packets give their own start and end: samples half a degree
        // apart, 45 packets of 8 degrees.
        constexpr double kStep = 0.5;
        return PacketLayout{45, geometry.groups, geometry.channels, kStep * geometry.groups, kStep};
    }
    // A packet's fixed span, the words spread over it.
    const int packets = int(std::lround(360.0 / geometry.spanDegrees));
    return PacketLayout{packets, kTernWords, geometry.channels, geometry.spanDegrees,
                        geometry.spanDegrees / kTernWords};
}

uint16_t periodWord(double rpm)
{
    if (!(rpm > 0.0))
        return 0;
    const double word = std::floor(2500000.0 / rpm);
    if (word < 1.0)
        return 1;
    if (word > 65535.0)
        return 65535;
    return static_cast<uint16_t>(word);
}

}  // namespace sim
