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
#include "ShotSupport.h"
#include "SimRecording.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>

constexpr char kTool[] = "scandeck-export-shots";

int main(int argc, char* argv[])
{
    shots::prepare();
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: scandeck-export-shots <folder>\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    shots::answerMessages(kTool);

    QTemporaryDir files;
    sim::SimOptions options;
    sim::modelFromName(QStringLiteral("Wren_Plus"), &options.model);
    const QString recording = files.filePath(QStringLiteral("Wren_Plus.txt"));
    QString error;
    if (!sim::writeRecording(options, 40, recording, &error))
        return shots::fail(kTool, error);

    bool ok = true;
    {
        ScanDeck window;
        shots::showWindow(window, QSize(1600, 900));
        shots::settle(200);
        auto* player = window.findChild<OffinePlayWidget*>(QStringLiteral("offline"));
        const auto parsed = LIdarFactory::GetInstance()->ParseFile(recording);
        player->loadFrames(parsed.first, parsed.second);
        window.findChild<QTabWidget*>(QStringLiteral("tabWidget"))->setCurrentIndex(1);
        shots::settle(600);

        window.setExportDialogHook([&](ExportDataDialog& dialog) {
            dialog.show();
            shots::settle(300);
            ok = shots::savePng(dialog.grab().toImage(), out.filePath(QStringLiteral("export-dialog.png")), 600) && ok;
            dialog.accept();
            return dialog.result() == QDialog::Accepted;
        });
        player->findChild<QAbstractButton*>(QStringLiteral("btn_export_csv"))->click();
        for (int i = 0; i < 4; ++i) {
            player->findChild<QAbstractButton*>(QStringLiteral("btn_next"))->click();
            shots::settle(100);
        }
        shots::settle(300);
        ok = shots::savePng(window.grab().toImage(), out.filePath(QStringLiteral("export-progress.png")), 1200) && ok;

        QString model;
        quint16 port = 0;
        CaptureModelDialog::lastChoice(model, port);
        CaptureModelDialog question(model, port, &window);
        question.show();
        shots::settle(300);
        ok = shots::savePng(question.grab().toImage(), out.filePath(QStringLiteral("capture-model.png")), 600) && ok;
        question.reject();
        player->stop();
    }
    LIdarFactory::GetInstance()->Shutdown();
    return ok ? 0 : 1;
}
