#pragma once

#include <QFuture>
#include <QFutureWatcher>
#include <QPromise>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

/// Runs `work` in another thread. It owns all that it touches: who started it may be gone before it has finished, and
/// the program's end waits for it. What it throws comes out of the future.
template <typename Work>
auto inBackground(Work work)
{
    using Result = std::invoke_result_t<Work&>;
    const auto promise = std::make_shared<QPromise<Result>>();
    promise->start();
    QThreadPool::globalInstance()->start([promise, work = std::move(work)]() mutable {
        try {
            if constexpr (std::is_void_v<Result>)
                work();
            else
                promise->addResult(work());
        } catch (...) {
            promise->setException(std::current_exception());
        }
        promise->finish();
    });
    return promise->future();
}

/// Work in another thread, one piece at a time, of which the newest alone counts: of those that come while one runs the
/// last one waits, and nobody learns of the others. What is not wanted any more when it is done is let go.
template <typename Result>
class NewestWork
{
public:
    using Work = std::function<Result()>;
    using Take = std::function<void(Result)>;

    NewestWork()
    {
        QObject::connect(&m_watcher, &QFutureWatcherBase::finished, &m_watcher, [this] { finish(); });
    }

    /// @param work  owns all that it touches; does not throw
    /// @param take  called from the event loop unless `drop` or another `start` comes first, or this goes
    void start(Work work, Take take)
    {
        m_take = std::move(take);
        if (m_isRunning)
            m_next = std::move(work);
        else
            run(std::move(work));
    }
    void drop()
    {
        m_take = nullptr;
        m_next.reset();
    }
    /// Whether a result is awaited.
    bool isUnderWay() const { return m_take != nullptr; }

private:
    void run(Work work)
    {
        m_isRunning = true;
        m_watcher.setFuture(inBackground([work = std::move(work)] { return std::make_shared<Result>(work()); }));
    }
    void finish()
    {
        m_isRunning = false;
        // Moved out of what the future keeps: taking it from the future would make the promise, which may still be
        // alive in the other thread, finish once more.
        Result result = std::move(*m_watcher.result());
        if (m_next)
            run(*std::exchange(m_next, {}));
        else if (const Take take = std::exchange(m_take, nullptr))
            take(std::move(result));
    }

    QFutureWatcher<std::shared_ptr<Result>> m_watcher;
    std::optional<Work> m_next;
    Take m_take; ///< of the newest; null when nothing is wanted
    bool m_isRunning = false;
};
