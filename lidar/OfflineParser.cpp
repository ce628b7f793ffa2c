#include "OfflineParser.h"

#include <algorithm>

namespace lidar {

std::mutex& sharedOfflineParserMutex()
{
    static std::mutex mutex;
    return mutex;
}

bool parseElements(OfflineParser& parser, const QVector<QByteArray>& elements, int prefixElements,
                   QVector<LidarDataPoint_V4>& frames)
{
    const int first = std::min(prefixElements, elements.size());
    parser.setPrefix(elements.mid(0, first));
    for (int i = first; i < elements.size(); ++i)
        if (!parser.add(elements[i], frames))
            return false;
    return true;
}

}  // namespace lidar
