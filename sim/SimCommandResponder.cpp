#include "SimCommandResponder.h"

#include "ModelDescriptor.h"

#include <cmath>

namespace sim {

namespace {

constexpr uint8_t kReadParameters = 0x03;
constexpr uint8_t kSetFrequency = 0x01;
constexpr uint8_t kSetFilter = 0x06;
constexpr uint8_t kSetDeviceParam = 0x0A;

uint8_t at(const QByteArray& b, int offset)
{
    return static_cast<uint8_t>(b[offset]);
}

void put8(QByteArray& p, int offset, int value)
{
    p[offset] = static_cast<char>(value & 0xFF);
}

lidar::DeviceParam deviceParamOf(Model model)
{
    return describe(model).commands.deviceParam;
}

// The command class byte each model puts in front of each command code; 0
// when the model has no such command.
uint8_t expectedClass(Model model, uint8_t code)
{
    const lidar::CommandSet& commands = describe(model).commands;
    switch (code) {
    case kReadParameters: return commands.readParamClass;
    case kSetFrequency: return 0x55;
    case kSetFilter: return commands.setFilterClass;
    case kSetDeviceParam: return commands.deviceParam != lidar::DeviceParam::None ? 0x55 : 0;
    default: return 0;
    }
}

bool filterFromByte(Model model, uint8_t value, FilterMode* mode)
{
    if (familyOf(model) == Family::Wren) {
        if (value > 1)
            return false;
        *mode = value == 1 ? FilterMode::Normal : FilterMode::None;
        return true;
    }
    switch (value) {
    case 11: *mode = FilterMode::Normal; return true;
    case 10: *mode = FilterMode::None; return true;
    case 12: *mode = FilterMode::WithinThreeMetres; return true;
    default: return false;
    }
}

QString filterName(FilterMode mode)
{
    switch (mode) {
    case FilterMode::Normal: return QStringLiteral("normal filtering");
    case FilterMode::None: return QStringLiteral("no filtering");
    case FilterMode::WithinThreeMetres: return QStringLiteral("within three meters");
    }
    return QString();
}

// Tern_Plus carries its motor speed setting in rpm (revolutions per second
// times 60) at bytes 141-142; the Wren models a rate in revolutions per
// second at byte 172. A value outside what the motor can do is kept (and
// echoed, for Wren) but does not change the rotation.
bool applyDeviceParam(Model model, const QByteArray& command, DeviceState& state, QString* what)
{
    if (deviceParamOf(model) == lidar::DeviceParam::MotorRpm) {
        const int rpm = (at(command, 141) << 8) | at(command, 142);
        *what = QStringLiteral("device parameter %1 rpm").arg(rpm);
        if (rpm < kMinRpm || rpm > kMaxRpm)
            return false;
        state.rpm = rpm;
        return true;
    }
    const uint8_t value = at(command, 172);
    *what = QStringLiteral("device parameter %1").arg(value);
    const bool changed = state.deviceParam != value;
    state.deviceParam = value;
    const double rpm = value * 60.0;
    if (rpm >= kMinRpm && rpm <= kMaxRpm && rpm != state.rpm) {
        state.rpm = rpm;
        return true;
    }
    return changed;
}

}  // namespace

uint8_t filterByte(Model model, FilterMode mode)
{
    if (familyOf(model) == Family::Wren)
        return mode == FilterMode::Normal ? 1 : 0;
    switch (mode) {
    case FilterMode::Normal: return 11;
    case FilterMode::None: return 10;
    case FilterMode::WithinThreeMetres: return 12;
    }
    return 11;
}

bool isCommandPacket(const QByteArray& b)
{
    return b.size() == kCommandLength && at(b, 0) == 0xA5 && at(b, 1) == 0x5A && at(b, 186) == 0xFA &&
           at(b, 187) == 0xFB;
}

QByteArray parametersReply(Model model, const DeviceState& state, const FirmwareInfo& firmware)
{
    const lidar::ModelDescriptor& described = describe(model);
    const int length = described.packets.replySize;
    QByteArray p(length, '\0');
    put8(p, 0, 0xA5);
    put8(p, 1, 0x5A);
    put8(p, 2, described.commands.readParamClass);
    const int versionAt = described.packets.replyVersionAt;
    const int fields[6] = {firmware.date.year() - 2000, firmware.date.month(), firmware.date.day(),
                           firmware.major, firmware.minor, firmware.patch};
    for (int i = 0; i < 6; ++i)
        put8(p, versionAt + i, fields[i]);
    put8(p, 181, filterByte(model, state.filter));
    switch (described.commands.deviceParam) {
    case lidar::DeviceParam::MotorRpm: {
        const int rpm = int(std::lround(state.rpm));
        put8(p, 141, rpm >> 8);
        put8(p, 142, rpm);
        break;
    }
    case lidar::DeviceParam::ValueAt172: put8(p, 172, state.deviceParam); break;
    case lidar::DeviceParam::None: break;
    }
    if (length == 188)
        put8(p, 184, kReadParameters);
    put8(p, length - 2, 0xFA);
    put8(p, length - 1, 0xFB);
    return p;
}

CommandResult handleCommand(Model model, const QByteArray& command, DeviceState& state,
                            const FirmwareInfo& firmware)
{
    CommandResult r;
    if (!isCommandPacket(command)) {
        r.description = QStringLiteral("ignored a malformed command");
        return r;
    }
    const uint8_t commandClass = at(command, 2);
    const uint8_t code = at(command, 184);
    const uint8_t parameter = at(command, 185);
    const uint8_t expected = expectedClass(model, code);
    if (expected == 0 || commandClass != expected) {
        r.description = QStringLiteral("ignored command class 0x%1 code %2")
                            .arg(commandClass, 2, 16, QLatin1Char('0'))
                            .arg(code);
        return r;
    }
    r.accepted = true;
    switch (code) {
    case kReadParameters:
        r.kind = CommandKind::ReadParameters;
        r.description = QStringLiteral("read parameters");
        break;
    case kSetFrequency: {
        r.kind = CommandKind::SetFrequency;
        const bool run = parameter != 0;
        r.stateChanged = run != state.motorRunning;
        state.motorRunning = run;
        state.frequencyCode = parameter;
        r.description = run ? QStringLiteral("motor on") : QStringLiteral("motor off");
        return r;  // no answer: the host repeats this after every reply
    }
    case kSetFilter: {
        r.kind = CommandKind::SetFilter;
        FilterMode mode;
        if (filterFromByte(model, at(command, 181), &mode)) {
            r.stateChanged = mode != state.filter;
            state.filter = mode;
            r.description = QStringLiteral("filter: %1").arg(filterName(mode));
        } else {
            r.description = QStringLiteral("filter: unknown code %1 kept %2")
                                .arg(at(command, 181))
                                .arg(filterName(state.filter));
        }
        break;
    }
    case kSetDeviceParam:
        r.kind = CommandKind::SetDeviceParam;
        r.stateChanged = applyDeviceParam(model, command, state, &r.description);
        break;
    }
    r.reply = parametersReply(model, state, firmware);
    return r;
}

QVector<QByteArray> takeCommands(QByteArray& buffer)
{
    static const QByteArray header("\xA5\x5A", 2);
    QVector<QByteArray> commands;
    for (;;) {
        const int start = buffer.indexOf(header);
        if (start < 0) {
            // Keep a last A5: it may be the first half of a header.
            const bool half = !buffer.isEmpty() && at(buffer, buffer.size() - 1) == 0xA5;
            buffer = half ? buffer.right(1) : QByteArray();
            return commands;
        }
        buffer.remove(0, start);
        if (buffer.size() < kCommandLength)
            return commands;
        if (at(buffer, 186) == 0xFA && at(buffer, 187) == 0xFB) {
            commands.append(buffer.left(kCommandLength));
            buffer.remove(0, kCommandLength);
        } else {
            buffer.remove(0, 1);  // not a command here: look for the next header
        }
    }
}

}  // namespace sim
