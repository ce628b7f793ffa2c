<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>AboutDialog</name>
    <message>
        <location filename="../app/AboutDialog.cpp" line="+89"/>
        <source>About</source>
        <translation>关于</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Lidar firmware:</source>
        <translation>雷达固件版本：</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Keyboard shortcuts:</source>
        <translation>键盘快捷键：</translation>
    </message>
</context>
<context>
    <name>AnalysisTools</name>
    <message>
        <location filename="../app/AnalysisTools.cpp" line="+131"/>
        <source>Analysis</source>
        <translation>分析</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Analysis – reference and change, range statistics, closest per sector</source>
        <translation>分析 – 参考与变化、距离统计、各扇区最近点</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Set reference</source>
        <translation>设置参考</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>The frame on screen or the median over the next frames; then points are coloured by their change</source>
        <translation>当前显示的帧或接下来若干帧的中值；之后点按变化着色</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Range statistics</source>
        <translation>距离统计</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Statistics over N frames – return rate and spread of every direction</source>
        <translation>N 帧统计 – 每个方向的回波率与离散度</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Closest per sector</source>
        <translation>各扇区最近点</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>The nearest return in each sector around the lidar</source>
        <translation>雷达周围每个扇区内最近的回波</translation>
    </message>
    <message>
        <location line="+41"/>
        <source>Change</source>
        <translation>变化</translation>
    </message>
</context>
<context>
    <name>AutoConnector</name>
    <message>
        <location filename="../app/AutoConnector.cpp" line="+15"/>
        <source>Trying to connect the radar</source>
        <translation>正在尝试连接雷达</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>wait...</source>
        <translation>请稍候...</translation>
    </message>
</context>
<context>
    <name>BagExportDialog</name>
    <message>
        <location filename="../playback/PlayerBagExport.cpp" line="+23"/>
        <location line="+14"/>
        <source>Export bag</source>
        <translation>导出 ROS bag</translation>
    </message>
    <message>
        <location line="-3"/>
        <source>Browse</source>
        <translation>浏览</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>ROS bags (*.bag)</source>
        <translation>ROS bag 文件 (*.bag)</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>First frame</source>
        <translation>起始帧</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Last frame</source>
        <translation>结束帧</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>File</source>
        <translation>文件</translation>
    </message>
</context>
<context>
    <name>BoxSelectionDialog</name>
    <message>
        <location filename="../measure/BoxSelectionDialog.cpp" line="+10"/>
        <location line="+13"/>
        <source>Box Selection Settings</source>
        <translation>框选设置</translation>
    </message>
</context>
<context>
    <name>CaptureFile</name>
    <message>
        <location filename="../lidar/CaptureFile.cpp" line="+85"/>
        <source>Cannot open %1: %2</source>
        <translation>无法打开 %1：%2</translation>
    </message>
    <message>
        <location line="+24"/>
        <source>the capture</source>
        <translation>抓包文件</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Cannot read %1 as a capture: %2</source>
        <translation>无法将 %1 作为抓包文件读取：%2</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>The link type %1 (%2) of %3 is not supported: only Ethernet, Linux cooked (SLL, SLL2), raw IP and BSD loopback captures can be read</source>
        <translation>不支持 %3 的链路类型 %1（%2）：只能读取以太网、Linux cooked（SLL、SLL2）、原始 IP 和 BSD 回环的抓包文件</translation>
    </message>
    <message>
        <location line="+54"/>
        <source>The capture is damaged or cut short after %1 packets (%2); what came before is used</source>
        <translation>抓包文件在第 %1 个数据包之后损坏或被截断（%2）；已使用之前的数据</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>%1 datagrams were not captured whole (snapshot length too small) and were skipped</source>
        <translation>%1 个数据报未被完整抓取（快照长度太小），已跳过</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>%1 IP fragments never made a whole datagram and were skipped</source>
        <translation>%1 个 IP 分片未能组成完整数据报，已跳过</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>%1 packets with broken headers were skipped</source>
        <translation>已跳过 %1 个报头损坏的数据包</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>The capture holds no UDP datagram to port %1 (%2 packets read)</source>
        <translation>抓包文件中没有发往端口 %1 的 UDP 数据报（已读取 %2 个数据包）</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>; its UDP datagrams go to port %1</source>
        <translation>；其中的 UDP 数据报发往端口 %1</translation>
    </message>
    <message>
        <location filename="../lidar/CaptureFrames.cpp" line="+21"/>
        <source>Unknown lidar model &quot;%1&quot;</source>
        <translation>未知的雷达型号“%1”</translation>
    </message>
    <message>
        <location filename="../lidar/CaptureIndexer.cpp" line="+55"/>
        <source>The decoded frames could not be kept (%1): the capture plays up to frame %2</source>
        <translation>无法保存解码后的帧（%1）：抓包文件只能播放到第 %2 帧</translation>
    </message>
</context>
<context>
    <name>CaptureModelDialog</name>
    <message>
        <location filename="../playback/CaptureModelDialog.cpp" line="+22"/>
        <source>Open a capture</source>
        <translation>打开抓包文件</translation>
    </message>
    <message>
        <location line="+12"/>
        <source>A capture does not name its lidar. Which model sent this one, and to which port?</source>
        <translation>抓包文件中没有雷达型号。这份数据来自哪个型号，发往哪个端口？</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Model:</source>
        <translation>型号：</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Data port:</source>
        <translation>数据端口：</translation>
    </message>
</context>
<context>
    <name>CaptureSpillFrames</name>
    <message>
        <location filename="../playback/PlayerFrames.cpp" line="+103"/>
        <source>Unable to parse this file</source>
        <translation>无法解析该文件</translation>
    </message>
</context>
<context>
    <name>ColourLegend</name>
    <message>
        <location filename="../display/ColourLegend.cpp" line="+21"/>
        <source>every point</source>
        <translation>所有点</translation>
    </message>
    <message>
        <location filename="../display/ChangeColouring.cpp" line="+23"/>
        <source>nearer by more than %1 cm</source>
        <translation>近了超过 %1 厘米</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>within ±%1 cm</source>
        <translation>在 ±%1 厘米以内</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>farther by more than %1 cm</source>
        <translation>远了超过 %1 厘米</translation>
    </message>
</context>
<context>
    <name>DemoLidar</name>
    <message>
        <location filename="../app/DemoLidar.cpp" line="+52"/>
        <source>Unknown lidar model %1</source>
        <translation>未知的雷达型号 %1</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>The simulated lidar could not start: %1</source>
        <translation>模拟雷达无法启动：%1</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>No frame arrived from the simulated lidar</source>
        <translation>未收到模拟雷达的数据帧</translation>
    </message>
