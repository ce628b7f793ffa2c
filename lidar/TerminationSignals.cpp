#include "TerminationSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace termination {
namespace {

int g_signalPipe[2] = {-1, -1};

// Only async-signal-safe work here.
void writeByte(int)
{
    const char byte = 1;
    const ssize_t ignored = ::write(g_signalPipe[1], &byte, 1);
    (void)ignored;
}

}  // namespace

bool catchSignals()
{
    if (g_signalPipe[0] >= 0)
        return true;
    if (::pipe(g_signalPipe) != 0)
        return false;
    for (int fd : g_signalPipe) {
        fcntl(fd, F_SETFD, FD_CLOEXEC);
        fcntl(fd, F_SETFL, O_NONBLOCK);
    }
    struct sigaction action {};
    action.sa_handler = writeByte;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    return true;
}

void onSignal(QObject* context, std::function<void()> action)
{
    if (g_signalPipe[0] < 0)
        return;
    auto* notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, context);
    QObject::connect(notifier, &QSocketNotifier::activated, context, [action = std::move(action)] {
        char bytes[16];
        while (::read(g_signalPipe[0], bytes, sizeof bytes) > 0) {
        }
        action();
    });
}

}  // namespace termination
