#pragma once

#include <QObject>
#include <QStringList>

class QLocalServer;

/// One instance per user and executable name: a second start hands its parameters to the first
/// and ends. The first instance reads them and does nothing with them.
class TVintraSingleInstance : public QObject {
    Q_OBJECT
public:
    static constexpr int MaxParameters = 10;
    static constexpr int MaxParameterLength = 300;

    explicit TVintraSingleInstance(const QString& executableName, QObject* parent = nullptr);
    ~TVintraSingleInstance() override;

    /// True when this process is the first: it then listens for later starts.
    bool Claim();
    /// Hands the parameters (at most ten, each cut to 300 characters) to the first instance.
    bool HandOver(const QStringList& parameters, int timeoutMs = 3000) const;
    /// The parameters as they travel: cut and limited.
    static QStringList Limit(const QStringList& parameters);
    QString ServerName() const { return m_serverName; }

signals:
    /// A later start reached this instance; the program ignores what it brought.
    void ParametersReceived(const QStringList& parameters);

private:
    void ReadConnection();
    QString m_serverName;
    QLocalServer* m_server = nullptr;
};