</context>
<context>
    <name>DeviceSettingsPanel</name>
    <message>
        <location filename="../device/DeviceSettingsPanel.cpp" line="+52"/>
        <source>Normal filtering</source>
        <translation>正常滤波</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>No filtering</source>
        <translation>不滤波</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Within three meters</source>
        <translation>三米以内</translation>
    </message>
    <message>
        <location line="+4"/>
        <location line="+13"/>
        <source>Cannot be set</source>
        <translation>不可设置</translation>
    </message>
</context>
<context>
    <name>ExportDataDialog</name>
    <message>
        <location filename="../export/ExportDataDialog.ui" line="+14"/>
        <source>Export Data</source>
        <translation>导出数据</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Frames to save:</source>
        <translation>保存帧数：</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>The next frames shown are written, live or offline</source>
        <translation>写入接下来显示的帧（实时或离线）</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>Start angle:</source>
        <translation>起始角度：</translation>
    </message>
    <message>
        <location line="+7"/>
        <location line="+17"/>
        <source> °</source>
        <translation> °</translation>
    </message>
    <message>
        <location line="-7"/>
        <source>End angle:</source>
        <translation>结束角度：</translation>
    </message>
    <message>
        <location line="+20"/>
        <source>Save to:</source>
        <translation>保存到：</translation>
    </message>
    <message>
        <location line="+12"/>
        <source>Browse...</source>
        <translation>浏览...</translation>
    </message>
    <message>
        <location filename="../export/ExportDataDialog.cpp" line="+34"/>
        <source>Setting a save path</source>
        <translation>设置保存路径</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>critical</source>
        <translation>错误</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>The number of saves must be greater than zero</source>
        <translation>保存帧数必须大于零</translation>
    </message>
</context>
<context>
    <name>FrameNumberBox</name>
    <message>
        <location filename="../playback/FrameNumberBox.cpp" line="+49"/>
        <source>No frame %1: enter a number from %2 to %3</source>
        <translation>没有第 %1 帧：请输入 %2 到 %3 之间的数字</translation>
    </message>
</context>
<context>
    <name>GPSTest</name>
    <message>
        <location filename="../device/GPSTest.ui" line="+14"/>
        <source>GPS Test</source>
        <translation>GPS 测试</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Minimum（Millisecond）：</source>
        <translation>最小值（毫秒）：</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Maximum（Millisecond）：</source>
        <translation>最大值（毫秒）：</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Pause or resume the display</source>
        <translation>暂停或继续显示</translation>
    </message>
    <message>
        <location line="+21"/>
        <source>Current frame time information</source>
        <translation>当前帧时间信息</translation>
    </message>
    <message>
        <location line="+6"/>
        <location line="+135"/>
        <source>Year：</source>
        <translation>年：</translation>
    </message>
    <message>
        <location line="-121"/>
        <location line="+135"/>
        <source>Month：</source>
        <translation>月：</translation>
    </message>
    <message>
        <location line="-121"/>
        <location line="+135"/>
        <source>Day：</source>
        <translation>日：</translation>
    </message>
    <message>
        <location line="-121"/>
        <location line="+135"/>
        <source>Hour：</source>
        <translation>时：</translation>
    </message>
    <message>
        <location line="-121"/>
        <location line="+135"/>
        <source>Minute：</source>
        <translation>分：</translation>
    </message>
    <message>
        <location line="-121"/>
        <location line="+135"/>
        <source>Second：</source>
        <translation>秒：</translation>
    </message>
    <message>
        <location line="-121"/>
        <location line="+135"/>
        <source>Millisecond：</source>
        <translation>毫秒：</translation>
    </message>
    <message>
        <location line="-121"/>
        <location line="+135"/>
        <source>Microsecond：</source>
        <translation>微秒：</translation>
    </message>
    <message>
        <location line="-121"/>
        <location line="+135"/>
        <source>Timestamp：</source>
        <translation>时间戳：</translation>
    </message>
    <message>
        <location line="-118"/>
        <source>Last frame time information</source>
        <translation>上一帧时间信息</translation>
    </message>
</context>
<context>
    <name>GpsTimingCharts</name>
    <message>
        <location filename="../device/GpsTimingCharts.cpp" line="+139"/>
        <source>No GPS time stamps yet</source>
        <translation>尚无 GPS 时间戳</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>%1 ppm</source>
        <translation>%1 ppm</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>not known yet</source>
        <translation>尚未知</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Packet time minus computer time: %1 ms; drift over the last minute: %2</source>
        <translation>数据包时间减计算机时间：%1 毫秒；最近一分钟的漂移：%2</translation>
    </message>
    <message>
        <location line="+32"/>
        <source>Interval from packet to packet (ms) over time (s)</source>
        <translation>数据包间隔（毫秒）随时间（秒）</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Packet time minus computer time, change since the first packet (ms)</source>
        <translation>数据包时间减计算机时间，相对第一个数据包的变化（毫秒）</translation>
    </message>
</context>
<context>
    <name>GridPolarDialog</name>
    <message>
        <location filename="../measure/GridPolarDialog.ui" line="+14"/>
        <source>GridPolarDialog</source>
        <translation>网格与极坐标设置</translation>
    </message>
    <message>
        <location line="+12"/>
        <source>R:</source>
        <translation>红:</translation>
    </message>
    <message>
        <location line="+45"/>
        <source>G:</source>
        <translation>绿:</translation>
    </message>
    <message>
        <location line="+45"/>
        <source>B:</source>
        <translation>蓝:</translation>
    </message>
    <message>
        <location line="+45"/>
        <source>Grid Step(CM):</source>
        <translation>网格间距(CM)：</translation>
    </message>
    <message>
        <location line="+45"/>
        <source>Polar Setp(CM):</source>
        <translation>极坐标间距(CM)：</translation>
    </message>
    <message>
        <location line="+45"/>
        <source>Grid and Polar Setp(CM):</source>
        <translation>网格与极坐标间距(CM)：</translation>
    </message>
    <message>
        <location filename="../measure/GridPolarDialog.cpp" line="+26"/>
        <location line="+33"/>
        <source>setting</source>
        <translation>设置</translation>
    </message>
