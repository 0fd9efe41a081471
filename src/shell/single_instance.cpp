#include "shell/single_instance.h"

#include <vector>

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QSharedMemory>
#include <QSystemSemaphore>
#include <QThread>
#include <cstring>
#include <unistd.h>

namespace {

/// What a later start leaves in the shared memory for the first instance.
struct Block {
    quint32 sequence; ///< counts the hand-overs
    quint32 read;     ///< the sequence the first instance has read last
    quint32 count;
    quint32 lengths[TVintraSingleInstance::MaxParameters];
    char16_t texts[TVintraSingleInstance::MaxParameters][TVintraSingleInstance::MaxParameterLength];
};

/// Holds a system semaphore used as a lock for one scope.
class Locked {
public:
    explicit Locked(QSystemSemaphore* lock) : m_lock(lock) { m_lock->acquire(); }
    ~Locked() { m_lock->release(); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    QSystemSemaphore* m_lock;
};

} // namespace

TVintraSingleInstance::TVintraSingleInstance(const QString& executableName, QObject* parent)
    : QObject(parent) {
    // Named after the executable and the user, as the shared memory of a Windows session would be.
    const QByteArray key = executableName.toUtf8() + '-' + QByteArray::number(uint(getuid()));
    m_key = QStringLiteral("quillmeal-") +
            QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex().left(16));
}

TVintraSingleInstance::~TVintraSingleInstance() {
    if (m_listener.joinable()) {
        m_stopping = true;
        QSystemSemaphore(m_key + QStringLiteral("-signal"), 0, QSystemSemaphore::Open).release();
        m_listener.join();
    }
    // Only the first instance lets its semaphores go. Qt removes a system semaphore together with
    // the object of the process that created it; a later start that happened to create one must
    // not take it away from the running instance, so its objects stay until the process ends.
    if (m_first) {
        delete m_signal;
        delete m_lock;
    } else {
        // Kept reachable to the end of the process, not destroyed.
        static auto* kept = new std::vector<QSystemSemaphore*>();
        kept->push_back(m_signal);
        kept->push_back(m_lock);
    }
}

QStringList TVintraSingleInstance::Limit(const QStringList& parameters) {
    QStringList limited;
    for (qsizetype i = 0; i < parameters.size() && i < MaxParameters; ++i)
        limited << parameters.at(i).left(MaxParameterLength);
    return limited;
}

bool TVintraSingleInstance::Claim() {
    if (m_first)
        return true;
    if (!m_lock)
        m_lock = new QSystemSemaphore(m_key + QStringLiteral("-lock"), 1, QSystemSemaphore::Open);
    Locked locked(m_lock);
    // A block left by an instance that was killed has no process attached: attaching and
    // detaching the last handle removes it. A live instance stays attached, so its block stays.
    {
        QSharedMemory stale(m_key);
        if (stale.attach())
            stale.detach();
    }
    m_memory = std::make_unique<QSharedMemory>(m_key);
    if (!m_memory->create(sizeof(Block)))
        return false; // the block exists: another instance runs
    std::memset(m_memory->data(), 0, sizeof(Block));
    // Create resets a count that an earlier instance may have left behind.
    m_signal = new QSystemSemaphore(m_key + QStringLiteral("-signal"), 0, QSystemSemaphore::Create);
    m_first = true;
    m_listener = std::thread([this] { Listen(); });
    return true;
}

bool TVintraSingleInstance::HandOver(const QStringList& parameters, int timeoutMs) {
    if (m_first)
        return false;
    if (!m_lock)
        m_lock = new QSystemSemaphore(m_key + QStringLiteral("-lock"), 1, QSystemSemaphore::Open);
    if (!m_memory)
        m_memory = std::make_unique<QSharedMemory>(m_key);
    if (!m_memory->isAttached() && !m_memory->attach())
        return false; // the first instance has gone meanwhile
    const QStringList limited = Limit(parameters);
    quint32 sequence = 0;
    {
        Locked locked(m_lock);
        auto* block = static_cast<Block*>(m_memory->data());
        block->count = quint32(limited.size());
        for (qsizetype i = 0; i < limited.size(); ++i) {
            block->lengths[i] = quint32(limited.at(i).size());
            std::memcpy(block->texts[i], limited.at(i).utf16(), sizeof(char16_t) * limited.at(i).size());
        }
        sequence = ++block->sequence;
    }
    if (!m_signal)
        m_signal = new QSystemSemaphore(m_key + QStringLiteral("-signal"), 0, QSystemSemaphore::Open);
    m_signal->release();
    // The semaphore's count is undone when this process ends; wait until the first has read.
    const QDeadlineTimer deadline(timeoutMs);
    for (;;) {
        {
            Locked locked(m_lock);
            const auto* block = static_cast<const Block*>(m_memory->constData());
            if (qint32(block->read - sequence) >= 0)
                return true;
        }
        if (deadline.hasExpired())
            return false;
        QThread::msleep(5);
    }
}

void TVintraSingleInstance::Listen() {
    for (;;) {
        m_signal->acquire();
        if (m_stopping)
            return;
        QStringList parameters;
        {
            Locked locked(m_lock);
            auto* block = static_cast<Block*>(m_memory->data());
            const quint32 count = std::min<quint32>(block->count, MaxParameters);
            for (quint32 i = 0; i < count; ++i)
                parameters << QString::fromUtf16(block->texts[i],
                                                 std::min<quint32>(block->lengths[i], MaxParameterLength));
            block->read = block->sequence;
        }
        QMetaObject::invokeMethod(
            this, [this, parameters] { emit ParametersReceived(parameters); }, Qt::QueuedConnection);
    }
}
