#pragma once

#include <QObject>
#include <QStringList>
#include <atomic>
#include <memory>
#include <thread>

class QSharedMemory;
class QSystemSemaphore;

/// One instance per user and executable name: a second start hands its parameters to the first
/// and ends. The first instance reads them and does nothing with them.
///
/// A named shared memory block marks the running instance; a system semaphore serialises every
/// look at it, so that of two starts at the same moment exactly one creates the block. A second
/// semaphore wakes the first instance's listener when a later start has written its parameters.
class TVintraSingleInstance : public QObject {
    Q_OBJECT
public:
    static constexpr int MaxParameters = 10;
    static constexpr int MaxParameterLength = 300;

    explicit TVintraSingleInstance(const QString& executableName, QObject* parent = nullptr);
    ~TVintraSingleInstance() override;

    /// True when this process is the first: it then owns the block and listens for later starts.
    /// False for a later start, which then hands its parameters over with HandOver.
    bool Claim();
    /// Writes the parameters (at most ten, each cut to 300 characters) into the block, wakes the
    /// first instance and waits until it has read them, at most `timeoutMs`. False when no first
    /// instance is there or it did not read them in time.
    bool HandOver(const QStringList& parameters, int timeoutMs = 3000);
    /// The parameters as they travel: cut and limited.
    static QStringList Limit(const QStringList& parameters);
    /// The key of the shared memory block.
    QString Key() const { return m_key; }

signals:
    /// A later start reached this instance; the program ignores what it brought.
    void ParametersReceived(const QStringList& parameters);

private:
    void Listen();

    QString m_key;
    std::unique_ptr<QSharedMemory> m_memory;
    QSystemSemaphore* m_lock = nullptr;
    QSystemSemaphore* m_signal = nullptr;
    std::thread m_listener;
    std::atomic<bool> m_stopping{false};
    bool m_first = false;
};
