#include "SimulatedLidar.h"

#include "SimLinks.h"

#include <QDateTime>
#include <mutex>
#include <QTimer>

namespace sim {

namespace {
// Paced: the timer looks every millisecond for packets that are due. If the
// process was held up for longer than this, the stretch is skipped instead
// of flooding the host with a burst.
constexpr double kMaxLagUs = 250000.0;
constexpr int kMaxBurst = 64;
// Fast: packets per turn of the event loop, so commands are still heard.
constexpr int kFastBatch = 32;

qint64 startMicroseconds(const SimOptions& o)
{
    const qint64 ms = o.gpsStartMs >= 0 ? o.gpsStartMs : QDateTime::currentMSecsSinceEpoch();
    return ms * 1000;
}
}  // namespace

QString SimStats::toString() const
{
    QString s = QStringLiteral("%1 packets, %2 revolutions, %3 commands (%4 replies")
                    .arg(packets)
                    .arg(revolutions)
                    .arg(commands)
                    .arg(replies);
    if (ignored)
        s += QStringLiteral(", %1 ignored").arg(ignored);
    s += QLatin1Char(')');
    if (dropped || corrupted || junk)
        s += QStringLiteral(", %1 dropped, %2 corrupted, %3 junk").arg(dropped).arg(corrupted).arg(junk);
    if (gpsGaps)
        s += QStringLiteral(", %1 GPS gaps").arg(gpsGaps);
    return s;
}

SimulatedLidar::SimulatedLidar(const SimOptions& options, QObject* parent)
    : QObject(parent),
      options_(options),
      generator_(options.model, options.seed, startMicroseconds(options), options.firmware.versionNumber()),
      // The faults draw from their own sequence so that switching them on
      // does not change what the head measures.
      faults_(options.faults, options.seed ^ 0x9E3779B97F4A7C15ull,
              familyOf(options.model) == Family::Tern ? Damage::LoseBodyByte : Damage::ChangeByte),
      state_(initialDeviceState(options.rpm, options.filter))
{
    if (options.gpsGapMs > 0.0)
        generator_.setGpsGap(options.gpsGapMs, options.gpsGapEverySeconds);
}

SimulatedLidar::~SimulatedLidar()
{
    stop();
}

SimStats SimulatedLidar::stats() const
{
    SimStats s;
    s.packets = packets_.load();
    s.revolutions = revolutions_.load();
    s.commands = commands_.load();
    s.replies = replies_.load();
    s.ignored = ignored_.load();
    s.dropped = dropped_.load() + lineDrops_.load();
    s.corrupted = corrupted_.load();
    s.junk = junk_.load();
    s.gpsGaps = gpsGaps_.load();
    return s;
}

DeviceState SimulatedLidar::deviceState() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return state_;
}

QString SimulatedLidar::ptyPath() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return ptyPath_;
}

QString SimulatedLidar::linkDescription() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return linkDescription_;
}

QString SimulatedLidar::errorString() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return error_;
}

void SimulatedLidar::setError(const QString& message)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        error_ = message;
    }
    emit failed(message);
}

bool SimulatedLidar::start()
{
    if (running_)
        return true;
    const QString problem = validateOptions(options_);
    if (!problem.isEmpty()) {
        setError(problem);
        return false;
    }

    if (!options_.logFile.isEmpty() && !log_.isOpen()) {
        QString error;
        if (!log_.open(options_.logFile, &error)) {
            setError(error);
            return false;
        }
    }
    SimLink* link = nullptr;
    if (options_.transport == Transport::Udp)
        link = new UdpLink(resolvedLoopbackHost(options_.dataHost), options_.dataPort, options_.commandPort, this);
    else
        link = new PtyLink(this);
    QString error;
    if (!link->open(&error)) {
        delete link;
        setError(error);
        return false;
    }
    link_ = link;
    connect(link_, &SimLink::bytesReceived, this, &SimulatedLidar::handleBytes);
    if (auto* udp = qobject_cast<UdpLink*>(link_))
        commandPort_ = udp->commandPort();
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (auto* pty = qobject_cast<PtyLink*>(link_))
            ptyPath_ = pty->slavePath();
        linkDescription_ = link_->description();
        error_.clear();
    }

    timer_ = new QTimer(this);
    timer_->setTimerType(Qt::PreciseTimer);
    timer_->setInterval(options_.fast ? 0 : 1);
    connect(timer_, &QTimer::timeout, this, &SimulatedLidar::tick);
    clock_.start();
    nextDueUs_ = lastTickUs_ = 0.0;
    running_ = true;
    timer_->start();
    emit started();
    return true;
}