</context>
<context>
    <name>KeyboardShortcuts</name>
    <message>
        <location filename="../app/ScanDeckWiring.cpp" line="+98"/>
        <source>Play or pause (recording or live display)</source>
        <translation>播放或暂停（录制文件或实时显示）</translation>
    </message>
    <message>
        <location filename="../app/PlayerKeys.cpp" line="+8"/>
        <source>Previous frame</source>
        <translation>上一帧</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Next frame</source>
        <translation>下一帧</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>First frame</source>
        <translation>第一帧</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Last frame</source>
        <translation>最后一帧</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Next incomplete frame (recording)</source>
        <translation>下一个不完整帧（录制文件）</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Previous incomplete frame (recording)</source>
        <translation>上一个不完整帧（录制文件）</translation>
    </message>
    <message>
        <location filename="../app/ScanDeckWiring.cpp" line="+8"/>
        <source>Open a recording</source>
        <translation>打开录制文件</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Export frames to CSV (start or stop)</source>
        <translation>导出帧到 CSV（开始或停止）</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>This list and the version (About)</source>
        <translation>本列表与版本信息（关于）</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Grid on or off</source>
        <translation>打开或关闭网格</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Larger points (in the view)</source>
        <translation>增大点（在视图中）</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Smaller points (in the view)</source>
        <translation>减小点（在视图中）</translation>
    </message>
</context>
<context>
    <name>LidarAnalysis</name>
    <message>
        <location filename="../lidar/LidarAnalysis.cpp" line="+77"/>
        <source>Please set a valid connection status!</source>
        <translation>请设置有效的连接状态！</translation>
    </message>
    <message>
        <location line="+51"/>
        <source>Failed to send data</source>
        <translation>数据发送失败</translation>
    </message>
    <message>
        <location line="+130"/>
        <source>The recording %1 could not be completed (%2).</source>
        <translation>录制文件 %1 无法完成（%2）。</translation>
    </message>
    <message>
        <location line="+29"/>
        <source>Recording stopped: %1 could not be written (%2). It keeps the %3 packets recorded before.</source>
        <translation>录制已停止：无法写入 %1（%2）。文件保留了此前录制的 %3 个数据包。</translation>
    </message>
</context>
<context>
    <name>LinkStatusReadout</name>
    <message>
        <location filename="../app/LinkStatusReadout.cpp" line="+89"/>
        <source>No data from the lidar for %1 s</source>
        <translation>已 %1 秒未收到雷达数据</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>%1 packets/s, %2 frames/s, %3 s ago</source>
        <translation>%1 包/秒，%2 帧/秒，%3 秒前</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>%1 kB/s, %2 frames/s, %3 s ago</source>
        <translation>%1 kB/秒，%2 帧/秒，%3 秒前</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>%1 — %2</source>
        <translation>%1 — %2</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Link to the lidar: packets (over a serial port, kilobytes) and frames per second, and how long ago the last data arrived. frames/s counts the revolutions the lidar completes; the FPS figure in the view counts how often the view is drawn.</source>
        <translation>与雷达的链路：每秒数据包数（串口为千字节数）和帧数，以及距上次收到数据的时间。帧/秒是雷达每秒完成的旋转圈数；视图中的 FPS 是视图每秒绘制的次数。</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>Amber: revolutions arrive incomplete or data is rejected. The Stream health window shows the last minute.</source>
        <translation>琥珀色：收到的圈不完整或有数据被拒收。“数据流健康”窗口显示最近一分钟的情况。</translation>
    </message>
    <message>
        <location filename="../app/RecentHealth.cpp" line="+49"/>
        <source>%1° at %2–%3°</source>
        <translation>%1°，位于 %2–%3°</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>%1 of the last %2 revolutions incomplete, worst gap %3</source>
        <translation>最近 %2 圈中有 %1 圈不完整，最大缺口 %3</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>1 packet rejected in the last second</source>
        <translation>最近一秒拒收 1 个数据包</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 packets rejected in the last second</source>
        <translation>最近一秒拒收 %1 个数据包</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>1 byte skipped in the last second</source>
        <translation>最近一秒跳过 1 个字节</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 bytes skipped in the last second</source>
        <translation>最近一秒跳过 %1 个字节</translation>
    </message>
</context>
<context>
    <name>MemoryFrames</name>
    <message>
        <location filename="../playback/PlayerFrames.cpp" line="+12"/>
        <source>Unable to parse this file</source>
        <translation>无法解析该文件</translation>
    </message>
