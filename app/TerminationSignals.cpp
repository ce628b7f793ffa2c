#include "TerminationSignals.h"

#include <QSocketNotifier>
#include <QWidget>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

int g_signalPipe[2] = {-1, -1};

// Only async-signal-safe work here: the event loop reads the pipe.
void onSignal(int)
{
    const char byte = 1;
    const ssize_t ignored = ::write(g_signalPipe[1], &byte, 1);
    (void)ignored;
}

}  // namespace

bool catchTerminationSignals()
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
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    return true;
}

void closeOnTerminationSignals(QWidget* window)
{
    if (g_signalPipe[0] < 0)
        return;
    auto* notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, window);
    QObject::connect(notifier, &QSocketNotifier::activated, window, [window] {
        char bytes[16];
        while (::read(g_signalPipe[0], bytes, sizeof bytes) > 0) {
        }
        window->close();
    });
}
