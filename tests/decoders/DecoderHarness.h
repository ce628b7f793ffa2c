#pragma once
// Driving decoder sessions directly in tests: byte streams fed in pieces,
// what the sessions emit, and frames compared field by field.

#include "LidarAnalysis.h"

#include <QByteArray>
#include <QList>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QString>
#include <QVector>
#include <memory>

namespace testing {

// A session of `model` made from its registered meta-object, as the
// registry makes it, with both addresses on 127.0.0.1.
std::unique_ptr<LidarAnalysis> makeSession(const QString& model);

// Appends `bytes` and lets the session parse them once.
void feed(LidarAnalysis& session, const QByteArray& bytes);
// Appends `bytes` in pieces of 1 to `longestPiece` bytes cut at random
// points, letting the session parse after each.
void feedInPieces(LidarAnalysis& session, const QByteArray& bytes, QRandomGenerator& random,
                  int longestPiece = 150);
// The packets one after another, with 1 to 12 junk bytes (never a header or
// trailer byte) before about half of them.
QByteArray joinWithJunk(const QVector<QByteArray>& packets, QRandomGenerator& random);

// What a spy on SendleLidarDataSignal, SendGPSTimeData or
// SendDataToLidarSignal caught.
QVector<lidar::LidarDataPoint_V4> spiedFrames(const QSignalSpy& spy);
QVector<lidar::GPSTime> spiedTimes(const QSignalSpy& spy);
QList<QByteArray> spiedCommands(const QSignalSpy& spy);

// The first difference between two frames (every field of every point),
// empty when they are equal.
QString frameDifference(const lidar::LidarDataPoint_V4& a, const lidar::LidarDataPoint_V4& b);
// The points of a frame under `id`, or none.
std::vector<lidar::LidarPoint> pointsOf(const lidar::LidarDataPoint_V4& frame, int id = 0);

}  // namespace testing
