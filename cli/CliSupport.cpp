#include "CliSupport.h"

#include "LIdarFactory.h"

#include <QCommandLineParser>
#include <QHostAddress>
#include <QLocale>
#include <cmath>
#include <cstdio>

namespace cli {

void printError(const QString& message)
{
    std::fprintf(stderr, "scandeck-cli: %s\n", message.toLocal8Bit().constData());
    std::fflush(stderr);
}

int fileError(const QString& fileName, const QString& reason)
{
    printError(QStringLiteral("%1: %2").arg(fileName, reason));
    return Failure;
}

int usageError(const QString& command, const QString& message)
{
    std::fprintf(stderr, "scandeck-cli %s: %s (see scandeck-cli %s --help)\n", command.toLocal8Bit().constData(),
                 message.toLocal8Bit().constData(), command.toLocal8Bit().constData());
    std::fflush(stderr);
    return UsageError;
}

void printOut(const QString& line)
{
    std::fprintf(stdout, "%s\n", line.toLocal8Bit().constData());
    std::fflush(stdout);
}

QString counted(qint64 count, const QString& noun)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(noun, count == 1 ? QString() : QStringLiteral("s"));
}

int parseCommandLine(QCommandLineParser& parser, const QString& command, const QStringList& arguments,
                     const QString& helpText)
{
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help({"h", "help"}, "Show this help.");
    parser.addOption(help);
    if (!parser.parse(arguments)) {
        QString error = parser.errorText();
        if (error.endsWith(QLatin1Char('.')))
            error.chop(1);
        return usageError(command, error);
    }
    if (parser.isSet(help)) {
        std::fprintf(stdout, "%s", helpText.toLocal8Bit().constData());
        return Success;
    }
    return -1;
}

int parseCommandLine(QCommandLineParser& parser, const QString& command, const QStringList& arguments,
                     const QString& helpText, QString& input)
{
    const int early = parseCommandLine(parser, command, arguments, helpText);
    if (early >= 0)
        return early;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 1)
        return usageError(command, positional.isEmpty() ? "no recording given" : "give exactly one recording");
    input = positional.first();
    return -1;
}

bool toNumber(const QString& text, double& value)
{
    bool ok = false;
    value = QLocale::c().toDouble(text.trimmed(), &ok);
    return ok && std::isfinite(value);
}

bool toPositiveInt(const QString& text, int& value)
{
    bool ok = false;
    value = text.trimmed().toInt(&ok, 10);
    return ok && value > 0;
}

bool toPort(const QString& text, quint16& port)
{
    bool ok = false;
    const uint number = text.trimmed().toUInt(&ok, 10);
    if (!ok || number == 0 || number > 65535)
        return false;
    port = quint16(number);
    return true;
}

QString modelList()
{
    return LIdarFactory::GetInstance()->ModelNames().join(QStringLiteral(", "));
}

bool toEndpoint(const QString& text, QString& ip, quint16& port)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    if (colon <= 0)
        return false;
    QString host = text.left(colon);
    if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']')))
        host = host.mid(1, host.size() - 2);
    QHostAddress address;
    if (!address.setAddress(host))
        return false;
    bool ok = false;
    const uint number = text.mid(colon + 1).toUInt(&ok, 10);
    if (!ok || number == 0 || number > 65535)
        return false;
    ip = host;
    port = quint16(number);
    return true;
}

bool CsvOutput::open(const QString& path, QString& error)
{
    path_ = path;
    QIODevice* device = nullptr;
    if (path == QLatin1String("-")) {
        stdout_ = std::make_unique<QFile>();
        if (!stdout_->open(stdout, QIODevice::WriteOnly)) {
            error = stdout_->errorString();
            return false;
        }
        device = stdout_.get();
    } else {
        file_ = std::make_unique<lidar::AtomicFileWrite>(path);
        if (!file_->open(&error))
            return false;
        device = &file_->file();
    }
    writer_ = std::make_unique<CsvWriter>(device);
    writer_->writeHeader();
    return true;
}

bool CsvOutput::finish(QString& error)
{
    if (!writer_)
        return true;
    const bool written = writer_->flush();
    if (!written)
        error = writer_->errorString();
    writer_.reset();
    if (stdout_) {
        stdout_->flush();
        stdout_.reset();
        return written;
    }
    if (!written) {
        file_->discard();
        return false;
    }
    return file_->commit(&error);
}

void CsvOutput::discard()
{
    writer_.reset();
    file_.reset();  // an uncommitted file removes its temporary file
    stdout_.reset();
}

}  // namespace cli
