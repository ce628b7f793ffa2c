#pragma once
// Runs a function on the thread an object lives on and waits for its
// result, like a blocking queued call. The hand-over both ways goes through
// a standard atomic and promise, which ThreadSanitizer sees (Qt's own
// blocking call waits on a futex it cannot see), so that what the caller
// wrote before is visibly there for the function, and its result for the
// caller. The object's thread must be running its event loop; from that
// thread itself, or when it does not run, the function is called directly.

#include <QMetaObject>
#include <QObject>
#include <QThread>
#include <atomic>
#include <future>
#include <type_traits>

namespace lidar {

template <typename Work>
auto runOnThreadOf(QObject* context, Work work) -> decltype(work())
{
    using Result = decltype(work());
    QThread* thread = context->thread();
    if (!thread || thread == QThread::currentThread() || !thread->isRunning())
        return work();
    std::promise<Result> done;
    std::atomic<bool> handedOver{false};
    handedOver.store(true, std::memory_order_release);
    QMetaObject::invokeMethod(
        context,
        [&] {
            handedOver.load(std::memory_order_acquire);
            if constexpr (std::is_void<Result>::value) {
                work();
                done.set_value();
            } else {
                done.set_value(work());
            }
        },
        Qt::QueuedConnection);
    return done.get_future().get();
}

}  // namespace lidar