</context>
<context>
    <name>OffinePlayWidget</name>
    <message>
        <location filename="../playback/OffinePlayWidget.ui" line="+19"/>
        <source>Offline playback</source>
        <translation>离线回放</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Open a recording (Ctrl+O)</source>
        <translation>打开录制文件（Ctrl+O）</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Open offline data</source>
        <translation>打开离线数据</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Previous frame (Left)</source>
        <translation>上一帧（左方向键）</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Play / pause (Space)</source>
        <translation>播放 / 暂停（空格）</translation>
    </message>
    <message>
        <location line="+15"/>
        <source>Next frame (Right)</source>
        <translation>下一帧（右方向键）</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Loop Playback</source>
        <translation>循环播放</translation>
    </message>
    <message>
        <location line="+15"/>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>Playback speed：</source>
        <translation>回放速度：</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>X0.5</source>
        <translation>X0.5</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>X1</source>
        <translation>X1</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>X2</source>
        <translation>X2</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>X3</source>
        <translation>X3</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Position in the recording (Home: first frame, End: last frame)</source>
        <translation>录制文件中的位置（Home：第一帧，End：最后一帧）</translation>
    </message>
    <message>
        <location line="+33"/>
        <source>Data Show</source>
        <translation>数据显示</translation>
    </message>
    <message>
        <location line="+15"/>
        <source>Export the next frames to a CSV file (Ctrl+E)</source>
        <translation>将接下来的若干帧导出到 CSV 文件（Ctrl+E）</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Export csv</source>
        <translation>导出 CSV</translation>
    </message>
    <message>
        <location filename="../playback/OffinePlayWidget.cpp" line="+146"/>
        <location line="+5"/>
        <location line="+62"/>
        <location line="+21"/>
        <location line="+47"/>
        <location line="+16"/>
        <location line="+39"/>
        <location line="+177"/>
        <source>information</source>
        <translation>提示</translation>
    </message>
    <message>
        <location line="-300"/>
        <source>Please disconnect first!</source>
        <translation>请先断开连接！</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Open File</source>
        <translation>打开文件</translation>
    </message>
    <message>
        <location line="+14"/>
        <location filename="../playback/RecordingRefusal.cpp" line="+12"/>
        <source>Unable to parse this file</source>
        <translation>无法解析该文件</translation>
    </message>
    <message>
        <location line="-17"/>
        <source>Recordings (*.txt)</source>
        <translation>录制文件 (*.txt)</translation>
    </message>
    <message>
        <location line="+364"/>
        <location filename="../playback/PlayerBagExport.cpp" line="+31"/>
        <source>Export bag</source>
        <translation>导出 ROS bag</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Writes frames of the file to a ROS bag</source>
        <translation>将文件中的帧写入 ROS bag</translation>
    </message>
    <message>
        <location line="-365"/>
        <source>Captures (*.pcap *.pcapng)</source>
        <translation>抓包文件 (*.pcap *.pcapng)</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>All files (*)</source>
        <translation>所有文件 (*)</translation>
    </message>
    <message>
        <location line="+90"/>
        <source>Indexing %1%</source>
        <translation>正在建立索引 %1%</translation>
    </message>
    <message>
        <location line="+28"/>
        <source>Frame %1 cannot be read: the file has changed since it was opened. The frames before it still play.</source>
        <translation>无法读取第 %1 帧：文件在打开后已被修改。之前的帧仍可播放。</translation>
    </message>
    <message>
        <location line="+177"/>
        <source>There is an error in the input. Please enter it again</source>
        <translation>输入有误，请重新输入</translation>
    </message>
    <message>
        <location line="+50"/>
        <location line="+7"/>
        <source>File saved</source>
        <translation>文件已保存</translation>
    </message>
    <message>
        <location line="-7"/>
        <location line="+7"/>
        <source>File save path:%1</source>
        <translation>文件保存路径：%1</translation>
    </message>
    <message>
        <location line="-5"/>
        <source>warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>File save failed!</source>
        <translation>文件保存失败！</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Export CSV</source>
        <translation>导出 CSV</translation>
    </message>
    <message>
        <location filename="../playback/RecordingRefusal.cpp" line="+5"/>
        <source>The recording was cut short. &quot;scandeck-cli repair %1&quot; makes its complete packets readable again.</source>
        <translation>该录制文件不完整。运行 &quot;scandeck-cli repair %1&quot; 可恢复其中完整的数据包。</translation>
    </message>
    <message>
        <location filename="../playback/PlayerBagExport.cpp" line="-17"/>
        <source>Frames %1 to %2 are not in the file (1 to %3)</source>
        <translation>第 %1 至 %2 帧不在文件中（共 1 至 %3 帧）</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Writing the bag...</source>
        <translation>正在写入 bag 文件...</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Frame %1 cannot be read</source>
        <translation>无法读取第 %1 帧</translation>
    </message>
    <message>
        <location filename="../playback/PlayerHealth.cpp" line="+82"/>
        <source>whole · 1 packet</source>
        <translation>完整 · 1 个数据包</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>whole · %1 packets</source>
        <translation>完整 · %1 个数据包</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>1 packet missing</source>
        <translation>缺少 1 个数据包</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 packets missing</source>
        <translation>缺少 %1 个数据包</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>incomplete</source>
        <translation>不完整</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>%1 · gap %2</source>
        <translation>%1 · 缺口 %2</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>%1 · %2 gaps, widest %3</source>
        <translation>%1 · %2 个缺口，最大 %3</translation>
    </message>
</context>
<context>
    <name>PointTable</name>
    <message>
        <location filename="../display/PointTableRow.cpp" line="+9"/>
        <source>  ID  </source>
        <translation>  ID  </translation>
    </message>
    <message>
        <location line="+1"/>
        <source>    Points_XYZ    </source>
        <translation>    坐标 XYZ    </translation>
    </message>
    <message>
        <location line="+1"/>
        <source>   Azimuth  </source>
        <translation>   方位角  </translation>
    </message>
    <message>
        <location line="+1"/>
        <source>  Distance(m)  </source>
        <translation>  距离(m)  </translation>
    </message>
    <message>
        <location line="+1"/>
        <source>  Intensity  </source>
        <translation>  强度  </translation>
    </message>
    <message>
        <location line="+1"/>
        <source>  Timestamp</source>
        <translation>  时间戳</translation>
    </message>
</context>
<context>
    <name>RangeSelectDialog</name>
    <message>
        <location filename="../measure/RangeSelectDialog.ui" line="+14"/>
        <source>Resize Range</source>
        <translation>调整范围</translation>
    </message>
    <message>
        <location line="+11"/>
        <source> X Axis Range：</source>
        <translation> X轴范围：</translation>
    </message>
    <message>
        <location line="+58"/>
        <source> Y Axis Range：</source>
        <translation> Y轴范围：</translation>
    </message>
    <message>
        <location line="+58"/>
        <source> Z Axis Range：</source>
        <translation> Z轴范围：</translation>
    </message>
    <message>
        <location line="+69"/>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>RangingBearing</name>
    <message>
        <location filename="../display/analysis/RangingBearing.cpp" line="+36"/>
        <source>Bearing:</source>
        <translation>方位：</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Δx:%1 CM</source>
        <translation>Δx:%1 CM</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Δy:%1 CM</source>
        <translation>Δy:%1 CM</translation>
    </message>
</context>
<context>
    <name>ReadoutTexts</name>
    <message>
        <location filename="../measure/ReadoutTexts.cpp" line="+25"/>
        <source>Azimuth:%1</source>
        <translation>方位角：%1</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Distance:%1</source>
        <translation>距离：%1</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Azimuth:</source>
        <translation>方位角：</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Distance:</source>
        <translation>距离：</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>motor speed:</source>
        <translation>电机转速：</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>motor speed: %1 hz,%2 r/s</source>
        <translation>电机转速：%1 hz,%2 r/s</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Δx:%1 CM</source>
        <translation>Δx：%1 CM</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Δy:%1 CM</source>
        <translation>Δy：%1 CM</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Δdistance:%1 CM</source>
        <translation>Δ距离：%1 CM</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Δx:</source>
        <translation>Δx：</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Δy:</source>
        <translation>Δy：</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Δdistance:</source>
        <translation>Δ距离：</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Ambient:%1</source>
        <translation>环境光：%1</translation>
    </message>
    <message>
        <location filename="../measure/StatusReadouts.cpp" line="+73"/>
        <source>azimuth:</source>
        <translation>方位角：</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>distance</source>
        <translation>距离</translation>
    </message>
</context>
<context>
    <name>RecordingFrames</name>
    <message>
        <location filename="../playback/PlayerFrames.cpp" line="-57"/>
        <source>The recording ends early (it was cut short, or it is still being written): the %1 frames before that point play. &quot;scandeck-cli repair %2&quot; makes its complete packets readable again.</source>
        <translation>录制文件提前结束（被截断，或仍在写入）：之前的 %1 帧可以播放。&quot;scandeck-cli repair %2&quot; 可以恢复其完整的数据包。</translation>
    </message>
