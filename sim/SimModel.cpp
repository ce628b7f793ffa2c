#include "SimModel.h"

#include <cmath>

namespace sim {

namespace {
struct ModelEntry {
    Model model;
    const char* name;
};
const ModelEntry kModels[] = {
    {Model::Tern, "Tern"},           {Model::Tern_P, "Tern_P"},       {Model::Tern_GPS, "Tern_GPS"},
    {Model::Tern_Plus, "Tern_Plus"}, {Model::Wren_Plus, "Wren_Plus"}, {Model::Wren_Kite, "Wren_Kite"},
};
}  // namespace

QString modelName(Model model)
{
    for (const ModelEntry& e : kModels)
        if (e.model == model)
            return QString::fromLatin1(e.name);
    return QString();
}

bool modelFromName(const QString& name, Model* model)
{
    for (const ModelEntry& e : kModels) {
        if (name == QLatin1String(e.name)) {
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
        names << QString::fromLatin1(e.name);
    return names;
}

Family familyOf(Model model)
{
    return (model == Model::Wren_Plus || model == Model::Wren_Kite) ? Family::Wren : Family::Tern;
}

bool carriesCalendar(Model model)
{
    return model == Model::Tern_P || model == Model::Tern_GPS || model == Model::Tern_Plus;
}

PacketLayout layoutOf(Model model)
{
    switch (model) {
    case Model::Wren_Plus:
        // 16 samples half a degree apart, two channels; 45 packets of 8 degrees.
        return PacketLayout{45, 16, 2, 8.0, 0.5};
    case Model::Wren_Kite:
        return PacketLayout{45, 16, 1, 8.0, 0.5};
    default:
        // The Tern family: 42 distance words over 15 degrees, 24 packets a turn.
        return PacketLayout{24, 42, 1, 15.0, 15.0 / 42.0};
    }
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
