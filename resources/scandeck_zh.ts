<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>SelectConnectType</name>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="19"/>
        <source>Select Connect Type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="64"/>
        <source> LiDAR :</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="85"/>
        <source>Serial Port</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="95"/>
        <source>Network</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="130"/>
        <source>Port:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="147"/>
        <source>Refresh</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="154"/>
        <source>Baud Rate:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="193"/>
        <source>Data Bits:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="227"/>
        <source>Stop Bit:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="251"/>
        <source>Parity Bit:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="262"/>
        <source>NoParity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="267"/>
        <source>OddParity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="272"/>
        <source>EvenParity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="290"/>
        <source>Lidar IP:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="304"/>
        <source>Destination IP:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="318"/>
        <source>LIdar Port:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="332"/>
        <source>Data Port:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="378"/>
        <source>Ok</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="388"/>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.cpp" line="50"/>
        <location filename="../connect/SelectConnectType.cpp" line="143"/>
        <source>Select the connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.cpp" line="102"/>
        <location filename="../connect/SelectConnectType.cpp" line="107"/>
        <location filename="../connect/SelectConnectType.cpp" line="131"/>
        <source>information</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.cpp" line="102"/>
        <source>Please select the radar port</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.cpp" line="107"/>
        <source>Please select the serial baud rate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.cpp" line="131"/>
        <source>Lidar connection failed</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
