#include "OfflineDrop.h"

#include <QMimeData>
#include <QUrl>

namespace offline {

bool isAcceptableDrag(const QMimeData* data)
{
    if (!data || !data->hasUrls())
        return false;
    const QList<QUrl> urls = data->urls();
    if (urls.isEmpty())
        return false;
    const QString text = urls.first().toString();
    return text.right(3) == QLatin1String("txt") || text.endsWith(QLatin1String(".pcap"), Qt::CaseInsensitive)
           || text.endsWith(QLatin1String(".pcapng"), Qt::CaseInsensitive);
}

QString droppedFilePath(const QMimeData* data)
{
    if (!data)
        return {};
    if (data->hasUrls()) {
        const QList<QUrl> urls = data->urls();
        if (!urls.isEmpty() && urls.first().isLocalFile())
            return urls.first().toLocalFile();
    }
    // Not a local file URL: the text itself, less a leading "file:///".
    QString text = data->text().section(QLatin1Char('\n'), 0, 0).trimmed();
    if (text.startsWith(QLatin1String("file:///")))
        text.remove(0, 8);
    return text;
}

}  // namespace offline
