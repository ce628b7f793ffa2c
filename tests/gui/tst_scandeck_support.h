#pragma once
// Shared by the main-window tests: a scratch working directory with its own
// settings file (loopback addresses only), message boxes answered without a
// click, hand-made frames, and a main() that prepares OpenGL for VTK.

#include "ScanDeck.h"
#include "UserMessages.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>
#include <cmath>
#include <memory>
#include <vtkObject.h>

namespace testing {

// Enters a fresh temporary directory laid out like the build directory:
// ini/connect_type.ini (with "language" when given) and the translation.
class ScratchWorkingDir {
public:
    explicit ScratchWorkingDir(const QString& language = QString())
        : m_previous(QDir::currentPath())
    {
        QDir(m_dir.path()).mkpath(QStringLiteral("ini"));
        QFile ini(m_dir.filePath(QStringLiteral("ini/connect_type.ini")));
        if (ini.open(QIODevice::WriteOnly | QIODevice::Text)) {
            QTextStream out(&ini);
            out << "LiDAR IP=127.0.0.1\nData IP=127.0.0.1\nLiDAR Port=2369\nData Port=2368\n";
            if (!language.isNull())
                out << "language=" << language << "\n";
            out << "\n[connect_type]\nmodel1=Tern\n\n[Tern]\nnetwork port function=true\n"
                   "default baud rate=230400\n";
        }
        QFile::copy(m_previous + QStringLiteral("/scandeck_zh.qm"), m_dir.filePath(QStringLiteral("scandeck_zh.qm")));
        QDir::setCurrent(m_dir.path());
    }
    ~ScratchWorkingDir() { QDir::setCurrent(m_previous); }

    bool hasTranslation() const { return QFile::exists(m_dir.filePath(QStringLiteral("scandeck_zh.qm"))); }
    QString settingsText() const
    {
        QFile ini(m_dir.filePath(QStringLiteral("ini/connect_type.ini")));
        ini.open(QIODevice::ReadOnly | QIODevice::Text);
        return QString::fromUtf8(ini.readAll());
    }

private:
    QString m_previous;
    QTemporaryDir m_dir;
};

// Records every message box and answers it (No to questions unless told).
class MessageRecorder {
public:
    MessageRecorder()
    {
        m_previous = usermessages::setHandler([this](QWidget*, const UserMessage& m) {
            messages.append(m);
            return m.kind == UserMessage::Question ? answer : QMessageBox::Ok;
        });
    }
    ~MessageRecorder() { usermessages::setHandler(m_previous); }

    QList<UserMessage> messages;
    QMessageBox::StandardButton answer = QMessageBox::No;

private:
    usermessages::Handler m_previous;
};

struct PointSpec {
    int id;
    float x, y, azimuth;
    int32_t intensity;
};

inline lidar::LidarDataPoint_V4 makeFrame(std::initializer_list<PointSpec> points)
{
    lidar::LidarDataPoint_V4 frame;
    for (const PointSpec& s : points) {
        lidar::LidarPoint p;
        p.x = s.x;
        p.y = s.y;
        p.azimuth = s.azimuth;
        p.distance = int32_t(std::sqrt(s.x * s.x + s.y * s.y) * 1000);
        p.intensity = s.intensity;
        frame.points[s.id].push_back(p);
    }
    return frame;
}

// A frame of n points on a circle of 5 m, all under ID 0.
inline lidar::LidarDataPoint_V4 ringFrame(int n)
{
    lidar::LidarDataPoint_V4 frame;
    auto& line = frame.points[0];
    for (int i = 0; i < n; ++i) {
        lidar::LidarPoint p;
        p.azimuth = 360.0f * i / n;
        const float rad = p.azimuth * float(M_PI / 180.0);
        p.x = std::sin(rad) * 5.0f;
        p.y = std::cos(rad) * 5.0f;
        p.distance = 5000;
        p.intensity = i % 256;
        line.push_back(p);
    }
    return frame;
}

inline std::unique_ptr<ScanDeck> openWindow()
{
    auto window = std::make_unique<ScanDeck>();
    window->waitUntilWired();
    window->resize(1400, 850);
    window->show();
    if (!QTest::qWaitForWindowExposed(window.get()))
        qWarning("main window not exposed");
    return window;
}

// A control of the main window itself; the offline player's form has its
// own btn_table and btn_export_csv, which this skips.
template <typename T = QWidget>
T* control(QWidget* window, const char* name)
{
    const QWidget* player = window->findChild<QWidget*>(QStringLiteral("offline"));
    for (T* candidate : window->findChildren<T*>(QLatin1String(name))) {
        if (!player || candidate == player || !player->isAncestorOf(candidate))
            return candidate;
    }
    return nullptr;
}

}  // namespace testing

#define SCANDECK_TEST_MAIN(TestClass)          \
    int main(int argc, char** argv)            \
    {                                          \
        vtkObject::SetGlobalWarningDisplay(0); \
        ScanDeck::prepareGraphics();           \
        QApplication app(argc, argv);          \
        TestClass test;                        \
        return QTest::qExec(&test, argc, argv); \
    }