</context>
<context>
    <name>RecordingReadout</name>
    <message>
        <location filename="../app/RecordingReadout.cpp" line="+99"/>
        <source>● %1 · %2 pkt · %3</source>
        <translation>● %1 · %2 包 · %3</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Recording into %1 for %2: %3 packets, %4 bytes written</source>
        <translation>正在录制到 %1，已录制 %2：已写入 %3 个数据包，%4 字节</translation>
    </message>
</context>
<context>
    <name>ReferenceDock</name>
    <message>
        <location filename="../analysis/ReferenceDock.cpp" line="+75"/>
        <source>Collecting %1 of %2 frames…</source>
        <translation>正在收集第 %1 / %2 帧…</translation>
    </message>
    <message>
        <location line="+10"/>
        <location line="+74"/>
        <source>Set reference</source>
        <translation>设置参考</translation>
    </message>
    <message>
        <location line="-68"/>
        <location line="+3"/>
        <location line="+3"/>
        <source>Save reference</source>
        <translation>保存参考</translation>
    </message>
    <message>
        <location line="-6"/>
        <source>There is no reference to save.</source>
        <translation>没有可保存的参考。</translation>
    </message>
    <message>
        <location line="+11"/>
        <location line="+3"/>
        <source>Load reference</source>
        <translation>加载参考</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Reference (*.csv)</source>
        <translation>参考文件 (*.csv)</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Changed: no point compared</source>
        <translation>变化：没有可比较的点</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Changed: %1 points (nearer %2, farther %3)</source>
        <translation>变化：%1 个点（变近 %2，变远 %3）</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>; largest %1 m at %2°</source>
        <translation>；最大 %1 米，位于 %2°</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>No reference</source>
        <translation>无参考</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>The reference was dropped: %1</source>
        <translation>参考已被丢弃：%1</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Reference of %1, step %2°, %3 of %4 directions with a range</source>
        <translation>%1 的参考，步长 %2°，%4 个方向中 %3 个有距离</translation>
    </message>
    <message>
        <location line="+18"/>
        <source>Reference and change</source>
        <translation>参考与变化</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Median over frames</source>
        <translation>多帧中值</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>1: the frame on screen; more: the median of each direction over the next frames</source>
        <translation>1：当前显示的帧；更多：接下来若干帧每个方向的中值</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Change colouring</source>
        <translation>变化着色</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Tolerance</source>
        <translation>容差</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Save…</source>
        <translation>保存…</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Load…</source>
        <translation>加载…</translation>
    </message>
</context>
<context>
    <name>ReferenceFile</name>
    <message>
        <location filename="../display/analysis/ReferenceFile.cpp" line="+63"/>
        <location line="+5"/>
        <location line="+5"/>
        <source>Cannot write %1: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Cannot read %1: %2</source>
        <translation>无法读取 %1：%2</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>%1 is not a reference file: it is far too large for one.</source>
        <translation>%1 不是参考文件：文件太大。</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>%1 is not a reference file: its first line does not begin with &quot;%2&quot;.</source>
        <translation>%1 不是参考文件：第一行不是以“%2”开头。</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>%1 is not a reference file: its first line names no model.</source>
        <translation>%1 不是参考文件：第一行没有型号。</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>%1 is not a reference file: its first line gives no angular step.</source>
        <translation>%1 不是参考文件：第一行没有角度步长。</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>%1 is damaged at line 2: &quot;%2&quot; should name the columns.</source>
        <translation>%1 在第 2 行损坏：“%2”应为列名。</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>%1 is damaged at line %2: %3</source>
        <translation>%1 在第 %2 行损坏：%3</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>a line holds an azimuth and a range, separated by a comma.</source>
        <translation>每行包含一个方位角和一个距离，以逗号分隔。</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>&quot;%1&quot; is no azimuth from 0 up to 360 degrees.</source>
        <translation>“%1”不是 0 到 360 度之间的方位角。</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>azimuth %1 is not one of the directions of a %2° step.</source>
        <translation>方位角 %1 不是 %2° 步长的方向之一。</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>azimuth %1 is given twice.</source>
        <translation>方位角 %1 出现了两次。</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>&quot;%1&quot; is no range in metres.</source>
        <translation>“%1”不是以米为单位的距离。</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>This reference was taken with a %1, not with a %2: a reference only fits the model it was taken with.</source>
        <translation>此参考由 %1 采集，而不是 %2：参考只适用于采集它的型号。</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>This reference was taken at an angular step of %1°, but the lidar measures every %2°: its directions do not match.</source>
        <translation>此参考的角度步长为 %1°，而雷达每 %2° 测量一次：方向不匹配。</translation>
    </message>
</context>
<context>
    <name>ReferenceTool</name>
    <message>
        <location filename="../analysis/ReferenceTool.cpp" line="+69"/>
        <source>No lidar is connected and no recording is loaded: there is nothing to take a reference from.</source>
        <translation>未连接雷达，也未加载录制文件：没有可用作参考的数据。</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>There is no frame on screen to take the reference from.</source>
        <translation>当前没有显示的帧可用作参考。</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>The frames of the recording cannot be read.</source>
        <translation>无法读取录制文件中的帧。</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>There is no reference to save.</source>
        <translation>没有可保存的参考。</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Connect a lidar or load a recording first: a reference is checked against the model it is compared with.</source>
        <translation>请先连接雷达或加载录制文件：参考需要与所比较的型号核对。</translation>
    </message>
</context>
<context>
    <name>RenderRateTip</name>
    <message>
        <location filename="../app/RenderRateTip.cpp" line="+22"/>
        <source>FPS: how many times per second the view is drawn. The lidar&apos;s own rate (frames/s) is in the link status at the bottom of the window.</source>
        <translation>FPS：视图每秒绘制的次数。雷达自身的帧率（帧/秒）显示在窗口底部的链路状态中。</translation>
    </message>
