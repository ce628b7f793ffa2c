#pragma once
// Automatic connection: every model the settings file lists is tried over
// the network and then over every serial port the system offers, in two
// passes, until one connects. A busy progress dialog stays up meanwhile; its
// Cancel button ends the search without a word.

#include "IConnectLiDAR.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>

class IniSettings;
class QWidget;

// What the settings file says to try.
struct AutoConnectPlan {
    NetworkParam network;
    // Model class name -> its "default baud rate"; ordered by name, so a
    // model listed twice is tried once.
    QMap<QString, int> baudRates;

    static AutoConnectPlan fromSettings(const IniSettings& settings);
};

class AutoConnector {
public:
    // The serial ports to try, in order. The default lists the system's.
    using PortLister = std::function<QStringList()>;
    enum class Outcome { Connected, Cancelled, Failed };
    static constexpr int kPasses = 2;

    explicit AutoConnector(IConnectLiDAR& connector, PortLister ports = PortLister());

    // Shows the progress dialog over `parent`, runs the passes and closes it.
    Outcome run(const AutoConnectPlan& plan, QWidget* parent);

    static QStringList systemSerialPorts();
    // The serial record for one port: the model's baud rate, 8N1, no flow control.
    static SerialPortParam serialLink(const QString& portName, int baudRate);

private:
    IConnectLiDAR& m_connector;
    PortLister m_ports;
};
