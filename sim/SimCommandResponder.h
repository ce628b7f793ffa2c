#pragma once
// How the simulated device answers the 188-byte command packets: A5 5A,
// command class at byte 2, command code at 184, parameter at 185, FA FB at
// 186, the filter byte at 181 and the device parameter at 141-142 (Tern_Plus)
// or 172 (Wren models).

#include "SimDevice.h"
#include "SimModel.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace sim {

enum class CommandKind { Unknown, ReadParameters, SetFrequency, SetFilter, SetDeviceParam };

struct CommandResult {
    CommandKind kind = CommandKind::Unknown;
    bool accepted = false;  // a command this model understands
    bool stateChanged = false;
    QByteArray reply;       // empty when the device does not answer
    QString description;    // for the status output
};

constexpr int kCommandLength = 188;

// Header, length and trailer of a command packet.
bool isCommandPacket(const QByteArray& bytes);

// Applies one command to `state` and builds the device's answer. Reading
// the parameters, setting the filter and setting the device parameter are
// answered with the parameters reply; setting the frequency is not (the
// host repeats it after every reply). A class byte that does not belong to
// the command code for this model (its descriptor's command set) makes the
// command unknown.
CommandResult handleCommand(Model model, const QByteArray& command, DeviceState& state,
                            const FirmwareInfo& firmware);

// The model's parameters reply, of the size and with the version bytes
// where the model's descriptor has them.
QByteArray parametersReply(Model model, const DeviceState& state, const FirmwareInfo& firmware);

// Cuts whole command packets out of a byte stream (a serial line), dropping
// anything that cannot start one; a partial command stays in `buffer`.
QVector<QByteArray> takeCommands(QByteArray& buffer);

// The filter byte of each family: Tern codes 11 normal, 10 none, 12 within
// three metres; Wren 1 normal, 0 none.
uint8_t filterByte(Model model, FilterMode mode);

}  // namespace sim