void SimulatedLidar::stop()
{
    if (!running_)
        return;
    running_ = false;
    delete timer_;
    timer_ = nullptr;
    if (link_) {
        link_->close();
        delete link_;
        link_ = nullptr;
    }
    log_.close();
    emit stopped();
}

void SimulatedLidar::tick()
{
    const double nowUs = double(clock_.nsecsElapsed()) / 1000.0;
    const double sinceLast = nowUs - lastTickUs_;
    lastTickUs_ = nowUs;
    DeviceState state = deviceState();
    if (!state.motorRunning) {
        // The head stands still but GPS time goes on.
        generator_.advanceClock(sinceLast);
        nextDueUs_ = nowUs;
        return;
    }
    if (options_.fast) {
        for (int i = 0; i < kFastBatch && running_; ++i)
            sendDataPacket();
        return;
    }
    if (nowUs - nextDueUs_ > kMaxLagUs) {
        generator_.advanceClock(nowUs - nextDueUs_);
        nextDueUs_ = nowUs;
    }
    for (int burst = 0; nextDueUs_ <= nowUs && burst < kMaxBurst && running_; ++burst) {
        sendDataPacket();
        nextDueUs_ += generator_.packetIntervalUs(state.rpm) / options_.speedUp;
    }
}

void SimulatedLidar::sendDataPacket()
{
    const qint64 revolution = generator_.revolutions();
    const int index = generator_.packetIndex();
    const QByteArray packet = generator_.nextPacket(deviceState());
    ++packets_;
    revolutions_ = quint64(generator_.revolutions());
    gpsGaps_ = quint64(generator_.gpsGaps());
    for (const QByteArray& chunk : faults_.apply(packet))
        if (!link_->send(chunk))
            ++lineDrops_;
    log_.write(revolution, index, index * generator_.layout().packetSpan, faults_.lastFate());
    const FaultCounters& c = faults_.counters();
    dropped_ = c.dropped;
    corrupted_ = c.corrupted;
    junk_ = c.junk;
}

void SimulatedLidar::handleBytes(const QByteArray& bytes)
{
    if (link_->isStream()) {
        commandBuffer_.append(bytes);
        // A host that talks nonsense must not make the buffer grow forever.
        if (commandBuffer_.size() > 64 * kCommandLength)
            commandBuffer_ = commandBuffer_.right(kCommandLength);
        for (const QByteArray& command : takeCommands(commandBuffer_))
            handleCommand(command);
        return;
    }
    QByteArray datagram = bytes;
    const QVector<QByteArray> commands = takeCommands(datagram);
    if (commands.isEmpty()) {
        ++commands_;
        ++ignored_;
        emit commandHandled(QStringLiteral("ignored a datagram of %1 bytes").arg(bytes.size()));
    }
    for (const QByteArray& command : commands)
        handleCommand(command);
}

void SimulatedLidar::handleCommand(const QByteArray& command)
{
    ++commands_;
    CommandResult result;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        result = sim::handleCommand(options_.model, command, state_, options_.firmware);
    }
    if (!result.accepted)
        ++ignored_;
    if (!result.reply.isEmpty() && link_) {
        // A split packet's tail goes first so that the reply is not cut into it.
        const QByteArray tail = faults_.flush();
        if (!tail.isEmpty())
            link_->send(tail);
        if (link_->send(result.reply))
            ++replies_;
    }
    emit commandHandled(result.description);
}

}  // namespace sim
