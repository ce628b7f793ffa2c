#pragma once
// Opens a recording for the player: the registry parses it while a progress
// dialog shows how far it got, the window keeps painting, and Cancel stops
// the parse. open() returns only once the frames are there (or the user
// cancelled), so opening stays synchronous for its callers. One recording
// opens at a time: a request while another loads is refused at once.

#include "LidarRecords.h"

#include <QCoreApplication>
#include <QString>
#include <QVector>

class QWidget;

class RecordingOpener {
    Q_DECLARE_TR_FUNCTIONS(RecordingOpener)
public:
    struct Result {
        QString model;                             // empty: no data or unreadable
        QVector<lidar::LidarDataPoint_V4> frames;  // empty: nothing to play
        bool cancelled = false;                    // the user pressed Cancel
        bool busy = false;                         // another recording was loading
    };

    // The dialog is modal to `parent`'s window and appears only when the
    // load takes more than a moment.
    static Result open(QWidget* parent, const QString& path);
    static bool isOpening();
};
