#include "ShotSupport.h"

#include "OffinePlayWidget.h"
#include "ScanDeck.h"
#include "UserMessages.h"

#include <QAbstractButton>
#include <QApplication>
#include <QRect>
#include <QScreen>
#include <QTabWidget>
#include <QElapsedTimer>
#include <QThread>
#include <cstdio>
#include <vtkObject.h>

namespace shots {

void prepare()
{
    vtkObject::SetGlobalWarningDisplay(0);
    ScanDeck::prepareGraphics();
}

void settle(int ms)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < ms) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(5);
    }
}

void showWindow(ScanDeck& window, const QSize& size)
{
    window.waitUntilWired();
    window.setWindowState(Qt::WindowNoState);
    window.setGeometry(0, 0, size.width(), size.height());
    window.show();
    settle(300);
}

void answerMessages(const char* tool)
{
    usermessages::setHandler([tool](QWidget*, const UserMessage& m) {
        std::fprintf(stderr, "%s: %s: %s\n", tool, qPrintable(m.title), qPrintable(m.text));
        return QMessageBox::Ok;
    });
}

int fail(const char* tool, const QString& message)
{
    std::fprintf(stderr, "%s: %s\n", tool, qPrintable(message));
    return 1;
}

bool savePng(const QImage& image, const QString& path, int maxWidth)
{
    const QImage shot = maxWidth > 0 && image.width() > maxWidth
                            ? image.scaledToWidth(maxWidth, Qt::SmoothTransformation)
                            : image;
    const bool ok = shot.save(path, "PNG");
    std::printf("%s %s (%dx%d)\n", ok ? "wrote" : "could not write", qPrintable(path), shot.width(), shot.height());
    return ok;
}

void click(QWidget& root, const char* name)
{
    root.findChild<QAbstractButton*>(QLatin1String(name))->click();
}

bool saveScreen(const QRect& area, const QString& path)
{
    return savePng(QGuiApplication::primaryScreen()->grabWindow(0).toImage().copy(area), path);
}

OffinePlayWidget& showPlayer(ScanDeck& window)
{
    window.findChild<QTabWidget*>(QStringLiteral("tabWidget"))
        ->setCurrentWidget(window.findChild<QWidget*>(QStringLiteral("tab_offline")));
    return *window.findChild<OffinePlayWidget*>(QStringLiteral("offline"));
}

OffinePlayWidget& openInPlayer(ScanDeck& window, const QString& path, const char* tool)
{
    OffinePlayWidget& player = showPlayer(window);
    player.setOpenFileHook([path](const QString&, const QString&, const QString&) { return path; });
    player.setMessageHook([tool](const QString& title, const QString& text) { fail(tool, title + ": " + text); });
    click(window, "btn_open_file");
    return player;
}

}  // namespace shots