</context>
<context>
    <name>ScanDeck</name>
    <message>
        <location filename="../app/ScanDeckWiring.cpp" line="+119"/>
        <source>restart</source>
        <translation>重启</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Confirm restarting the software?</source>
        <translation>确定要重启软件吗？</translation>
    </message>
    <message>
        <location filename="../app/CsvExportControl.cpp" line="+21"/>
        <location line="+53"/>
        <location filename="../app/LiveControls.cpp" line="+220"/>
        <location filename="../app/main.cpp" line="+41"/>
        <location filename="../app/ScanDeckWiring.cpp" line="+19"/>
        <source>warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <location filename="../app/WindowStatusBar.cpp" line="+65"/>
        <source>Point Cloud Library</source>
        <translation>点云库 PCL</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>display behind: %1 frames skipped</source>
        <translation>显示滞后：已跳过 %1 帧</translation>
    </message>
    <message>
        <location filename="../app/ScanDeckWiring.cpp" line="-190"/>
        <location line="+195"/>
        <source>File saved</source>
        <translation>文件已保存</translation>
    </message>
    <message>
        <location line="-195"/>
        <location line="+195"/>
        <source>File save path:%1</source>
        <translation>文件保存路径：%1</translation>
    </message>
    <message>
        <location filename="../app/ScanDeck.cpp" line="+340"/>
        <location line="+3"/>
        <location line="+32"/>
        <source>question</source>
        <translation>询问</translation>
    </message>
    <message>
        <location line="-34"/>
        <source>Data is being recorded. Do you want to save the data before exiting the program?</source>
        <translation>正在录制数据，退出程序前是否保存数据？</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Exporting csv data, do you want to save the data before exiting the program?</source>
        <translation>正在导出 CSV 数据，退出程序前是否保存数据？</translation>
    </message>
    <message>
        <location filename="../app/LiveControls.cpp" line="-84"/>
        <location line="+12"/>
        <location line="+6"/>
        <source>information</source>
        <translation>提示</translation>
    </message>
    <message>
        <location filename="../app/ScanDeck.cpp" line="+31"/>
        <source>Whether to play offline file ?</source>
        <translation>是否播放该离线文件？</translation>
    </message>
    <message>
        <location filename="../app/LiveControls.cpp" line="-18"/>
        <location line="+12"/>
        <source>Please stop the offline playback first</source>
        <translation>请先停止离线回放</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Automatic connection failed, please connect the radar manually!</source>
        <translation>自动连接失败，请手动连接雷达！</translation>
    </message>
    <message>
        <location line="+27"/>
        <location line="+22"/>
        <source>Please connect the radar first</source>
        <translation>请先连接雷达</translation>
    </message>
    <message>
        <location line="-76"/>
        <location line="+58"/>
        <source>pause</source>
        <translation>暂停</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>play</source>
        <translation>播放</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Recorded data</source>
        <translation>已录制数据</translation>
    </message>
    <message>
        <location line="+20"/>
        <source>Unable to create the file %1</source>
        <translation>无法创建文件 %1</translation>
    </message>
    <message>
        <location line="-90"/>
        <location line="+93"/>
        <source>Recording data</source>
        <translation>正在录制数据</translation>
    </message>
    <message>
        <location filename="../app/ScanDeck.cpp" line="-156"/>
        <source>settting a save path</source>
        <translation>设置保存路径</translation>
    </message>
    <message>
        <location filename="../app/MeasureTools.cpp" line="+118"/>
        <source>Distance between two points:</source>
        <translation>两点间距离：</translation>
    </message>
    <message>
        <location filename="../app/CsvExportControl.cpp" line="-48"/>
        <location line="+17"/>
        <location line="+43"/>
        <location line="+8"/>
        <location filename="../app/ScanDeck.cpp" line="+43"/>
        <source>Export CSV</source>
        <translation>导出 CSV</translation>
    </message>
    <message>
        <location line="-72"/>
        <location line="+53"/>
        <source>File save failed!</source>
        <translation>文件保存失败！</translation>
    </message>
    <message>
        <location line="-43"/>
        <location filename="../app/ScanDeck.cpp" line="+0"/>
        <source>Exporting data</source>
        <translation>正在导出数据</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>inquiry</source>
        <translation>询问</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Do you want to cancel exporting CSV files?</source>
        <translation>是否取消导出 CSV 文件？</translation>
    </message>
