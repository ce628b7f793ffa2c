// scandeck-export-shots: the README's pictures of the exports, taken from
// the real main window (run it under xvfb-run in the build directory):
// the CSV export dialog, the window with the export's progress bar, and the
// question a capture asks when it is opened.
//
//   xvfb-run -a -s "-screen 0 1600x900x24" ./scandeck-export-shots <folder>

#include "CaptureModelDialog.h"
#include "ExportDataDialog.h"
#include "LIdarFactory.h"
#include "OffinePlayWidget.h"
#include "ScanDeck.h"
#include "SimRecording.h"
#include "UserMessages.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <vtkObject.h>

namespace {

void settle(int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
}

bool save(QWidget* widget, const QString& path, int width)
{
    const QPixmap shot = widget->grab();
    const QPixmap small = shot.width() > width ? shot.scaledToWidth(width, Qt::SmoothTransformation) : shot;
    const bool ok = small.save(path, "PNG");
    std::printf("%s %s (%dx%d)\n", ok ? "wrote" : "could not write", qPrintable(path), small.width(), small.height());
    return ok;
}

}  // namespace

int main(int argc, char* argv[])
{
    vtkObject::SetGlobalWarningDisplay(0);
    ScanDeck::prepareGraphics();
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: scandeck-export-shots <folder>\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    usermessages::setHandler([](QWidget*, const UserMessage&) { return QMessageBox::Ok; });

    QTemporaryDir files;
    sim::SimOptions options;
    sim::modelFromName(QStringLiteral("Wren_Plus"), &options.model);
    const QString recording = files.filePath(QStringLiteral("Wren_Plus.txt"));
    QString error;
    if (!sim::writeRecording(options, 40, recording, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }

    bool ok = true;
    {
        ScanDeck window;
        window.waitUntilWired();
        window.resize(1600, 900);
        window.show();
        settle(500);
        auto* player = window.findChild<OffinePlayWidget*>(QStringLiteral("offline"));
        const auto parsed = LIdarFactory::GetInstance()->ParseFile(recording);
        player->loadFrames(parsed.first, parsed.second);
        window.findChild<QTabWidget*>(QStringLiteral("tabWidget"))->setCurrentIndex(1);
        settle(600);

        window.setExportDialogHook([&](ExportDataDialog& dialog) {
            dialog.show();
            settle(300);
            ok = save(&dialog, out.filePath(QStringLiteral("export-dialog.png")), 600) && ok;
            dialog.accept();
            return dialog.result() == QDialog::Accepted;
        });
        player->findChild<QAbstractButton*>(QStringLiteral("btn_export_csv"))->click();
        for (int i = 0; i < 4; ++i) {
            player->findChild<QAbstractButton*>(QStringLiteral("btn_next"))->click();
            settle(100);
        }
        settle(300);
        ok = save(&window, out.filePath(QStringLiteral("export-progress.png")), 1200) && ok;

        QString model;
        quint16 port = 0;
        CaptureModelDialog::lastChoice(model, port);
        CaptureModelDialog question(model, port, &window);
        question.show();
        settle(300);
        ok = save(&question, out.filePath(QStringLiteral("capture-model.png")), 600) && ok;
        question.reject();
        player->stop();
    }
    LIdarFactory::GetInstance()->Shutdown();
    return ok ? 0 : 1;
}
