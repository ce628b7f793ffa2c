#pragma once
// Frames as PCD or PLY files, written with PCL's own I/O: one file per frame
// into a folder ("frame_000001.pcd", ...), or all frames as one cloud in one
// file. PCD is binary unless ASCII is asked for; PLY is binary little-endian
// or ASCII. A single file appears only once it is complete; every file is
// on the disk, with its folder, once end() has returned true.

#include "FrameWriter.h"

#include <QString>
#include <memory>

namespace cloudfile {

enum class Format { Pcd, Ply };

struct Options {
    Format format = Format::Pcd;
    bool ascii = false;
    bool merge = false;  // one cloud of all frames in the file `output`
    QString output;      // a folder, or with merge the file
};

// The file name of frame `number` inside a folder.
QString frameFileName(Format format, int number);
// "pcd" or "ply".
QString suffix(Format format);

std::unique_ptr<FrameWriter> makeWriter(const Options& options);

}  // namespace cloudfile