</context>
<context>
    <name>ScanDeckClass</name>
    <message>
        <location filename="../app/ScanDeck.ui" line="+14"/>
        <source>ScanDeck</source>
        <translation>ScanDeck</translation>
    </message>
    <message>
        <location line="+36"/>
        <source>Lidar</source>
        <translation>雷达</translation>
    </message>
    <message>
        <location line="+27"/>
        <source>Auto Connect</source>
        <translation>自动连接</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Try every model over the network and every serial port</source>
        <translation>依次通过网络和各个串口尝试所有型号</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>Connect</source>
        <translation>连接</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Choose the model and the link</source>
        <translation>选择雷达型号和连接方式</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>Disconnect</source>
        <translation>断开</translation>
    </message>
    <message>
        <location line="+40"/>
        <source>play</source>
        <translation>播放</translation>
    </message>
    <message>
        <location line="+36"/>
        <source>Clear</source>
        <translation>清空</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Remove everything from the view</source>
        <translation>清除视图中的所有内容</translation>
    </message>
    <message>
        <location line="+20"/>
        <source>Record data</source>
        <translation>录制数据</translation>
    </message>
    <message>
        <location line="+23"/>
        <source>Record the raw data stream to a file</source>
        <translation>将原始数据流录制到文件</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>Export CSV</source>
        <translation>导出 CSV</translation>
    </message>
    <message>
        <location line="+44"/>
        <source>offline</source>
        <translation>离线</translation>
    </message>
    <message>
        <location line="+32"/>
        <source>Setting</source>
        <translation>设置</translation>
    </message>
    <message>
        <location line="+26"/>
        <source>Motor State：</source>
        <translation>电机状态：</translation>
    </message>
    <message>
        <location line="+22"/>
        <source>Motor on or off</source>
        <translation>启动或停止电机</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Lidar Filter：</source>
        <translation>雷达滤波：</translation>
    </message>
    <message>
        <location line="+27"/>
        <source>Motor Frequency：</source>
        <translation>电机频率：</translation>
    </message>
    <message>
        <location line="+38"/>
        <source>GPS Test</source>
        <translation>GPS 测试</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Show or hide the GPS time test window</source>
        <translation>显示或隐藏 GPS 时间测试窗口</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>Network Setting</source>
        <translation>网络设置</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Configure the lidar&apos;s network module</source>
        <translation>配置雷达的网络模块</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>Restart</source>
        <translation>重启</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Restart ScanDeck</source>
        <translation>重启 ScanDeck</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>Language：</source>
        <translation>语言：</translation>
    </message>
    <message>
        <location line="+84"/>
        <source>Point Size</source>
        <translation>点大小</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Point size (+ and - in the view)</source>
        <translation>点大小（在视图中按 + 和 - 调整）</translation>
    </message>
    <message>
        <location line="+23"/>
        <source>Angle</source>
        <translation>角度</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Smallest azimuth shown, degrees</source>
        <translation>显示的最小方位角（度）</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>–</source>
        <translation>–</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Largest azimuth shown, degrees</source>
        <translation>显示的最大方位角（度）</translation>
    </message>
    <message>
        <location line="+20"/>
        <source>Color</source>
        <translation>颜色</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>How the points are coloured</source>
        <translation>点云着色方式</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Intensity</source>
        <translation>强度</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Azimuth</source>
        <translation>方位角</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Solid</source>
        <translation>纯色</translation>
    </message>
    <message>
        <location line="+148"/>
        <source>Range Finding</source>
        <translation>测距</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Point Cloud Box</source>
        <translation>点云框选</translation>
    </message>
    <message>
        <location line="+33"/>
        <source>Range Resize</source>
        <translation>范围调整</translation>
    </message>
    <message>
        <location line="+33"/>
        <location line="+353"/>
        <source>Grid</source>
        <translation>网格</translation>
    </message>
    <message>
        <location line="-323"/>
        <source>Polar</source>
        <translation>极坐标</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Set Grid and Polar</source>
        <translation>网格与极坐标设置</translation>
    </message>
    <message>
        <location line="+33"/>
        <source>Axis</source>
        <translation>坐标轴</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Top</source>
        <translation>俯视</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Front</source>
        <translation>前视</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Left</source>
        <translation>左视</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Right</source>
        <translation>右视</translation>
    </message>
    <message>
        <location line="+37"/>
        <source>Point Table</source>
        <translation>点表</translation>
    </message>
    <message>
        <location line="-433"/>
        <source>About</source>
        <translation>关于</translation>
    </message>
    <message>
        <location line="-653"/>
        <source>Pause or resume the live display (Space)</source>
        <translation>暂停或继续实时显示（空格）</translation>
    </message>
    <message>
        <location line="+111"/>
        <source>Write the next frames to a CSV file (Ctrl+E)</source>
        <translation>将接下来的若干帧写入 CSV 文件（Ctrl+E）</translation>
    </message>
    <message>
        <location line="+493"/>
        <source>Show or hide the colour legend in the view</source>
        <translation>显示或隐藏视图中的颜色图例</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Legend</source>
        <translation>图例</translation>
    </message>
    <message>
        <location line="+43"/>
        <source>Version of ScanDeck and of the connected lidar, and the keyboard shortcuts (F1)</source>
        <translation>ScanDeck 与已连接雷达的版本，以及键盘快捷键（F1）</translation>
    </message>
    <message>
        <location line="+26"/>
        <source>Hide or show the panel above</source>
        <translation>隐藏或显示上方面板</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Panel</source>
        <translation>面板</translation>
    </message>
    <message>
        <location line="+58"/>
        <source>Range Finding – click two points to measure their distance</source>
        <translation>测距 – 点击两个点测量它们之间的距离</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Point Cloud Box – drag a rectangle to select the points inside</source>
        <translation>点云框选 – 拖出矩形选取其中的点</translation>
    </message>
    <message>
        <location line="+33"/>
        <source>Range Resize – edit the selection box</source>
        <translation>范围调整 – 编辑框选范围</translation>
    </message>
    <message>
        <location line="+33"/>
        <source>Grid – square grid in the ground plane (Ctrl+G)</source>
        <translation>网格 – 地面上的方形网格（Ctrl+G）</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Polar – range rings around the lidar</source>
        <translation>极坐标 – 雷达周围的距离环</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Set Grid and Polar – colour and spacing of grid and rings</source>
        <translation>网格与极坐标设置 – 网格和距离环的颜色与间距</translation>
    </message>
    <message>
        <location line="+33"/>
        <source>Axis – coordinate axes at the lidar</source>
        <translation>坐标轴 – 雷达处的坐标轴</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Top – view from above</source>
        <translation>俯视 – 从上方观察</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Front – view from the front</source>
        <translation>前视 – 从前方观察</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Left – view from the left</source>
        <translation>左视 – 从左侧观察</translation>
    </message>
    <message>
        <location line="+30"/>
        <source>Right – view from the right</source>
        <translation>右视 – 从右侧观察</translation>
    </message>
    <message>
        <location line="+37"/>
        <source>Point Table – the points of the frame as a table</source>
        <translation>点表 – 以表格显示当前帧的点</translation>
    </message>
    <message>
        <location line="+109"/>
        <source>Ctrl+G</source>
        <translation>Ctrl+G</translation>
    </message>
</context>
<context>
    <name>SectorDock</name>
    <message>
        <location filename="../analysis/SectorDock.cpp" line="+71"/>
        <source>Nearest: %1 m at %2°</source>
        <translation>最近：%1 米，位于 %2°</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Nearest: no return</source>
        <translation>最近：无回波</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Closest per sector</source>
        <translation>各扇区最近点</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Sectors</source>
        <translation>扇区数</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Sector (°)</source>
        <translation>扇区 (°)</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Distance (m)</source>
        <translation>距离 (米)</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Azimuth (°)</source>
        <translation>方位角 (°)</translation>
    </message>
</context>
<context>
    <name>SelectConnectType</name>
    <message>
        <location filename="../connect/SelectConnectType.ui" line="+19"/>
        <source>Select Connect Type</source>
        <translation>选择连接方式</translation>
    </message>
    <message>
        <location line="+45"/>
        <source> LiDAR :</source>
        <translation> 雷达：</translation>
    </message>
    <message>
        <location line="+21"/>
        <source>Serial Port</source>
        <translation>串口</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Network</source>
        <translation>网络</translation>
    </message>
    <message>
        <location line="+35"/>
        <source>Port:</source>
        <translation>端口：</translation>
    </message>
    <message>
        <location line="+17"/>
        <source>Refresh</source>
        <translation>刷新</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Baud Rate:</source>
        <translation>波特率：</translation>
    </message>
    <message>
        <location line="+39"/>
        <source>Data Bits:</source>
        <translation>数据位：</translation>
    </message>
    <message>
        <location line="+34"/>
        <source>Stop Bit:</source>
        <translation>停止位：</translation>
    </message>
    <message>
        <location line="+24"/>
        <source>Parity Bit:</source>
        <translation>校验位：</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>NoParity</source>
        <translation>无校验</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>OddParity</source>
        <translation>奇校验</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>EvenParity</source>
        <translation>偶校验</translation>
    </message>
    <message>
        <location line="+18"/>
        <source>Lidar IP:</source>
        <translation>雷达 IP：</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Destination IP:</source>
        <translation>目标 IP：</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>LIdar Port:</source>
        <translation>雷达端口：</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Data Port:</source>
        <translation>数据端口：</translation>
    </message>
    <message>
        <location line="+46"/>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <location filename="../connect/SelectConnectType.cpp" line="+52"/>
        <location line="+106"/>
        <source>Select the connection</source>
        <translation>选择连接</translation>
    </message>
    <message>
        <location line="-49"/>
        <location line="+5"/>
        <location line="+24"/>
        <source>information</source>
        <translation>提示</translation>
    </message>
    <message>
        <location line="-29"/>
        <source>Please select the radar port</source>
        <translation>请选择雷达端口</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Please select the serial baud rate</source>
        <translation>请选择串口波特率</translation>
    </message>
    <message>
        <location line="+24"/>
        <source>Lidar connection failed</source>
        <translation>雷达连接失败</translation>
    </message>
