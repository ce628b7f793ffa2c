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

// The angles are the simulator's own, written from the packet layouts
// like its encoders, so that tests can hold them against the descriptors.
PacketLayout layoutOf(Model model)
{
    const lidar::ModelDescriptor& described = describe(model);
    if (described.family == lidar::ModelFamily::Wren) {
        // 16 samples half a degree apart; 45 packets of 8 degrees.
        return PacketLayout{45, 16, described.geometry.channels, 8.0, 0.5};
    }
    // The Tern family: 42 distance words over 15 degrees, 24 packets a turn.
    return PacketLayout{24, 42, 1, 15.0, 15.0 / 42.0};
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
