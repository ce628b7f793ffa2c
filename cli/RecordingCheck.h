#pragma once
// Checks a recorded data file before it is parsed, so that the tool can say
// what is wrong with it: the parse itself quietly returns nothing for a
// missing, empty, damaged or foreign file.

#include <QString>
#include <QtGlobal>

struct RecordingCheck {
    bool ok = false;
    QString problem;          // one line, without the file name; set when !ok
    QString model;            // element 0, the model's class name
    quint32 elementCount = 0; // as the file announces it
};

// Walks the element lengths without loading the packets. Fails for a file
// that cannot be opened, an empty file, a count or length that runs past the
// end of the file, and a model name that is not registered.
RecordingCheck checkRecording(const QString& fileName);