</context>
<context>
    <name>StatisticsDock</name>
    <message>
        <location filename="../analysis/StatisticsDock.cpp" line="+125"/>
        <location line="+103"/>
        <source>Range statistics</source>
        <translation>距离统计</translation>
    </message>
    <message>
        <location line="-98"/>
        <source>CSV (*.csv)</source>
        <translation>CSV (*.csv)</translation>
    </message>
    <message>
        <location line="+1"/>
        <location line="+1"/>
        <location line="+4"/>
        <source>Export statistics</source>
        <translation>导出统计</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Collecting %1 of %2 frames…</source>
        <translation>正在收集第 %1 / %2 帧…</translation>
    </message>
    <message>
        <location line="+24"/>
        <source>%1 frames, %2 directions of %3°</source>
        <translation>%1 帧，%2 个方向，每 %3°</translation>
    </message>
    <message>
        <location line="+32"/>
        <source>Ranges at %1° (m)</source>
        <translation>%1° 处的距离 (米)</translation>
    </message>
    <message>
        <location line="+32"/>
        <source>Statistics over frames</source>
        <translation>多帧统计</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Collect</source>
        <translation>收集</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Export CSV…</source>
        <translation>导出 CSV…</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Standard deviation (cm) against azimuth (°)</source>
        <translation>标准差 (厘米) 随方位角 (°)</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Return rate (%) against azimuth (°)</source>
        <translation>回波率 (%) 随方位角 (°)</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Ranges of the direction under the cursor (m)</source>
        <translation>光标所在方向的距离 (米)</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>No statistics yet</source>
        <translation>尚无统计</translation>
    </message>
</context>
<context>
    <name>StatisticsRun</name>
    <message>
        <location filename="../analysis/StatisticsRun.cpp" line="+35"/>
        <source>No lidar is connected and no recording is loaded: there are no frames to collect.</source>
        <translation>未连接雷达，也未加载录制文件：没有可收集的帧。</translation>
    </message>
    <message>
        <location line="+12"/>
        <source>The frames of the recording cannot be read.</source>
        <translation>无法读取录制文件中的帧。</translation>
    </message>
    <message>
        <location line="+31"/>
        <source>There are no statistics to export.</source>
        <translation>没有可导出的统计。</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>%1 cannot be written: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
</context>
<context>
    <name>StreamHealthDock</name>
    <message>
        <location filename="../app/StreamHealthDock.cpp" line="+122"/>
        <source>No data yet</source>
        <translation>尚无数据</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Last second: %1 packets, %2 revolutions (%3 incomplete, %4 packets missing), %5 rejected packets, %6 bytes skipped, %7 replies, %8 revolutions not drawn</source>
        <translation>最近一秒：%1 个数据包，%2 圈（%3 圈不完整，缺少 %4 个数据包），拒收 %5 个数据包，跳过 %6 个字节，%7 个应答，%8 圈未绘制</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Stream health</source>
        <translation>数据流健康</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Packets per second</source>
        <translation>每秒数据包数</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Coverage of each revolution (%)</source>
        <translation>每圈覆盖率（%）</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Rejected packets and skipped bytes per second</source>
        <translation>每秒拒收数据包与跳过字节</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Revolution period (ms)</source>
        <translation>旋转周期（毫秒）</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>rejected packets</source>
        <translation>拒收数据包</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>skipped bytes</source>
        <translation>跳过字节</translation>
    </message>
</context>
<context>
    <name>StreamHealthView</name>
    <message>
        <location filename="../app/StreamHealthView.cpp" line="+159"/>
        <source>Show gaps</source>
        <translation>显示缺口</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Show gaps – the parts of the circle the frame shown did not cover</source>
        <translation>显示缺口 – 当前帧未覆盖的角度范围</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Stream health – packets, coverage, rejected data and revolution period of the live stream</source>
        <translation>数据流健康 – 实时数据流的数据包、覆盖率、拒收数据与旋转周期</translation>
    </message>
</context>
<context>
    <name>TableViewToolBar</name>
    <message>
        <location filename="../export/TableViewToolBar.cpp" line="+79"/>
        <source>All Data</source>
        <translation>全部数据</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Rows:</source>
        <translation>行数：</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Precision:</source>
        <translation>精度：</translation>
    </message>
</context>
<context>
    <name>ViewExportTools</name>
    <message>
        <location filename="../export/ViewExportTools.cpp" line="+67"/>
        <source>Save view</source>
        <translation>保存视图</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Save the view as a PNG picture (Ctrl+S)</source>
        <translation>将视图保存为 PNG 图片（Ctrl+S）</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Export PCD</source>
        <translation>导出 PCD</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Export PLY</source>
        <translation>导出 PLY</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Export point cloud</source>
        <translation>导出点云</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Save the current frame as a PCD or PLY point cloud</source>
        <translation>将当前帧保存为 PCD 或 PLY 点云</translation>
    </message>
    <message>
        <location line="+16"/>
        <source>Setting a save path</source>
        <translation>设置保存路径</translation>
    </message>
    <message>
        <location line="+19"/>
        <location line="+28"/>
        <source>warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <location line="-28"/>
        <location line="+28"/>
        <source>File save failed!</source>
        <translation>文件保存失败！</translation>
    </message>
    <message>
        <location line="-25"/>
        <location line="+28"/>
        <source>File saved</source>
        <translation>文件已保存</translation>
    </message>
    <message>
        <location line="-28"/>
        <location line="+28"/>
        <source>File save path:%1</source>
        <translation>文件保存路径：%1</translation>
    </message>
    <message>
        <location line="-21"/>
        <source>information</source>
        <translation>提示</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>There is no frame to export</source>
        <translation>没有可导出的帧</translation>
    </message>
</context>
</TS>
